// Status registers, GPIO, health configuration and tag scoreboard time-outs
// of the simulated switches.
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

// A GPIO pin's defaults: the pins not listed are low inputs on port 0
// with AltDSel 0.
struct PinDefault {
    uint8_t pin;
    bool high;
    bool output;
    uint8_t port;
    uint8_t altDSel;
};

struct Defaults {
    ZENTREL_SWITCH_CCR_STATUS ccr;
    ZENTREL_SWITCH_POWER_ON_SENSE powerOnSense;
    PinDefault pins[16];
    size_t pinCount;
    uint32_t spareData;
    HealthSettings health;
    uint16_t deviceTagSbTimeoutMs;
    uint8_t ownTimeoutStation;  // kStationCount for none
    uint16_t ownTimeoutMs;
};

// The first switch: 96 lanes at up to generation 5, booted from its first
// boot loader image; GPIO 8 to 15 drive the attention lights of the first
// port of stations 0 to 7, GPIO 32 and 33 carry an alternate function, and
// station 2 has a time-out of its own. The second, older switch: 64 lanes
// at up to generation 4 with stations 2 and 3 held in reset, booted from
// its second image.
const Defaults kDefaults[] = {
    {
        {1, 1, 1, 1, ZENTREL_SBL_HW_BOOT_LOC_0000_0400, ZENTREL_SBL_HW_STAT_CHECKSUM_PASS, 1},
        {ZENTREL_SBR_CS_SEL_SPI_FLASH_CS_N, 0, ZENTREL_BAUD_RATE_115200, ZENTREL_ENABLE_LANE_NUM_96, 5},
        {{4, true, false, 0, 0},
         {5, true, false, 0, 0},
         {6, true, false, 0, 0},
         {7, true, false, 0, 0},
         {8, false, true, 0, 0},
         {9, false, true, 16, 0},
         {10, true, true, 32, 0},
         {11, false, true, 48, 0},
         {12, false, true, 64, 0},
         {13, true, true, 80, 0},
         {14, false, true, 96, 0},
         {15, true, true, 112, 0},
         {32, true, false, 0, 3},
         {33, true, false, 0, 3}},
        14,
        0x5A,
        {ZENTREL_HEALTH_SEVERITY_LAST - 1, {0x3, 0xFF, 0x1F, 0x7, 0x0, 0x1, 0x3, 0x1, 0xF, 0x7}},
        50,
        2,
        250,
    },
    {
        {1, 1, 0, 0, ZENTREL_SBL_HW_BOOT_LOC_0004_0400, ZENTREL_SBL_HW_STAT_CHECKSUM_PASS, 1},
        {ZENTREL_SBR_CS_SEL_SPI_CS_N0, 0, ZENTREL_BAUD_RATE_19200, ZENTREL_ENABLE_LANE_NUM_64, 4},
        {{9, true, true, 16, 0}, {12, true, true, 48, 0}},
        2,
        0x01,
        {1, {0x1, 0xF, 0x3, 0x3, 0x0, 0x0, 0x1, 0x0, 0x7, 0x3}},
        100,
        kStationCount,
        0,
    },
};

// The levels of 32 pins from first on, one bit a pin.
uint32_t PinLevels(const StatusModel &status, uint32_t first) {
    uint32_t levels = 0;
    for (uint32_t i = 0; i < 32; ++i)
        if (status.pins[first + i].high) levels |= 1u << i;
    return levels;
}

void SetPinLevels(StatusModel &status, uint32_t first, uint32_t levels) {
    for (uint32_t i = 0; i < 32; ++i) status.pins[first + i].high = (levels >> i & 1u) != 0;
}

bool StoreNumber(const Json &value, uint64_t max, uint32_t *field, Problem *error) {
    return Store(value, field, error, max);
}

bool ReadCcr(const Json &value, ZENTREL_SWITCH_CCR_STATUS *ccr, Problem *error) {
    Field fields[] = {
        {"s0PcePerstN", &ccr->S0PcePerstN, UINT32_MAX}, {"s1PcePerstN", &ccr->S1PcePerstN, UINT32_MAX},
        {"s2PcePerstN", &ccr->S2PcePerstN, UINT32_MAX}, {"s3PcePerstN", &ccr->S3PcePerstN, UINT32_MAX},
        {"sblHwBootLoc", &ccr->SblHwBootLoc, UINT32_MAX}, {"sblHwStat", &ccr->SblHwStat, UINT32_MAX},
        {"pcdValid", &ccr->PcdValid, UINT32_MAX},
    };
    return ReadFields(value, fields, sizeof fields / sizeof fields[0], error);
}

bool ReadPowerOnSense(const Json &value, ZENTREL_SWITCH_POWER_ON_SENSE *sense, Problem *error) {
    Field fields[] = {
        {"sbrCsSel", &sense->SbrCsSel, UINT32_MAX},
        {"sblDisable", &sense->SblDisable, UINT32_MAX},
        {"sdbBaudRate", &sense->SdbBaudRate, UINT32_MAX},
        {"enableLaneNumber", &sense->EnableLaneNumber, UINT32_MAX},
        {"maxLinkSpeed", &sense->MaxLinkSpeed, UINT32_MAX},
    };
    return ReadFields(value, fields, sizeof fields / sizeof fields[0], error);
}

bool ReadSpareState(const Json &value, StatusModel &status, Problem *error) {
    uint32_t low = PinLevels(status, 0), high = PinLevels(status, 32);
    Field fields[] = {
        {"gpioDataLow", &low, UINT32_MAX},
        {"gpioDataHigh", &high, UINT32_MAX},
        {"spareData", &status.spareData, 0xFF},
    };
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error)) return false;
    SetPinLevels(status, 0, low);
    SetPinLevels(status, 32, high);
    return true;
}

// [{"pin": n, "high": 0/1, "output": 0/1, "port": n, "altDSel": n}, ...]
bool ReadPins(const Json &value, StatusModel &status, Problem *error) {
    return ReadNumberedList(value, "pin", kGpioPinCount - 1, error, [&](uint64_t pin, const Json &entry, Problem *e) {
        GpioPin &p = status.pins[pin];
        uint32_t high = p.high, output = p.output, port = p.port, altDSel = p.altDSel;
        Field fields[] = {
            {"high", &high, 1},
            {"output", &output, 1},
            {"port", &port, kLastPort},
            {"altDSel", &altDSel, ZENTREL_GPIO_ALT_DSEL_MASK},
        };
        if (!ReadFields(entry, fields, sizeof fields / sizeof fields[0], e, {"pin"})) return false;
        p.high = high != 0;
        p.output = output != 0;
        p.port = static_cast<uint8_t>(port);
        p.altDSel = static_cast<uint8_t>(altDSel);
        return true;
    });
}

// {"severity": n, "masks": [n, ...]}: one copy of the health configuration.
bool ReadHealth(const Json &value, HealthSettings *settings, Problem *error) {
    Field fields[] = {{"severity", &settings->severity, ZENTREL_HEALTH_SEVERITY_LAST}};
    if (!ReadFields(value, fields, 1, error, {"masks"})) return false;
    const Json *masks = Member(value, "masks");
    if (masks == nullptr) return true;
    if (!masks->is_array() || masks->size() > ZENTREL_HEALTH_SUBSYSTEM_COUNT) {
        *error = "must be a list of at most 10 masks";
        return error->In("masks");
    }
    for (size_t i = 0; i < masks->size(); ++i)
        if (!StoreNumber((*masks)[i], UINT32_MAX, &settings->masks[i], error)) return error->At(i), error->In("masks");
    return true;
}

Json WriteHealth(const HealthSettings &settings) {
    return {{"severity", settings.severity}, {"masks", settings.masks}};
}

// {"deviceMs": n, "stations": [{"station": s, "runtimeMs": n, "flashMs": n}, ...]};
// 0 ms leaves a station without a time-out of its own.
bool ReadStations(const Json &list, StatusModel &status, Problem *error) {
    return ReadNumberedList(list, "station", kStationCount - 1, error, [&](uint64_t station, const Json &entry, Problem *e) {
        StationTimeout &runtime = status.tagSbRuntime[station];
        StationTimeout &flash = status.tagSbFlash[station];
        uint32_t runtimeMs = runtime.enabled ? runtime.ms : 0;
        uint32_t flashMs = flash.enabled ? flash.ms : 0;
        Field fields[] = {{"runtimeMs", &runtimeMs, UINT16_MAX}, {"flashMs", &flashMs, UINT16_MAX}};
        if (!ReadFields(entry, fields, 2, e, {"station"})) return false;
        runtime = {runtimeMs != 0, static_cast<uint16_t>(runtimeMs)};
        flash = {flashMs != 0, static_cast<uint16_t>(flashMs)};
        return true;
    });
}

bool ReadTagSb(const Json &value, StatusModel &status, Problem *error) {
    uint32_t deviceMs = status.deviceTagSbTimeoutMs;
    Field fields[] = {{"deviceMs", &deviceMs, UINT16_MAX}};
    if (!ReadFields(value, fields, 1, error, {"stations"})) return false;
    status.deviceTagSbTimeoutMs = static_cast<uint16_t>(deviceMs);
    if (const Json *stations = Member(value, "stations"))
        if (!ReadStations(*stations, status, error)) return error->In("stations");
    return true;
}

// Every station's own time-out of one copy, as "runtimeMs" or "flashMs".
Json WriteStations(const StationTimeout (&copy)[kStationCount], const char *name) {
    Json stations = Json::array();
    for (uint32_t i = 0; i < kStationCount; ++i)
        stations.push_back({{"station", i}, {name, copy[i].enabled ? copy[i].ms : 0}});
    return stations;
}

bool AllZero(const uint8_t *bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (bytes[i] != 0) return false;
    return true;
}

// A station's time-out as the switch reports it: its own, or the device's.
void Report(const StatusModel &status, const StationTimeout &own, uint8_t station,
            PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP response) {
    memset(response, 0, sizeof *response);
    response->Flags = own.enabled ? ZENTREL_TAG_SB_STATION_ENABLED : 0;
    response->Station = station;
    response->TimeoutMs = own.enabled ? own.ms : status.deviceTagSbTimeoutMs;
}

void SetStatusDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    StatusModel &s = device.status;
    s.ccr = d.ccr;
    s.powerOnSense = d.powerOnSense;
    s.sysErrStatus = 0;
    for (GpioPin &pin : s.pins) pin = {false, false, 0, 0};
    for (size_t i = 0; i < d.pinCount; ++i) {
        const PinDefault &p = d.pins[i];
        s.pins[p.pin] = {p.high, p.output, p.port, p.altDSel};
    }
    s.spareData = d.spareData;
    s.healthRuntime = d.health;
    s.healthPage = d.health;
    s.deviceTagSbTimeoutMs = d.deviceTagSbTimeoutMs;
    for (uint32_t i = 0; i < kStationCount; ++i) {
        StationTimeout t = {i == d.ownTimeoutStation, i == d.ownTimeoutStation ? d.ownTimeoutMs : uint16_t{0}};
        s.tagSbRuntime[i] = t;
        s.tagSbFlash[i] = t;
    }
}

int ApplyStatusKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    StatusModel &s = device.status;
    if (key == "ccrStatus") return Took(ReadCcr(value, &s.ccr, error));
    if (key == "powerOnSense") return Took(ReadPowerOnSense(value, &s.powerOnSense, error));
    if (key == "sysErrStatus") return Took(StoreNumber(value, UINT32_MAX, &s.sysErrStatus, error));
    if (key == "gpioSpareState") return Took(ReadSpareState(value, s, error));
    if (key == "gpioPins") return Took(ReadPins(value, s, error));
    if (key == "healthConfig") {
        // Both copies: the page as the switch starts, and the runtime copy.
        if (!ReadHealth(value, &s.healthRuntime, error)) return -1;
        s.healthPage = s.healthRuntime;
        return 1;
    }
    if (key == "healthRuntime") return Took(ReadHealth(value, &s.healthRuntime, error));
    if (key == "healthPage") return Took(ReadHealth(value, &s.healthPage, error));
    if (key == "tagSbTimeout") return Took(ReadTagSb(value, s, error));
    return 0;
}

// The configuration page of the health settings and the flash copies of
// the tag scoreboard time-outs survive a power cycle; the runtime copies
// and the GPIO pins' levels, directions and assignments do not.
void SaveStatus(const Device &device, Json *flash, Json *runtime) {
    const StatusModel &s = device.status;
    (*flash)["healthPage"] = WriteHealth(s.healthPage);
    (*flash)["tagSbTimeout"] = {{"deviceMs", s.deviceTagSbTimeoutMs}, {"stations", WriteStations(s.tagSbFlash, "flashMs")}};
    (*runtime)["healthRuntime"] = WriteHealth(s.healthRuntime);
    (*runtime)["tagSbTimeout"] = {{"stations", WriteStations(s.tagSbRuntime, "runtimeMs")}};
    Json pins = Json::array();
    for (uint32_t i = 0; i < kGpioPinCount; ++i) {
        const GpioPin &p = s.pins[i];
        pins.push_back({{"pin", i}, {"high", p.high ? 1 : 0}, {"output", p.output ? 1 : 0}, {"port", p.port},
                        {"altDSel", p.altDSel}});
    }
    (*runtime)["gpioPins"] = pins;
}

// A switch starts with the health settings of its configuration page and
// the tag scoreboard time-outs of its flash.
void PowerCycleStatus(Device &device) {
    StatusModel &s = device.status;
    s.healthRuntime = s.healthPage;
    for (uint32_t i = 0; i < kStationCount; ++i) s.tagSbRuntime[i] = s.tagSbFlash[i];
}

}  // namespace

extern const ModelPart kStatusPart = {
    "status", SetStatusDefaults, ApplyStatusKey, SaveStatus, PowerCycleStatus, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetCcrStatus(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_CCR_STATUS Status) {
    return sim::ReadFromDevice(__func__, Device, Status, [](const sim::Device &d) { return d.status.ccr; });
}

ZENTREL_STATUS simlib::ZentrelSwitchGetPowerOnSense(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_POWER_ON_SENSE Sense) {
    return sim::ReadFromDevice(__func__, Device, Sense, [](const sim::Device &d) { return d.status.powerOnSense; });
}

ZENTREL_STATUS simlib::ZentrelSwitchGetSysErrStatus(PTR_ZENTREL_DEVICE Device, uint32_t *SysErrStatus) {
    return sim::ReadFromDevice(__func__, Device, SysErrStatus, [](const sim::Device &d) { return d.status.sysErrStatus; });
}

ZENTREL_STATUS simlib::ZentrelSwitchGetGPIOSpareState(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_GPIO_SPARE_STATE State) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (State == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::StatusModel &s = call.Target().status;
    State->GpioDataLow = sim::PinLevels(s, 0);
    State->GpioDataHigh = sim::PinLevels(s, 32);
    State->SpareData = s.spareData;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Setting a level makes the pin an output. A port beyond the switch's last
// one, a pin beyond 63, an unknown opcode or a non-zero reserved byte is
// refused.
ZENTREL_STATUS simlib::ZentrelSwitchHandleGpioCtrlCmd(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_GPIO_CTRL_REQ Request,
                                                          PTR_ZENTREL_SWITCH_GPIO_CTRL_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->Opcode > ZENTREL_GPIO_OPCODE_LAST ||
        Request->Pin >= sim::kGpioPinCount || !sim::AllZero(Request->Reserved3, sizeof Request->Reserved3))
        return call.Return(sim::kStatusInvalidParameter);
    sim::GpioPin &pin = call.Target().status.pins[Request->Pin];
    uint8_t data = 0;
    switch (Request->Opcode) {
    case ZENTREL_GPIO_SET_OUTPUT:
        if ((Request->Data & ~ZENTREL_GPIO_STATUS_LEVEL) != 0) return call.Return(sim::kStatusInvalidParameter);
        pin.high = (Request->Data & ZENTREL_GPIO_STATUS_LEVEL) != 0;
        pin.output = true;
        break;
    case ZENTREL_GPIO_ASSIGN_PORT:
        if (Request->Data > sim::kLastPort) return call.Return(sim::kStatusInvalidParameter);
        pin.port = Request->Data;
        break;
    case ZENTREL_GPIO_SET_ALT_DSEL:
        if ((Request->Data & ~ZENTREL_GPIO_ALT_DSEL_MASK) != 0) return call.Return(sim::kStatusInvalidParameter);
        pin.altDSel = Request->Data;
        break;
    case ZENTREL_GPIO_GET_STATUS:
        data = static_cast<uint8_t>((pin.high ? ZENTREL_GPIO_STATUS_LEVEL : 0) |
                                    (pin.output ? ZENTREL_GPIO_STATUS_OUTPUT : 0));
        break;
    case ZENTREL_GPIO_GET_PORT:
        data = pin.port;
        break;
    default:
        data = pin.altDSel;
        break;
    }
    memset(Response, 0, sizeof *Response);
    Response->Opcode = Request->Opcode;
    Response->Pin = Request->Pin;
    Response->Data = data;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Update option 1 changes the runtime copy, 2 the configuration page, 3
// both; 0 changes neither and is accepted.
ZENTREL_STATUS simlib::ZentrelSwitchSetHealthConfig(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || (Request->UpdateOption & ~ZENTREL_HEALTH_UPDATE_MASK) != 0)
        return call.Return(sim::kStatusInvalidParameter);
    const ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ &r = *Request;
    if (r.SetOption == ZENTREL_HEALTH_SET_SEVERITY) {
        if (r.Value > ZENTREL_HEALTH_SEVERITY_LAST || r.TraceMask != 0)
            return call.Return(sim::kStatusInvalidParameter);
    } else if (r.SetOption == ZENTREL_HEALTH_SET_TRACE_MASK) {
        if (r.Value >= ZENTREL_HEALTH_SUBSYSTEM_COUNT) return call.Return(sim::kStatusInvalidParameter);
    } else {
        return call.Return(sim::kStatusInvalidParameter);
    }
    sim::StatusModel &s = call.Target().status;
    for (sim::HealthSettings *copy : {&s.healthRuntime, &s.healthPage}) {
        uint8_t which = copy == &s.healthRuntime ? ZENTREL_HEALTH_UPDATE_RUNTIME : ZENTREL_HEALTH_UPDATE_CFG_PAGE;
        if ((r.UpdateOption & which) == 0) continue;
        if (r.SetOption == ZENTREL_HEALTH_SET_SEVERITY)
            copy->severity = r.Value;
        else
            copy->masks[r.Value] = r.TraceMask;
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Answers from the runtime copy.
ZENTREL_STATUS simlib::ZentrelSwitchGetHealthConfig(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ Request,
                                                        PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::HealthSettings &runtime = call.Target().status.healthRuntime;
    uint32_t value = 0;
    if (Request->GetOption == ZENTREL_HEALTH_GET_SEVERITY)
        value = runtime.severity;
    else if (Request->GetOption == ZENTREL_HEALTH_GET_TRACE_MASK && Request->Subsystem < ZENTREL_HEALTH_SUBSYSTEM_COUNT)
        value = runtime.masks[Request->Subsystem];
    else
        return call.Return(sim::kStatusInvalidParameter);
    memset(Response, 0, sizeof *Response);
    Response->Value = value;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A time-out of 0 ms takes the station's own time-out away, so that the
// device-wide one applies to it again.
ZENTREL_STATUS simlib::ZentrelSwitchSetTagSBTimeout(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Station >= sim::kStationCount || Request->UpdateMode > ZENTREL_TAG_SB_UPDATE_BOTH)
        return call.Return(sim::kStatusInvalidParameter);
    sim::StatusModel &s = call.Target().status;
    sim::StationTimeout timeout = {Request->TimeoutMs != 0, Request->TimeoutMs};
    if (Request->UpdateMode != ZENTREL_TAG_SB_UPDATE_FLASH) s.tagSbRuntime[Request->Station] = timeout;
    if (Request->UpdateMode != ZENTREL_TAG_SB_UPDATE_RUNTIME) s.tagSbFlash[Request->Station] = timeout;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The query mode comes twice, in the request and as an argument; they must agree.
ZENTREL_STATUS simlib::ZentrelSwitchGetTagSBTimeout(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ Request,
                                                        PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP Response,
                                                        uint32_t QueryMode) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->Station >= sim::kStationCount ||
        QueryMode > ZENTREL_TAG_SB_QUERY_FLASH || Request->QueryMode != QueryMode)
        return call.Return(sim::kStatusInvalidParameter);
    const sim::StatusModel &s = call.Target().status;
    const sim::StationTimeout &own =
        QueryMode == ZENTREL_TAG_SB_QUERY_RUNTIME ? s.tagSbRuntime[Request->Station] : s.tagSbFlash[Request->Station];
    sim::Report(s, own, Request->Station, Response);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
