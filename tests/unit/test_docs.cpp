// The manual page and the bash completion name exactly the command table's words.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "frontend/commands.h"

namespace {

std::set<std::string> TableWords() {
    std::set<std::string> words;
    for (const CommandRow *row = kCommandTable; row->name != nullptr; ++row) words.insert(row->name);
    return words;
}

std::string ReadAll(const char *path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// What the completion offers after the words given, one candidate a line.
std::set<std::string> Complete(const std::string &words, int current) {
    std::string script = "source '" ZENTREL_COMPLETION "'; COMP_WORDS=(" + words + "); COMP_CWORD=" +
                         std::to_string(current) + "; _zentrelLibTest; printf '%s\\n' \"${COMPREPLY[@]}\"";
    std::string command = "bash -c '" + std::regex_replace(script, std::regex("'"), "'\\''") + "'";
    std::set<std::string> offered;
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return offered;
    char line[256];
    while (fgets(line, sizeof line, pipe) != nullptr) {
        std::string word(line);
        if (!word.empty() && word.back() == '\n') word.pop_back();
        if (!word.empty()) offered.insert(word);
    }
    pclose(pipe);
    return offered;
}

TEST(Docs, CompletionOffersEveryCommandWordAfterAnIndex) {
    std::set<std::string> expected = TableWords();
    expected.insert({"-addr", "-bus", "-dev", "-func"});
    EXPECT_EQ(Complete("zentrelLibTest -i 0 ''", 3), expected);
    EXPECT_EQ(Complete("zentrelLibTest -i 0 -resetp", 3), (std::set<std::string>{"-resetporterr", "-resetpktramerr"}));
}

TEST(Docs, CompletionOffersTheTopLevelOptionsFirst) {
    EXPECT_EQ(Complete("zentrelLibTest -", 1),
              (std::set<std::string>{"-i", "-list", "-sdb", "-asynctimeout", "-h", "-help", "--help", "-addr",
                                     "-bus", "-dev", "-func"}));
    EXPECT_TRUE(Complete("zentrelLibTest -i ''", 2).empty());
}

TEST(Docs, ManualPageDescribesEveryCommandWordAndNoOther) {
    std::string page = ReadAll(ZENTREL_MAN_PAGE);
    size_t start = page.find("\n.SH COMMANDS\n");
    size_t end = page.find("\n.SH MENU\n");
    ASSERT_NE(start, std::string::npos);
    ASSERT_NE(end, std::string::npos);
    std::string commands = page.substr(start, end - start);

    // Command words appear in bold, their minus signs escaped.
    std::set<std::string> named;
    std::regex bold(R"(\\fB((?:\\-)+[A-Za-z]+))");
    for (auto it = std::sregex_iterator(commands.begin(), commands.end(), bold); it != std::sregex_iterator(); ++it)
        named.insert(std::regex_replace(it->str(1), std::regex(R"(\\-)"), "-"));
    std::set<std::string> words = TableWords();
    for (const std::string &word : words) EXPECT_TRUE(named.count(word)) << word << " is not in the manual page";
    for (const std::string &word : named) {
        // Words such as "-f" are arguments of a command, not commands.
        if (word.size() > 2) {
            EXPECT_TRUE(words.count(word)) << word << " is in the manual page but not in the table";
        }
    }
}

TEST(Docs, ManualPageListsEveryMenuOption) {
    std::string page = ReadAll(ZENTREL_MAN_PAGE);
    for (int option = 1; option <= 128; ++option)
        EXPECT_NE(page.find("\n.IP " + std::to_string(option) + " 5\n"), std::string::npos) << option;
}

}  // namespace
