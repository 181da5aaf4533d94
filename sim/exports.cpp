// The exported functions of the simulated library, one for each function of
// include/zentrel_interface.def: the model's answer, or the recording's when
// a recording is replayed, and a line of the trace with the arguments as
// the call was given them.
#include "sim.h"

#define ZENTREL_FUNCTION(name, ...)                                                                \
    ZENTREL_API ZENTREL_STATUS name(ZI_PARAMS(__VA_ARGS__)) {                                      \
        ZI_ARGS(args, __VA_ARGS__);                                                                \
        const size_t count = sizeof args / sizeof args[0] - 1;                                     \
        const bool tracing = sim::Tracing();                                                       \
        std::string arguments = tracing ? sim::TraceArguments(args + 1, count) : std::string();    \
        ZENTREL_STATUS status = sim::Replaying() ? sim::Replay(#name, args + 1, count)             \
                                                 : simlib::name(ZI_NAMES(__VA_ARGS__));            \
        if (tracing) sim::WriteTrace(#name, arguments, status);                                    \
        return status;                                                                             \
    }
#include "zentrel_interface.def"
#undef ZENTREL_FUNCTION
