// What a simulated switch knows of its status registers, GPIO and health settings.
#ifndef ZENTREL_SIM_STATUS_MODEL_H
#define ZENTREL_SIM_STATUS_MODEL_H

#include <cstdint>

#include "zentrel_status.h"

namespace sim {

constexpr uint32_t kGpioPinCount = 64;
constexpr uint32_t kStationCount = 9;  // 144 ports, 16 to a station
constexpr uint32_t kLastPort = 143;

struct GpioPin {
    bool high;     // level driven or sensed
    bool output;   // direction
    uint8_t port;  // PCIe port the pin is assigned to
    uint8_t altDSel;
};

// One copy of the health configuration: at runtime or in the configuration page.
struct HealthSettings {
    uint32_t severity;  // 0 Debug, 1 Info, 2 Warning, 3 Error
    uint32_t masks[ZENTREL_HEALTH_SUBSYSTEM_COUNT];
};

// One copy of a station's tag scoreboard time-out: at runtime or in flash.
// A station without its own time-out uses the device-wide one.
struct StationTimeout {
    bool enabled;
    uint16_t ms;
};

struct StatusModel {
    ZENTREL_SWITCH_CCR_STATUS ccr;
    ZENTREL_SWITCH_POWER_ON_SENSE powerOnSense;
    uint32_t sysErrStatus;
    GpioPin pins[kGpioPinCount];  // their levels are the spare state's GPIO data
    uint32_t spareData;
    HealthSettings healthRuntime;
    HealthSettings healthPage;
    uint16_t deviceTagSbTimeoutMs;
    StationTimeout tagSbRuntime[kStationCount];
    StationTimeout tagSbFlash[kStationCount];
};

}  // namespace sim

#endif
