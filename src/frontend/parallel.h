// Menu 94: the same series of commands on every discovered switch at once,
// one thread per switch.
#ifndef ZENTRELLIBTEST_PARALLEL_H
#define ZENTRELLIBTEST_PARALLEL_H

#include <cstdint>

#include "zentrel.h"

// Asks which series to run and for a confirmation, then runs it in one
// thread per switch found and waits for every thread in creation order.
// The device context is not used. Returns 0, or 1 when memory for the
// threads runs out or a thread cannot be created or joined.
uint32_t TestParallelApis(PTR_ZENTREL_DEVICE device);

#endif
