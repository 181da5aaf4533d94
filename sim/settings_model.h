// What a simulated switch knows of its temperature, identity and settings.
#ifndef ZENTREL_SIM_SETTINGS_MODEL_H
#define ZENTREL_SIM_SETTINGS_MODEL_H

#include <cstdint>

#include "zentrel_settings.h"

namespace sim {

struct Device;

// Nobody holds the switch's time.
constexpr uint32_t kNoTimeHolder = 0xFF;

struct SettingsModel {
    uint32_t temperature;  // degrees Celsius
    ZENTREL_SWITCH_MFG_INFO mfg;
    uint32_t sbrVersion;   // default SBR region, most significant byte first
    uint32_t deviceSbrVersion;  // device specific SBR region
    ZENTREL_SWITCH_WAFER_INFO wafer;

    // The clock as last set, and the issuer whose hold keeps others from
    // setting it (kNoTimeHolder when none).
    uint32_t timeLow, timeHigh;
    uint32_t timeIssuer;
    uint32_t timeHolder;
    char timeZone[8];

    ZENTREL_SWITCH_OOB_PARAMS_RESP oob;
    uint32_t asyncTimeout;
};

// Makes the device's manufacturing information the one switchMfgInfo_temp
// holds: the library has just read it.
void CacheMfgInfo(const Device &device);

}  // namespace sim

#endif
