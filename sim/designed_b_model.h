// What a simulated switch knows of its history buffers, performance
// monitoring set-up, address traps and equalization control. Host physical
// address ranges follow from the ports model and keep no state.
#ifndef ZENTREL_SIM_DESIGNED_B_MODEL_H
#define ZENTREL_SIM_DESIGNED_B_MODEL_H

#include <cstdint>
#include <deque>

#include "zentrel_designed.h"
#include "zentrel_phy.h"
#include "zentrel_ports.h"

namespace sim {

// Accesses the trap log keeps; older ones make way.
constexpr uint32_t kTrapLogDepth = 64;

struct HistoryBuffer {
    bool enabled;
    bool wrap;
    uint16_t depth;
    uint32_t total;  // logged since the last clear, dropped ones included
    std::deque<ZENTREL_SWITCH_HISTORY_ENTRY> entries;
};

struct AddressTrap {
    uint8_t access;  // ZENTREL_TRAP_ACCESS_... bits; 0: the trap is not set
    uint32_t start, end;
};

// A lane's equalization: fixed by hand, or adaptive (the PHY's own values).
struct EqSetting {
    bool fixed;
    uint8_t pre, main, post, ctle, vga;
};

struct DesignedBModel {
    HistoryBuffer history[ZENTREL_HISTORY_BUFFER_COUNT];
    bool perfOff[ZENTREL_PORT_COUNT];  // the performance counters skip the port
    AddressTrap traps[ZENTREL_TRAP_COUNT];
    std::deque<ZENTREL_SWITCH_TRAP_ENTRY> trapLog;
    EqSetting eq[ZENTREL_LANE_COUNT];
};

// Hooks of the other parts of the model.
// Every call that reaches a switch (the call log of history buffer 0).
void LogCall(DesignedBModel &m, const char *function, uint64_t number);
// Every word a switch memory access reads or writes: the address traps and
// history buffer 1.
void LogMemoryAccess(DesignedBModel &m, uint32_t address, uint32_t value, bool write);
// Whether the performance counters count the port.
bool PerfMonitored(const DesignedBModel &m, uint32_t port);
// A fixed lane's settings replace what the PHY reports.
void ApplyEqControl(const DesignedBModel &m, uint32_t lane, ZENTREL_SWITCH_TX_COEFF_LANE *tx);
void ApplyEqControl(const DesignedBModel &m, uint32_t lane, ZENTREL_SWITCH_RX_EQ_LANE *rx);

}  // namespace sim

#endif
