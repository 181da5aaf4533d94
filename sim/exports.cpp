// The exported functions of the simulated library, one for each function of
// include/zentrel_interface.def: the model's answer, or the recording's when
// a recording is replayed.
#include "sim.h"

#define ZENTREL_FUNCTION(name, ...)                                                      \
    ZENTREL_API ZENTREL_STATUS name(ZI_PARAMS(__VA_ARGS__)) {                            \
        if (sim::Replaying()) {                                                          \
            ZI_ARGS(args, __VA_ARGS__);                                                  \
            return sim::Replay(#name, args + 1, sizeof args / sizeof args[0] - 1);       \
        }                                                                                \
        return simlib::name(ZI_NAMES(__VA_ARGS__));                                      \
    }
#include "zentrel_interface.def"
#undef ZENTREL_FUNCTION
