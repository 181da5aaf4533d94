// The simulator's scenario and state files with arbitrary contents. The
// first byte chooses which file the rest is; the library is opened on it
// (and, for a state file, closed, which writes the file back), and a few
// commands read the switch the file described.
#include <cstdint>
#include <cstdlib>

#include "zentrel.h"
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return -1;
    bool state = (data[0] & 1) != 0;
    const char *variable = state ? "ZENTREL_SIM_STATE" : "ZENTREL_SIM_SCENARIO";
    const char *name = state ? "state.json" : "scenario.json";
    fuzz::Begin(nullptr, 0, false);
    fuzz::Fresh();
    fuzz::WriteFile(name, data + 1, size - 1);
    setenv(variable, name, 1);
    if (ZentrelInitialize() == ZENTREL_STATUS_SUCCESS) {
        fuzz::Dispatch({"-i", "0", "-ver"});
        fuzz::Dispatch({"-i", "1", "-swerr"});
        fuzz::Dispatch({"-i", "0", "-GetPortAttr"});
        ZentrelExit();
    }
    unsetenv(variable);
    fuzz::End();
    return 0;
}
