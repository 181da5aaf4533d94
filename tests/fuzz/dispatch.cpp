// The one-shot dispatcher with arbitrary word lists (one word a line) against
// the simulator, standard input empty.
//
// Left out: the polling commands (-prbs, -ltssm, -ltssmtrace, -hweye) with a number
// above 10000 in their words. They poll as many times as the count asks: a
// long test the user asked for, not a hang.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "frontend/commands.h"
#include "harness.h"

namespace {

bool LongPoll(const std::vector<std::string> &words) {
    bool polls = false, large = false;
    for (const std::string &word : words) {
        if (word == "-prbs" || word == "-ltssm" || word == "-ltssmtrace" || word == "-hweye") polls = true;
        if (strtoll(word.c_str(), nullptr, 0) > 10000) large = true;
    }
    return polls && large;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::vector<std::string> words = fuzz::Words(data, size);
    if (LongPoll(words)) return -1;
    std::vector<char *> argv = fuzz::Argv(words);
    fuzz::Begin(nullptr, 0);
    uint32_t position = 0;
    DispatchCommand(static_cast<uint32_t>(words.size()), argv.data(), &position);
    fuzz::End();
    return 0;
}
