// What a simulated switch knows of its links: the register space that
// switch memory reads and writes reach (the LTSSM probe registers among
// it), each port's walk through the LTSSM, the LTSSM triggers and monitors,
// and the performance counters.
#ifndef ZENTREL_SIM_LINK_MODEL_H
#define ZENTREL_SIM_LINK_MODEL_H

#include <cstdint>
#include <map>
#include <vector>

#include "zentrel_link.h"
#include "zentrel_ports.h"

namespace sim {

// Switch memory reachable by ZentrelSwitchMemoryRead/Write, and the most
// bytes one call moves.
constexpr uint32_t kRegisterBase = 0x60800000u;
constexpr uint32_t kRegisterSpan = 0x00100000u;
constexpr uint32_t kMaxAccessBytes = 4096;

// How a port's LTSSM moves from sample to sample. Auto: up when the port's
// link is up, else down.
enum class LtssmWalk : uint8_t { kAuto, kUp, kRecovering, kDown };

struct LtssmPort {
    LtssmWalk walk;
    uint32_t step;  // samples walked since the link last started training
};

// An armed LTSSM trigger (set up by the trace or by the monitor).
struct LtssmTrigger {
    uint16_t state;                // the state whose entry fires it
    bool fired;
    bool monitor;                  // armed by the monitor set-up
    std::vector<uint16_t> history; // states entered since it was armed
};

// One port's counters in the order PH, PDW, NPH, NPDW, CplH, CplDW, DLLP.
struct PerfPort {
    uint64_t ingress[ZENTREL_PERF_COUNTER_COUNT];
    uint64_t egress[ZENTREL_PERF_COUNTER_COUNT];
    uint64_t preIngress[ZENTREL_PERF_COUNTER_COUNT];  // at the port's previous read
    uint64_t preEgress[ZENTREL_PERF_COUNTER_COUNT];
    int32_t ingressLoad;  // hundredths of a percent of the link; -1: by the port's role
    int32_t egressLoad;
};

struct LinkModel {
    uint32_t registerSeed;                    // the values of words never written
    std::map<uint32_t, uint32_t> registers;   // written words, by address
    LtssmPort ltssm[ZENTREL_PORT_COUNT];
    std::map<uint32_t, LtssmTrigger> triggers; // by port
    PerfPort perf[ZENTREL_PORT_COUNT];
    bool perfStarted;                         // counting, on a start/stop switch
};

}  // namespace sim

#endif
