// The simulator's reader of scenario and state files: bounded in what it
// reads, strict about numbers, and precise about where a problem is.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "reader.h"

namespace {

using sim::Json;
using sim::Problem;

class TempFile {
public:
    explicit TempFile(const std::string &text) {
        char name[] = "/tmp/zentrel-reader-XXXXXX";
        int fd = mkstemp(name);
        path_ = name;
        FILE *f = fdopen(fd, "w");
        fwrite(text.data(), 1, text.size(), f);
        fclose(f);
    }
    ~TempFile() { unlink(path_.c_str()); }
    const char *Path() const { return path_.c_str(); }

private:
    std::string path_;
};

std::string Why(const char *path) {
    Json doc;
    std::string why;
    EXPECT_FALSE(sim::ReadJsonFile(path, &doc, &why));
    return why;
}

TEST(ReadJsonFile, ReadsJsonWithComments) {
    TempFile file("// a scenario\n{\"deviceCount\": 3 /* three */}\n");
    Json doc;
    std::string why;
    ASSERT_TRUE(sim::ReadJsonFile(file.Path(), &doc, &why)) << why;
    EXPECT_EQ(doc["deviceCount"], 3);
}

TEST(ReadJsonFile, RefusesDeepNestingWithoutOverflowingTheStack) {
    const size_t depth = 100000;
    TempFile file("{\"deviceCount\": " + std::string(depth, '[') + std::string(depth, ']') + "}");
    EXPECT_EQ(Why(file.Path()), "nests deeper than 16 levels");
    TempFile justDeepEnough("{\"a\": " + std::string(15, '[') + std::string(15, ']') + "}");
    Json doc;
    std::string why;
    EXPECT_TRUE(sim::ReadJsonFile(justDeepEnough.Path(), &doc, &why)) << why;
}

TEST(ReadJsonFile, RefusesWhatIsNotARegularFileOfSensibleSize) {
    EXPECT_EQ(Why("/tmp"), "is a directory");
    EXPECT_EQ(Why("/dev/zero"), "is not a regular file");
    EXPECT_EQ(Why("/nonexistent/scenario.json"), "cannot be opened: No such file or directory");
    char fifo[] = "/tmp/zentrel-reader-fifo-XXXXXX";
    ASSERT_NE(mkdtemp(fifo), nullptr);
    std::string pipe = std::string(fifo) + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Why(pipe.c_str()), "is not a regular file");  // and does not wait for a writer
    unlink(pipe.c_str());
    rmdir(fifo);
    TempFile large("{\"comment\": \"" + std::string(sim::kMaxJsonFileBytes, 'x') + "\"}");
    EXPECT_EQ(Why(large.Path()), "is larger than 4 MiB");
}

TEST(ReadJsonFile, NamesWhereTheSyntaxFails) {
    TempFile file("{\"deviceCount\": no}");
    EXPECT_EQ(Why(file.Path()),
              "is not valid JSON: [json.exception.parse_error.101] parse error at line 1, column 18: syntax error while "
              "parsing value - invalid literal; last read: '\"deviceCount\": no'");
}

uint64_t Number(const Json &value, uint64_t max, std::string *message) {
    uint64_t v = 12345;
    Problem error;
    if (!sim::ReadNumber(value, max, &v, &error)) *message = error.Text();
    return v;
}

TEST(ReadNumber, TakesDecimalAndHexDigitsOnly) {
    std::string m;
    EXPECT_EQ(Number(Json(42), 100, &m), 42u);
    EXPECT_EQ(Number(Json("42"), 100, &m), 42u);
    EXPECT_EQ(Number(Json("0x2A"), 100, &m), 42u);
    EXPECT_EQ(Number(Json("0X2a"), 100, &m), 42u);
    EXPECT_EQ(Number(Json("18446744073709551615"), UINT64_MAX, &m), UINT64_MAX);
    EXPECT_EQ(m, "");
    for (const char *bad : {"\t5", "+5", "0x 5", "0x-1", " 5", "5 ", "0x", "", "-1", "5a", "1e3"}) {
        m.clear();
        EXPECT_EQ(Number(Json(bad), UINT64_MAX, &m), 12345u) << bad;
        EXPECT_EQ(m, Json(bad).dump() + " is not a number") << bad;
    }
}

TEST(ReadNumber, ReportsOverflowAsOverflow) {
    std::string m;
    Number(Json("99999999999999999999999"), UINT64_MAX, &m);
    EXPECT_EQ(m, "\"99999999999999999999999\" does not fit in 64 bits");
    Number(Json("0x10000000000000000"), UINT64_MAX, &m);
    EXPECT_EQ(m, "\"0x10000000000000000\" does not fit in 64 bits");
    Number(Json::parse("99999999999999999999999"), UINT64_MAX, &m);
    EXPECT_EQ(m, "9.999999999999999e+22 does not fit in 64 bits");
    Number(Json(65), 64, &m);
    EXPECT_EQ(m, "65 is larger than 64");
    Number(Json(-1), 64, &m);
    EXPECT_EQ(m, "a negative number is not allowed here");
    Number(Json(2.5), 64, &m);
    EXPECT_EQ(m, "2.5 is not a whole number");
    Number(Json::parse("[[[1]]]"), 64, &m);
    EXPECT_EQ(m, "a list is not a number");
}

TEST(Problem, NamesTheWholePathOfABadField) {
    Problem error;
    error = "4 is larger than 3";
    error.In("severity");
    error.In("healthConfig");
    error.At(0);
    error.In("devices");
    EXPECT_EQ(error.Text(), "devices[0].healthConfig.severity: 4 is larger than 3");
    Problem list;
    list = "is not a number";
    list.At(2);
    list.In("masks");
    EXPECT_EQ(list.Text(), "masks[2]: is not a number");
}

TEST(Problem, QuotesOnlyAShortExcerptOfAKeyOrText) {
    std::string huge(10 << 20, 'k');
    EXPECT_EQ(sim::Quote(huge), "\"" + std::string(40, 'k') + "...\"");
    EXPECT_EQ(sim::Excerpt(Json(huge)), "\"" + std::string(40, 'k') + "...\"");
    EXPECT_EQ(sim::Excerpt(Json::parse("{\"a\": [1, 2]}")), "an object");
    Problem error;
    error = "bad";
    error.In(huge);
    EXPECT_EQ(error.Text(), std::string(40, 'k') + "...: bad");
    EXPECT_EQ(sim::Quote("a\nb\xff"), "\"a\\nb\xef\xbf\xbd\"");  // one line, valid UTF-8
}

TEST(ReadVersion, TakesFourDottedBytesOrANumber) {
    uint32_t v = 0;
    Problem error;
    EXPECT_TRUE(sim::ReadVersion(Json("4.21.0.7"), &v, &error));
    EXPECT_EQ(v, 0x04150007u);
    EXPECT_TRUE(sim::ReadVersion(Json("2.3"), &v, &error));
    EXPECT_EQ(v, 0x02030000u);
    EXPECT_TRUE(sim::ReadVersion(Json("0x01020304"), &v, &error));
    EXPECT_EQ(v, 0x01020304u);
    for (const char *bad : {"1.2.3.400", "1..2", "1.2.", "1.2.3.4.5", ".1", "1.-2"}) {
        EXPECT_FALSE(sim::ReadVersion(Json(bad), &v, &error)) << bad;
    }
}

TEST(ReadText, KeepsBytesThatAreNotPlainTextAsAList) {
    char field[8] = {'U', 'T', 'C', '\xff', 0, 0, 0, 0};
    Json saved = sim::WriteText(field, sizeof field);
    EXPECT_EQ(saved, Json::parse("[85, 84, 67, 255]"));
    char back[8];
    Problem error;
    ASSERT_TRUE(sim::ReadText(saved, back, sizeof back, &error));
    EXPECT_EQ(memcmp(back, field, sizeof field), 0);
    EXPECT_EQ(sim::WriteText("EST", 8), Json("EST"));
    EXPECT_FALSE(sim::ReadText(Json("123456789"), back, sizeof back, &error));
    EXPECT_EQ(error.Text(), "must be a text of at most 8 characters");
}

}  // namespace
