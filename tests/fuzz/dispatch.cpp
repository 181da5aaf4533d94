// The one-shot dispatcher with arbitrary word lists (one word a line) against
// the simulator, standard input empty.
#include <cstdint>

#include "frontend/commands.h"
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::vector<std::string> words = fuzz::Words(data, size);
    std::vector<char *> argv = fuzz::Argv(words);
    fuzz::Begin(nullptr, 0);
    uint32_t position = 0;
    DispatchCommand(static_cast<uint32_t>(words.size()), argv.data(), &position);
    fuzz::End();
    return 0;
}
