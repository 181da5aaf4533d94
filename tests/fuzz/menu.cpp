// The interactive mode with arbitrary standard input: the device index
// prompt, the menu and every option's prompts, until the input ends.
//
// Left out, by refusing any input with an answer that would choose them:
// menu 94 (the parallel test: after a failed read of its firmware file it
// keeps a lock for good, so its other threads wait for ever), and menu 30
// (port performance, which ends the process with abort() when asked for a
// single port's counters, as the tool has always done). And the polling
// options (21, hardware eye scan; 29 and 31, LTSSM sampling and trace; 35,
// PRBS) with an answer above 10000: they poll as many times as the count
// asks, a long test the user asked for, not a hang.
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "frontend/discovery.h"
#include "harness.h"

namespace {

// Whether some answer of the input reads as one of the left-out options:
// each word, cut as a prompt cuts it, taken as a decimal answer.
bool ChoosesLeftOut(const uint8_t *data, size_t size) {
    bool polls = false, large = false;
    size_t i = 0;
    while (i < size) {
        while (i < size && isspace(data[i])) ++i;
        std::string word;
        while (i < size && !isspace(data[i])) {
            if (word.size() < 79) word += static_cast<char>(data[i]);
            ++i;
        }
        long long v = strtoll(word.c_str(), nullptr, 10);
        if (v > INT32_MAX) v = INT32_MAX;
        if (v < INT32_MIN) v = INT32_MIN;
        uint32_t choice = static_cast<uint32_t>(static_cast<int32_t>(v));
        if (choice == 94 || choice == 30) return true;
        if (choice == 21 || choice == 29 || choice == 31 || choice == 35) polls = true;
        if (v > 10000) large = true;
    }
    return polls && large;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (ChoosesLeftOut(data, size)) return -1;
    fuzz::Begin(data, size);
    DiscoverByAddress(0, "0", "0", "0", "0", "0");
    fuzz::End();
    return 0;
}
