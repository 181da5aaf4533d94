// What a simulated switch knows of secure-debug tokens: the identity a token
// must carry, the installed token, and the debug ports it opens.
#ifndef ZENTREL_SIM_DEBUGTOKEN_MODEL_H
#define ZENTREL_SIM_DEBUGTOKEN_MODEL_H

#include <cstdint>
#include <vector>

#include "zentrel_debugtoken.h"

namespace sim {

struct DebugTokenModel {
    uint32_t ctiLsb;  // the token identity a token for this switch carries
    uint32_t ctiMsb;
    uint8_t debugAuthId[ZENTREL_DEBUG_AUTH_ID_BYTES];
    ZENTREL_SWITCH_DEBUG_PORT_CAP ports;  // what the switch allows without a token
    bool installed;
    std::vector<ZENTREL_DEBUG_TOKEN_CLAIM> claims;  // of the installed token, in its order
};

// Statuses of the debug token calls, beyond the simulator's general ones.
enum : uint32_t {
    kStatusBadToken = 0x30,        // not a COSE_Sign1 token with a claims map
    kStatusTokenNotForSwitch = 0x31,  // its token identity is not the switch's
    kStatusNoToken = 0x32,         // no token installed
    kStatusTokenFileError = 0x33,  // corvanecwt.cbor cannot be written
};

}  // namespace sim

#endif
