// What a simulated switch knows of its secure boot state and SPDM slots.
#ifndef ZENTREL_SIM_SECURITY_MODEL_H
#define ZENTREL_SIM_SECURITY_MODEL_H

#include <cstdint>
#include <vector>

#include "zentrel_security.h"

namespace sim {

// A certificate stored in a slot is at most this long; larger files are refused.
constexpr size_t kMaxCertificateBytes = 4096;

struct SpdmSlot {
    uint8_t group;  // the slot group the slot belongs to
    bool occupied;
    bool sealed;    // a sealed slot keeps its certificate
    std::vector<uint8_t> certificate;  // DER, when occupied
};

struct SecurityModel {
    ZENTREL_SWITCH_SECURE_BOOT_INFO secureBoot;
    uint8_t slotGroupCount;
    uint8_t slotCount;  // slots 0 to slotCount - 1, at most ZENTREL_SPDM_MAX_SLOTS
    SpdmSlot slots[ZENTREL_SPDM_MAX_SLOTS];
    ZENTREL_SPDM_VERSION versions[ZENTREL_SPDM_MAX_VERSIONS];
    uint8_t versionCount;
    uint8_t currentVersion;  // index into versions
    uint32_t baseAsymAlgo;   // bit masks of what the switch supports
    uint32_t baseHashAlgo;
    uint32_t asymAlgo;       // the single algorithms in use
    uint32_t hashAlgo;
};

// Statuses of the SPDM slot calls, beyond the simulator's general ones.
enum : uint32_t {
    kStatusFileError = 0x10,       // the named file cannot be read or written
    kStatusBadCertificate = 0x11,  // not one DER SEQUENCE of the file's length
    kStatusSlotSealed = 0x12,      // a sealed slot keeps its certificate
    kStatusSlotEmpty = 0x13,       // no certificate to read
};

}  // namespace sim

#endif
