// What a simulated switch keeps of its images: the SBR/MFG configuration
// slots, the unit specific data region and the manufacturing configuration
// page. The firmware version a download sets lives in the device
// information and in the manufacturing information.
#ifndef ZENTREL_SIM_IMAGES_MODEL_H
#define ZENTREL_SIM_IMAGES_MODEL_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zentrel_images.h"

namespace sim {

// Why a firmware image or PLDM package is refused.
enum : ZENTREL_STATUS {
    kStatusNotAnImage = 0x10,     // shorter than its header, or wrong magic or format
    kStatusImageLength = 0x11,    // the length differs from header plus payload
    kStatusImageChecksum = 0x12,  // the payload's CRC-32 differs from the header's
    kStatusImageDevice = 0x13,    // built for another device id
};

// The header in front of every firmware image and PLDM package, all
// numbers little-endian: magic (4 bytes), format (1), firmware version
// (most significant byte first as a number), device id (0 for any),
// payload length, CRC-32 of the payload, 8 zero bytes.
constexpr size_t kImageHeaderBytes = 32;
constexpr uint32_t kImageFormat = 1;
extern const char kFirmwareMagic[4];  // "ZFWI"
extern const char kPldmMagic[4];      // "PLDM"

// 0 when the image is one the switch with this device id takes, with the
// version it carries in *version; otherwise the status it is refused with.
ZENTREL_STATUS CheckImage(const uint8_t *image, size_t length, const char (&magic)[4], uint16_t deviceId,
                          uint32_t *version);
uint32_t Crc32(const uint8_t *bytes, size_t count);

// The manufacturing configuration page holds at most this many bytes.
constexpr size_t kCfgPageMax = 4096;

struct ImagesModel {
    uint32_t sbrSupported;  // configurations the switch holds
    uint32_t sbrSelected;
    uint32_t sbrMethod;     // 0 by the straps, 1 by a library request
    std::vector<uint8_t> usd;      // the unit specific data region, at most ZENTREL_USD_REGION_MAX bytes
    std::vector<uint8_t> cfgPage;  // the manufacturing configuration page
};

}  // namespace sim

#endif
