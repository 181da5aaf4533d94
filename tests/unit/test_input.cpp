// The answer readers: scanf-like conversions that never overflow and never
// lose scripted answers.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "frontend/input.h"

namespace {

// Replaces standard input with a fixed text for one test.
class ScriptedInput : public testing::Test {
protected:
    void Feed(const std::string &text) {
        text_ = text;
        saved_ = stdin;
        stdin = fmemopen(text_.data(), text_.size(), "r");
        ASSERT_NE(stdin, nullptr);
    }
    void TearDown() override {
        if (saved_ != nullptr) {
            fclose(stdin);
            stdin = saved_;
        }
    }
    std::string text_;
    FILE *saved_ = nullptr;
};

TEST_F(ScriptedInput, AnswersAreReadInTurnAndFlushKeepsThem) {
    Feed("3\n  -7\nff 0x1F\nname\n");
    int32_t a = 0, b = 0;
    uint32_t h = 0, h2 = 0;
    char word[16] = "";
    EXPECT_EQ(ScanDecimal(&a), 1);
    FlushInput();  // not a terminal: nothing is thrown away
    EXPECT_EQ(ScanDecimal(&b), 1);
    EXPECT_EQ(ScanHex(&h), 1);
    EXPECT_EQ(ScanHex(&h2), 1);
    EXPECT_EQ(ScanWord(word, sizeof word), 1);
    EXPECT_EQ(a, 3);
    EXPECT_EQ(b, -7);
    EXPECT_EQ(h, 0xFFu);
    EXPECT_EQ(h2, 0x1Fu);
    EXPECT_STREQ(word, "name");
    EXPECT_EQ(ScanDecimal(&a), EOF);
    EXPECT_EQ(a, 3);
    EXPECT_TRUE(InputEnded());
}

TEST_F(ScriptedInput, NonNumberLeavesValueAndIsConsumedWithItsLine) {
    Feed("q rest of line\n5\n");
    int32_t v = 42;
    EXPECT_EQ(ScanDecimal(&v), 0);
    EXPECT_EQ(v, 42);
    EXPECT_EQ(ScanDecimal(&v), 1);
    EXPECT_EQ(v, 5);
}

TEST_F(ScriptedInput, NegativeIntoUnsignedChoiceWraps) {
    Feed("-1 129\n");
    uint32_t choice = 0;
    EXPECT_EQ(ScanDecimal(&choice), 1);
    EXPECT_EQ(choice, 0xFFFFFFFFu);
    EXPECT_EQ(ScanDecimal(&choice), 1);
    EXPECT_EQ(choice, 129u);
}

TEST_F(ScriptedInput, OverlongAnswersAreCutNotOverflowed) {
    std::string longWord(5000, 'x');
    std::string longNumber(3000, '9');
    Feed(longWord + "\n" + longNumber + "\n" + longNumber + "\n7\n");
    char word[8];
    int32_t d = 0;
    uint32_t u = 0;
    EXPECT_EQ(ScanWord(word, sizeof word), 1);
    EXPECT_STREQ(word, "xxxxxxx");
    EXPECT_EQ(ScanDecimal(&d), 1);
    EXPECT_EQ(d, INT32_MAX);
    EXPECT_EQ(ScanUnsigned(&u), 1);
    EXPECT_EQ(u, UINT32_MAX);
    EXPECT_EQ(ScanDecimal(&d), 1);  // the next answer is still the next answer
    EXPECT_EQ(d, 7);
}

TEST_F(ScriptedInput, ByteAndSixtyFourBitHex) {
    Feed("1FF ffffffffffffffff 12345678ABCD\n");
    uint8_t b = 0;
    uint64_t big = 0;
    EXPECT_EQ(ScanHexByte(&b), 1);
    EXPECT_EQ(b, 0xFF);
    EXPECT_EQ(ScanHex64(&big), 1);
    EXPECT_EQ(big, 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(ScanHex64(&big), 1);
    EXPECT_EQ(big, 0x12345678ABCDull);
}

TEST_F(ScriptedInput, PartialNumberTakesItsDigits) {
    Feed("12abc 4\n");
    int32_t v = 0;
    EXPECT_EQ(ScanDecimal(&v), 1);
    EXPECT_EQ(v, 12);
    EXPECT_EQ(ScanDecimal(&v), 1);
    EXPECT_EQ(v, 4);
}

}  // namespace
