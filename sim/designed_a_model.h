// What a simulated switch keeps of error injection, TLP round-trip time
// measurements, credit captures and link-down conditions. The faults and
// the link state themselves live in the ports and topology models.
#ifndef ZENTREL_SIM_DESIGNED_A_MODEL_H
#define ZENTREL_SIM_DESIGNED_A_MODEL_H

#include <cstdint>

#include "zentrel_designed.h"
#include "zentrel_ports.h"

namespace sim {

constexpr uint16_t kDefaultRoundTripSamples = 64;

struct InjectedErrors {
    uint8_t count;  // entries in use, in the order first injected
    ZENTREL_ERR_INJECTION_ENTRY entries[ZENTREL_ERR_INJ_MAX_ENTRIES];
};

struct CreditCapture {
    bool capturing;
    uint32_t samples;  // grows by kCreditSamplesPerRead at each read while capturing
};

struct DesignedAModel {
    InjectedErrors injected[ZENTREL_PORT_COUNT];
    uint16_t roundTripSamples[ZENTREL_PORT_COUNT];
    CreditCapture credits[ZENTREL_PORT_COUNT];
    uint8_t linkDownCondition[ZENTREL_PORT_COUNT];  // ZENTREL_LINK_DOWN_COND_...
};

}  // namespace sim

#endif
