// Temperature, versions, manufacturing and wafer data, switch time and the
// library's own parameters, as the simulated switches report them.
#include <cstdio>
#include <cstring>

#include "sim.h"

// The manufacturing information of the switch the library read last: of
// every switch in fleet order as the library starts, then of each switch
// whose ZentrelSwitchGetMfgInfo succeeds.
ZENTREL_SWITCH_MFG_INFO switchMfgInfo_temp = {};

namespace sim {

const char *const kSettingsFunctions[] = {
    "ZentrelGetTemperature",
    "ZentrelSwitchGetMfgInfo",
    "ZentrelSwitchGetSBRVersion",
    "ZentrelSwitchGetWaferInfo",
    "ZentrelSwitchSetTime",
    "ZentrelSetLibParameters",
    "ZentrelGetLibParameters",
    "ZentrelSwitchSetOOBParams",
    "ZentrelSwitchGetOOBParams",
    "ZentrelSwitchSetAsyncCommandTimeout",
    nullptr,
};

namespace {

// Two switches of one vendor: the current 144-lane part, whose identity
// texts fill their fields, and an older 96-lane part with shorter ones.
struct Defaults {
    uint32_t temperature;
    uint8_t security;
    uint8_t chipRevision;
    uint16_t chipId, chipType, lanes;
    const char *vendorId, *productId, *productRevision;
    uint8_t mfgRevision[4];
    uint8_t fwVersion[4];
    uint32_t sbrVersion;
    char fab;
    const char *fabDescription;
    char lot;
    const char *lotNumber;
    uint8_t waferNumber, x, y;
    uint32_t commMode;
    uint8_t commandTimeout;
    uint16_t pollInterval;
    uint8_t abortTimeout, resetTimeout;
    uint32_t asyncTimeout;
};
const Defaults kDefaults[] = {
    {52, 0x05, 0xB0, 0xC010, 0x0003, 0x0090, "ZENTREL ", "Corvane-PSX-144A", "B1.0", {2, 1, 0, 7}, {4, 20, 10, 2},
     0x01040200, 'T', "FAB12-NX", 'L', "N4K2190-07A", 0x11, 0x1A, 0x07, 0x2, 5, 100, 3, 10, 30},
    {47, 0x00, 0xA0, 0xC034, 0x0001, 0x0060, "ZENTREL", "Corvane-PSX-96", "A0", {1, 0, 3, 0}, {3, 5, 2, 17},
     0x01020009, 'G', "FAB9", 'P', "P87213", 0x03, 0x22, 0x0F, 0x2, 8, 250, 5, 20, 60},
};

// The library logs to the console until a path is set; its parameters
// are the library's, not a switch's. Guarded by the model's lock.
struct LibParameters {
    uint8_t levelAll = 3;
    uint8_t levelSwitch = 3;
    uint32_t logSize = 1048576;
    uint32_t logCount = 4;
    uint32_t overwrite = 1;
    char path[ZENTREL_LIB_PATH_SET_LENGTH] = {};  // empty: console logging
};
LibParameters gLibParameters;

// The record's bytes before the path pointer, the same on every target.
constexpr size_t kLibParameterBytes = offsetof(ZENTREL_LIB_PARAMETERS, DebugLogOverwrite) + sizeof(uint32_t);

// Copies a text into a fixed field: zero-padded, unterminated when full.
void PutText(char *field, size_t width, const char *text) {
    memset(field, 0, width);
    memcpy(field, text, strnlen(text, width));
}

// A caller's text, read no further than its buffer.
std::string Bounded(const char *text, size_t size) {
    return std::string(text, strnlen(text, size));
}

int ReadText(const Json &value, char *field, size_t width, std::string *error) {
    if (!value.is_string() || value.get<std::string>().size() > width) {
        *error = "must be a text of at most " + std::to_string(width) + " characters";
        return -1;
    }
    PutText(field, width, value.get<std::string>().c_str());
    return 1;
}

int ReadChar(const Json &value, char *field, std::string *error) {
    if (!value.is_string() || value.get<std::string>().size() != 1) {
        *error = "must be a text of one character";
        return -1;
    }
    *field = value.get<std::string>()[0];
    return 1;
}

template <typename T>
int Store(const Json &value, T *field, std::string *error) {
    uint64_t v = 0;
    if (!ReadNumber(value, static_cast<T>(~static_cast<T>(0)), &v, error)) return -1;
    *field = static_cast<T>(v);
    return 1;
}

// "a.b.c.d", or a number whose bytes are the parts, most significant first.
int ReadVersion(const Json &value, uint8_t (&parts)[4], std::string *error) {
    if (value.is_string() && value.get<std::string>().find('.') != std::string::npos) {
        unsigned p[4] = {};
        char tail = 0;
        int got = sscanf(value.get<std::string>().c_str(), "%u.%u.%u.%u%c", &p[0], &p[1], &p[2], &p[3], &tail);
        if (got != 4 || p[0] > 255 || p[1] > 255 || p[2] > 255 || p[3] > 255) {
            *error = "a version is \"a.b.c.d\" with parts up to 255, or a number";
            return -1;
        }
        for (int i = 0; i < 4; ++i) parts[i] = static_cast<uint8_t>(p[i]);
        return 1;
    }
    uint32_t v = 0;
    if (Store(value, &v, error) < 0) return -1;
    for (int i = 0; i < 4; ++i) parts[i] = static_cast<uint8_t>(v >> (24 - 8 * i));
    return 1;
}

int ApplyMfgKey(Device &device, const std::string &key, const Json &value, std::string *error) {
    ZENTREL_SWITCH_MFG_INFO &mfg = device.settings.mfg;
    int r = 0;
    if (key == "mfgSecurity") r = Store(value, &mfg.Security, error);
    else if (key == "mfgChipRevision") r = Store(value, &mfg.ChipRevision, error);
    else if (key == "mfgChipId") r = Store(value, &mfg.ChipId, error);
    else if (key == "mfgChipType") r = Store(value, &mfg.ChipType, error);
    else if (key == "mfgLanes") r = Store(value, &mfg.NumberOfLanes, error);
    else if (key == "mfgVendorId") r = ReadText(value, mfg.VendorId, sizeof mfg.VendorId, error);
    else if (key == "mfgProductId") r = ReadText(value, mfg.ProductId, sizeof mfg.ProductId, error);
    else if (key == "mfgProductRevision") r = ReadText(value, mfg.ProductRevision, sizeof mfg.ProductRevision, error);
    else if (key == "mfgRevision") r = ReadVersion(value, mfg.MfgRevision, error);
    else if (key == "mfgFwVersion") r = ReadVersion(value, mfg.FwVersion, error);
    return r;
}

int ApplyWaferKey(Device &device, const std::string &key, const Json &value, std::string *error) {
    ZENTREL_SWITCH_WAFER_INFO &wafer = device.settings.wafer;
    if (key == "waferFab") return ReadChar(value, &wafer.FabDesignation, error);
    if (key == "waferFabDescription") return ReadText(value, wafer.FabDescription, sizeof wafer.FabDescription, error);
    if (key == "waferLot") return ReadChar(value, &wafer.LotDesignation, error);
    if (key == "waferLotNumber") return ReadText(value, wafer.LotNumber, sizeof wafer.LotNumber, error);
    if (key == "waferNumber") return Store(value, &wafer.WaferNumber, error);
    if (key == "waferX") return Store(value, &wafer.XCoord, error);
    if (key == "waferY") return Store(value, &wafer.YCoord, error);
    if (key == "waferInitialized") return Store(value, &wafer.Initialized, error);
    return 0;
}

int ApplyParameterKey(Device &device, const std::string &key, const Json &value, std::string *error) {
    SettingsModel &s = device.settings;
    if (key == "temperature") return Store(value, &s.temperature, error);
    if (key == "sbrVersion") {
        uint8_t parts[4] = {};
        if (ReadVersion(value, parts, error) < 0) return -1;
        s.sbrVersion = static_cast<uint32_t>(parts[0]) << 24 | parts[1] << 16 | parts[2] << 8 | parts[3];
        return 1;
    }
    if (key == "timeHolder") return Store(value, &s.timeHolder, error);
    if (key == "oobCommMode") return Store(value, &s.oob.CommMode, error);
    if (key == "oobCommandTimeout") return Store(value, &s.oob.CmdRespTimeout, error);
    if (key == "oobPollInterval") return Store(value, &s.oob.RespPollInterval, error);
    if (key == "oobAbortTimeout") return Store(value, &s.oob.AbortRespTimeout, error);
    if (key == "oobResetTimeout") return Store(value, &s.oob.ResetRespTimeout, error);
    if (key == "asyncTimeout") return Store(value, &s.asyncTimeout, error);
    return 0;
}

}  // namespace

void CacheMfgInfo(const Device &device) {
    switchMfgInfo_temp = device.settings.mfg;
}

void SetSettingsDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    SettingsModel &s = device.settings;
    memset(&s, 0, sizeof s);
    s.temperature = d.temperature;

    s.mfg.Security = d.security;
    s.mfg.ChipRevision = d.chipRevision;
    s.mfg.ChipId = d.chipId;
    s.mfg.ChipType = d.chipType;
    s.mfg.NumberOfLanes = d.lanes;
    PutText(s.mfg.VendorId, sizeof s.mfg.VendorId, d.vendorId);
    PutText(s.mfg.ProductId, sizeof s.mfg.ProductId, d.productId);
    PutText(s.mfg.ProductRevision, sizeof s.mfg.ProductRevision, d.productRevision);
    memcpy(s.mfg.MfgRevision, d.mfgRevision, sizeof s.mfg.MfgRevision);
    memcpy(s.mfg.FwVersion, d.fwVersion, sizeof s.mfg.FwVersion);
    s.sbrVersion = d.sbrVersion;

    s.wafer.FabDesignation = d.fab;
    PutText(s.wafer.FabDescription, sizeof s.wafer.FabDescription, d.fabDescription);
    s.wafer.LotDesignation = d.lot;
    PutText(s.wafer.LotNumber, sizeof s.wafer.LotNumber, d.lotNumber);
    s.wafer.WaferNumber = d.waferNumber;
    s.wafer.XCoord = d.x;
    s.wafer.YCoord = d.y;
    s.wafer.Initialized = 1;

    s.timeHolder = kNoTimeHolder;
    s.oob.CommMode = d.commMode;
    s.oob.CmdRespTimeout = d.commandTimeout;
    s.oob.RespPollInterval = d.pollInterval;
    s.oob.AbortRespTimeout = d.abortTimeout;
    s.oob.ResetRespTimeout = d.resetTimeout;
    s.asyncTimeout = d.asyncTimeout;
}

int ApplySettingsKey(Device &device, const std::string &key, const Json &value, std::string *error) {
    int r = ApplyMfgKey(device, key, value, error);
    if (r == 0) r = ApplyWaferKey(device, key, value, error);
    if (r == 0) r = ApplyParameterKey(device, key, value, error);
    return r;
}

}  // namespace sim

using sim::Call;

ZENTREL_API ZENTREL_STATUS ZentrelGetTemperature(PTR_ZENTREL_DEVICE Device, uint32_t *Temperature) {
    return sim::ReadFromDevice(__func__, Device, Temperature, [](const sim::Device &d) { return d.settings.temperature; });
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetMfgInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_MFG_INFO MfgInfo) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (MfgInfo == nullptr) return call.Return(sim::kStatusInvalidParameter);
    *MfgInfo = call.Target().settings.mfg;
    sim::CacheMfgInfo(call.Target());
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSBRVersion(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_SBR_VERSION Version) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Version == nullptr) return call.Return(sim::kStatusInvalidParameter);
    memset(Version, 0, sizeof *Version);
    Version->Version = call.Target().settings.sbrVersion;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetWaferInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_WAFER_INFO WaferInfo) {
    return sim::ReadFromDevice(__func__, Device, WaferInfo, [](const sim::Device &d) { return d.settings.wafer; });
}

// An issuer holding the time (it set it with a hold duration) keeps the
// others from changing it until it sets the time again without a hold.
// The response names the issuer holding the time after the call.
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetTime(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_TIME_REQ Request,
                                                PTR_ZENTREL_SWITCH_TIME_RESP Response) {
    Call call(__func__);
    call.Dev(Device).Bytes("request", Request, sizeof *Request);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->IssuerID > ZENTREL_TIME_ISSUER_MAX)
        return call.Return(sim::kStatusInvalidParameter);
    sim::SettingsModel &s = call.Target().settings;
    if (s.timeHolder == sim::kNoTimeHolder || s.timeHolder == Request->IssuerID) {
        s.timeLow = Request->NewTimeLow;
        s.timeHigh = Request->NewTimeHigh;
        s.timeIssuer = Request->IssuerID;
        memcpy(s.timeZone, Request->Tz, sizeof s.timeZone);
        s.timeHolder = Request->HoldTimeSyncDuration != 0 ? Request->IssuerID : sim::kNoTimeHolder;
    }
    memset(Response, 0, sizeof *Response);
    Response->BlockingIssuerID = s.timeHolder;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The path is traced as text and left out of the record's bytes, whose
// pointer differs from run to run.
ZENTREL_API ZENTREL_STATUS ZentrelSetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params) {
    Call call(__func__);
    call.Bytes("params", Params, sim::kLibParameterBytes);
    if (Params != nullptr && Params->DebugLogFilePath != nullptr)
        call.Text("path", sim::Bounded(Params->DebugLogFilePath, ZENTREL_LIB_PATH_SET_LENGTH).c_str());
    else
        call.Text("path", nullptr);
    if (!call.Proceed()) return call.Result();
    if (Params == nullptr) return call.Return(sim::kStatusInvalidParameter);
    sim::LibParameters &p = sim::gLibParameters;
    p.levelAll = Params->DebugLogLevelAll;
    p.levelSwitch = Params->DebugLogLevelSwitch;
    p.logSize = Params->DebugLogSize;
    p.logCount = Params->DebugLogCount;
    p.overwrite = Params->DebugLogOverwrite;
    // No path, or the path NULL, is console logging.
    memset(p.path, 0, sizeof p.path);
    if (Params->DebugLogFilePath != nullptr) {
        std::string path = sim::Bounded(Params->DebugLogFilePath, sizeof p.path - 1);
        if (path != "NULL") memcpy(p.path, path.data(), path.size());
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Fills the caller's path buffer, cut to its 256 bytes, or sets the path
// pointer to null while the library logs to the console.
ZENTREL_API ZENTREL_STATUS ZentrelGetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params) {
    Call call(__func__);
    call.Bytes("params", Params, sim::kLibParameterBytes);
    if (Params != nullptr && Params->DebugLogFilePath != nullptr)
        call.Text("path", sim::Bounded(Params->DebugLogFilePath, ZENTREL_LIB_PATH_GET_LENGTH).c_str());
    else
        call.Text("path", nullptr);
    if (!call.Proceed()) return call.Result();
    if (Params == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::LibParameters &p = sim::gLibParameters;
    Params->DebugLogLevelAll = p.levelAll;
    Params->DebugLogLevelSwitch = p.levelSwitch;
    Params->DebugLogSize = p.logSize;
    Params->DebugLogCount = p.logCount;
    Params->DebugLogOverwrite = p.overwrite;
    if (p.path[0] == '\0') {
        Params->DebugLogFilePath = nullptr;
    } else if (Params->DebugLogFilePath != nullptr) {
        size_t n = strnlen(p.path, ZENTREL_LIB_PATH_GET_LENGTH - 1);
        memcpy(Params->DebugLogFilePath, p.path, n);
        Params->DebugLogFilePath[n] = '\0';
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_REQ Params) {
    Call call(__func__);
    call.Dev(Device).Bytes("params", Params, sizeof *Params);
    if (!call.Proceed()) return call.Result();
    if (Params == nullptr) return call.Return(sim::kStatusInvalidParameter);
    ZENTREL_SWITCH_OOB_PARAMS_RESP &oob = call.Target().settings.oob;
    oob.CmdRespTimeout = Params->CmdRespTimeout;
    oob.RespPollInterval = Params->RespPollInterval;
    oob.AbortRespTimeout = Params->AbortRespTimeout;
    oob.ResetRespTimeout = Params->ResetRespTimeout;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_RESP Params) {
    return sim::ReadFromDevice(__func__, Device, Params, [](const sim::Device &d) { return d.settings.oob; });
}

ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetAsyncCommandTimeout(PTR_ZENTREL_DEVICE Device, uint32_t Timeout) {
    Call call(__func__);
    call.Dev(Device).Arg("timeout", Timeout);
    if (!call.Proceed()) return call.Result();
    call.Target().settings.asyncTimeout = Timeout;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
