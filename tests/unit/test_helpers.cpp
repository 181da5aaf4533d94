// Number parsing, file and hex-dump helpers.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "frontend/helpers.h"
#include "capture.h"

namespace {

const char kDecimalMessage[] = "Only decimal supported, please check your input index\n";
const char kHexMessage[] = "Only Hex supported, please check your input index\n";

TEST(ParseDecimal, StoresPartialValueAndComplains) {
    int32_t v = -5;
    int r = 0;
    EXPECT_EQ(Captured([&] { r = ParseDecimal("12abc", &v); }), kDecimalMessage);
    EXPECT_EQ(r, 1);
    EXPECT_EQ(v, 12);
    EXPECT_EQ(Captured([&] { r = ParseDecimal("0x10", &v); }), kDecimalMessage);
    EXPECT_EQ(r, 1);
    EXPECT_EQ(v, 0);
}

TEST(ParseDecimal, EmptyTextIsZeroAndValid) {
    int32_t v = 7;
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseDecimal("", &v), 0); }), "");
    EXPECT_EQ(v, 0);
}

TEST(ParseDecimal, SignsBlanksAndSaturation) {
    int32_t v = 0;
    EXPECT_EQ(ParseDecimal("  -42", &v), 0);
    EXPECT_EQ(v, -42);
    EXPECT_EQ(ParseDecimal("+7", &v), 0);
    EXPECT_EQ(v, 7);
    EXPECT_EQ(ParseDecimal("99999999999", &v), 0);
    EXPECT_EQ(v, INT32_MAX);
    EXPECT_EQ(ParseDecimal("-99999999999", &v), 0);
    EXPECT_EQ(v, INT32_MIN);
    std::string out = Captured([&] { EXPECT_EQ(ParseDecimal("1 ", &v), 1); });
    EXPECT_EQ(out, kDecimalMessage);
}

TEST(ParseUnsignedDecimal, WrapsNegativesAndSaturatesLargeValues) {
    uint32_t v = 0;
    EXPECT_EQ(ParseUnsignedDecimal("4294967295", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_EQ(ParseUnsignedDecimal("4294967296", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_EQ(ParseUnsignedDecimal("-1", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_EQ(ParseUnsignedDecimal("-5", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFBu);
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseUnsignedDecimal("5x", &v), 1); }), kDecimalMessage);
    EXPECT_EQ(v, 5u);
}

TEST(ParseHex, AcceptsPrefixAndEitherCase) {
    int32_t v = 0;
    EXPECT_EQ(ParseHex("0x1f", &v), 0);
    EXPECT_EQ(v, 31);
    EXPECT_EQ(ParseHex("1F", &v), 0);
    EXPECT_EQ(v, 31);
    EXPECT_EQ(ParseHex("59", &v), 0);
    EXPECT_EQ(v, 0x59);
    EXPECT_EQ(ParseHex("FFFFFFFF", &v), 0);
    EXPECT_EQ(v, INT32_MAX);  // saturates like a 32-bit strtol
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseHex("zz", &v), 1); }), kHexMessage);
    EXPECT_EQ(v, 0);
}

TEST(ParseUnsignedHex, FullRange) {
    uint32_t v = 0;
    EXPECT_EQ(ParseUnsignedHex("FFFFFFFF", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_EQ(ParseUnsignedHex("0x100000000", &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseUnsignedHex("1g", &v), 1); }), kHexMessage);
    EXPECT_EQ(v, 1u);
}

TEST(Parsers, AbsentWordIsRejectedNotDereferenced) {
    int32_t s = 9;
    uint32_t u = 9;
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseDecimal(nullptr, &s), 1); }), kDecimalMessage);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ParseUnsignedHex(nullptr, &u), 1); }), kHexMessage);
    EXPECT_EQ(u, 0u);
}

std::string Dump(const uint8_t *bytes, int32_t count, int *result) {
    FILE *f = tmpfile();
    *result = DumpHex(f, bytes, count);
    long n = ftell(f);
    rewind(f);
    std::string text(static_cast<size_t>(n), '\0');
    size_t got = fread(text.data(), 1, text.size(), f);
    text.resize(got);
    fclose(f);
    return text;
}

TEST(DumpHex, SixteenBytesToALine) {
    uint8_t bytes[17];
    for (int i = 0; i < 17; ++i) bytes[i] = static_cast<uint8_t>(i * 15);
    int r = 0;
    std::string text = Dump(bytes, 17, &r);
    EXPECT_EQ(r, 17);
    EXPECT_EQ(text,
              "\n00  0F  1E  2D  3C  4B  5A  69  78  87  96  A5  B4  C3  D2  E1  "
              "\nF0  \n");
}

TEST(DumpHex, NothingToDump) {
    uint8_t byte = 0xAB;
    int r = 5;
    EXPECT_EQ(Dump(&byte, 0, &r), "\n");
    EXPECT_EQ(r, 0);
    EXPECT_EQ(Dump(&byte, -3, &r), "\n");
    EXPECT_EQ(r, 0);
    EXPECT_EQ(Dump(&byte, 1, &r), "\nAB  \n");
    EXPECT_EQ(r, 1);
}

class FileHelpers : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/zentrel-unit-XXXXXX";
        int fd = mkstemp(pattern);
        ASSERT_GE(fd, 0);
        close(fd);
        path_ = pattern;
    }
    void TearDown() override { remove(path_.c_str()); }
    void Write(const std::string &content) {
        FILE *f = fopen(path_.c_str(), "wb");
        fwrite(content.data(), 1, content.size(), f);
        fclose(f);
    }
    std::string path_;
};

TEST_F(FileHelpers, ReadWholeFileHandsOverTheBytes) {
    Write(std::string("ab\0cd", 5));
    uint8_t *buffer = nullptr;
    uint32_t length = 0;
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ReadWholeFile(path_.c_str(), &buffer, &length), 0); }), "");
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(length, 5u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer), length), std::string("ab\0cd", 5));
    FreeBuffer(buffer);
}

TEST_F(FileHelpers, ReadWholeFileRefusesEmptyAndMissingFiles) {
    Write("");
    uint8_t *buffer = nullptr;
    uint32_t length = 1;
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ReadWholeFile(path_.c_str(), &buffer, &length), 1); }),
              "file length less than 0, file length 0\n");
    EXPECT_EQ(Captured([&] { EXPECT_EQ(ReadWholeFile("/nonexistent/zentrel", &buffer, &length), 1); }),
              "NULL pointer for file\n");
}

TEST_F(FileHelpers, GetFileLengthKeepsThePosition) {
    Write("0123456789");
    FILE *f = fopen(path_.c_str(), "rb");
    ASSERT_NE(f, nullptr);
    fseek(f, 3, SEEK_SET);
    uint32_t length = 0;
    EXPECT_EQ(GetFileLength(f, &length), 0);
    EXPECT_EQ(length, 10u);
    EXPECT_EQ(ftell(f), 3);
    char rest[8] = {};
    EXPECT_EQ(ReadExact(f, rest, 7), 0);
    EXPECT_STREQ(rest, "3456789");
    EXPECT_EQ(ReadExact(f, rest, 1), 1);  // nothing left
    EXPECT_EQ(ReadExact(nullptr, rest, 1), 1);
    fclose(f);
}

TEST_F(FileHelpers, WriteBufferToFileWritesEveryByte) {
    FILE *f = fopen(path_.c_str(), "wb");
    EXPECT_EQ(WriteBufferToFile(f, "\x01\x02\x03", 3), 0);
    fclose(f);
    uint8_t *buffer = nullptr;
    uint32_t length = 0;
    ASSERT_EQ(ReadWholeFile(path_.c_str(), &buffer, &length), 0);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(buffer[2], 3);
    FreeBuffer(buffer);
}

TEST(Words, UsageAndBoundedLookup) {
    const char *const help[] = {"-h", nullptr};
    const char *const other[] = {"-x", "1", nullptr};
    const char *const empty[] = {nullptr};
    EXPECT_TRUE(WantsUsage(help));
    EXPECT_FALSE(WantsUsage(other));
    EXPECT_FALSE(WantsUsage(empty));
    EXPECT_FALSE(WantsUsage(nullptr));
    EXPECT_STREQ(WordAt(other, 1), "1");
    EXPECT_EQ(WordAt(other, 2), nullptr);
    EXPECT_EQ(WordAt(other, 7), nullptr);  // never read past the end marker
    EXPECT_EQ(WordAt(nullptr, 0), nullptr);
}

TEST(Buffers, AllocZeroedAndFree) {
    uint8_t *p = static_cast<uint8_t *>(AllocZeroed(64));
    ASSERT_NE(p, nullptr);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(p[i], 0);
    FreeBuffer(p);
    FreeBuffer(nullptr);
}

}  // namespace
