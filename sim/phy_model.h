// What a simulated switch knows of its lanes' physical layer: how open each
// lane's eye is, the hardware eye measurement under way, and the PRBS
// generator and checker of each lane.
#ifndef ZENTREL_SIM_PHY_MODEL_H
#define ZENTREL_SIM_PHY_MODEL_H

#include <cstdint>

#include "zentrel_phy.h"

namespace sim {

// One lane's receiver. Everything the PHY calls report of a lane (margins,
// eye, equalization taps, transmitter settings, PRBS errors) follows from
// its quality, so a weak lane looks weak in every tool.
struct PhyLane {
    uint8_t quality;        // 0 closed to 100 wide open
    bool invertedPolarity;  // its receiver sees the data inverted
};

// The hardware eye measurement: started over a range of lanes, it opens
// further with each poll until it is read and cleaned up.
struct EyeScan {
    bool active;
    uint32_t startLane;
    uint32_t laneCount;
    uint32_t targetBer;  // 1e-N for N; 0 means 1e-12
    uint32_t polls;
};

// One lane's PRBS generator (its transmitter, looped back to its own
// receiver) and checker.
struct PrbsLane {
    bool generating;
    uint32_t pattern, rate;
    bool checking;
    uint32_t checkPattern, checkRate;
    bool invert, infinite;
    uint64_t sampleCount;  // bits; the check ends there unless infinite
    bool inSync, done;
    uint64_t bits;         // bits checked
    int32_t errors;
    uint32_t injected;     // single-bit errors the checker has yet to see
};

struct PhyModel {
    uint32_t laneCount;   // lanes of the switch, at most ZENTREL_LANE_COUNT
    uint32_t maxRate;     // fastest PRBS rate, ZENTREL_PRBS_RATE_...
    uint8_t pswVersion;
    PhyLane lanes[ZENTREL_LANE_COUNT];
    EyeScan eye;
    PrbsLane prbs[ZENTREL_LANE_COUNT];
};

// What a lane reports, derived from its quality (for the unit tests and
// the calls alike).
struct LaneMargins {
    uint32_t right, left, up, down;  // steps
};
LaneMargins MarginsOf(const PhyModel &m, uint32_t lane);
ZENTREL_SWITCH_RX_EQ_LANE RxEqOf(const PhyModel &m, uint32_t lane);
ZENTREL_SWITCH_TX_COEFF_LANE TxCoeffOf(const PhyModel &m, uint32_t lane);
// The eye after `polls` polls at the target bit error rate 1e-ber.
ZENTREL_SWITCH_HW_EYE_LANE EyeOf(const PhyModel &m, uint32_t lane, uint32_t ber, uint32_t polls);
// Bit errors the checker of a lane counts in one second.
int32_t PrbsErrorsPerSecond(const PhyModel &m, uint32_t lane);

}  // namespace sim

#endif
