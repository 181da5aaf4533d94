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
    uint32_t sbrVersion, deviceSbrVersion;
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
     0x01040200, 0x01040203, 'T', "FAB12-NX", 'L', "N4K2190-07A", 0x11, 0x1A, 0x07, 0x2, 5, 100, 3, 10, 30},
    {47, 0x00, 0xA0, 0xC034, 0x0001, 0x0060, "ZENTREL", "Corvane-PSX-96", "A0", {1, 0, 3, 0}, {3, 5, 2, 17},
     0x01020009, 0x01020001, 'G', "FAB9", 'P', "P87213", 0x03, 0x22, 0x0F, 0x2, 8, 250, 5, 20, 60},
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

// Copies a text into a fixed field: zero-padded, unterminated when full.
void PutText(char *field, size_t width, const char *text) {
    memset(field, 0, width);
    memcpy(field, text, strnlen(text, width));
}

// A caller's text, read no further than its buffer.
std::string Bounded(const char *text, size_t size) {
    return std::string(text, strnlen(text, size));
}

int ReadChar(const Json &value, char *field, Problem *error) {
    if (!value.is_string() || value.get<std::string>().size() != 1) {
        *error = "must be a text of one character";
        return -1;
    }
    *field = value.get<std::string>()[0];
    return 1;
}

// A version into four bytes, most significant first.
int ReadVersionBytes(const Json &value, uint8_t (&parts)[4], Problem *error) {
    uint32_t v = 0;
    if (!ReadVersion(value, &v, error)) return -1;
    for (int i = 0; i < 4; ++i) parts[i] = static_cast<uint8_t>(v >> (24 - 8 * i));
    return 1;
}

template <size_t Width>
int Text(const Json &value, char (&field)[Width], Problem *error) {
    return Took(ReadText(value, field, Width, error));
}

int ApplyMfgKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    ZENTREL_SWITCH_MFG_INFO &mfg = device.settings.mfg;
    if (key == "mfgSecurity") return Took(Store(value, &mfg.Security, error));
    if (key == "mfgChipRevision") return Took(Store(value, &mfg.ChipRevision, error));
    if (key == "mfgChipId") return Took(Store(value, &mfg.ChipId, error));
    if (key == "mfgChipType") return Took(Store(value, &mfg.ChipType, error));
    if (key == "mfgLanes") return Took(Store(value, &mfg.NumberOfLanes, error));
    if (key == "mfgVendorId") return Text(value, mfg.VendorId, error);
    if (key == "mfgProductId") return Text(value, mfg.ProductId, error);
    if (key == "mfgProductRevision") return Text(value, mfg.ProductRevision, error);
    if (key == "mfgRevision") return ReadVersionBytes(value, mfg.MfgRevision, error);
    if (key == "mfgFwVersion") return ReadVersionBytes(value, mfg.FwVersion, error);
    return 0;
}

int ApplyWaferKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    ZENTREL_SWITCH_WAFER_INFO &wafer = device.settings.wafer;
    if (key == "waferFab") return ReadChar(value, &wafer.FabDesignation, error);
    if (key == "waferFabDescription") return Text(value, wafer.FabDescription, error);
    if (key == "waferLot") return ReadChar(value, &wafer.LotDesignation, error);
    if (key == "waferLotNumber") return Text(value, wafer.LotNumber, error);
    if (key == "waferNumber") return Took(Store(value, &wafer.WaferNumber, error));
    if (key == "waferX") return Took(Store(value, &wafer.XCoord, error));
    if (key == "waferY") return Took(Store(value, &wafer.YCoord, error));
    if (key == "waferInitialized") return Took(Store(value, &wafer.Initialized, error));
    return 0;
}

// {"low": n, "high": n, "issuer": n, "zone": text}: the clock as last set.
bool ReadSwitchTime(const Json &value, SettingsModel &s, Problem *error) {
    Field fields[] = {{"low", &s.timeLow, UINT32_MAX}, {"high", &s.timeHigh, UINT32_MAX},
                      {"issuer", &s.timeIssuer, ZENTREL_TIME_ISSUER_MAX}};
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error, {"zone"})) return false;
    if (const Json *zone = Member(value, "zone"))
        if (!ReadText(*zone, s.timeZone, sizeof s.timeZone, error)) return error->In("zone");
    return true;
}

int ApplyParameterKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    SettingsModel &s = device.settings;
    if (key == "temperature") return Took(Store(value, &s.temperature, error));
    if (key == "sbrVersion") return Took(ReadVersion(value, &s.sbrVersion, error));
    if (key == "deviceSbrVersion") return Took(ReadVersion(value, &s.deviceSbrVersion, error));
    if (key == "switchTime") return Took(ReadSwitchTime(value, s, error));
    if (key == "timeHolder") return Took(Store(value, &s.timeHolder, error));
    if (key == "oobCommMode") return Took(Store(value, &s.oob.CommMode, error));
    if (key == "oobCommandTimeout") return Took(Store(value, &s.oob.CmdRespTimeout, error));
    if (key == "oobPollInterval") return Took(Store(value, &s.oob.RespPollInterval, error));
    if (key == "oobAbortTimeout") return Took(Store(value, &s.oob.AbortRespTimeout, error));
    if (key == "oobResetTimeout") return Took(Store(value, &s.oob.ResetRespTimeout, error));
    if (key == "asyncTimeout") return Took(Store(value, &s.asyncTimeout, error));
    return 0;
}

int ApplySettingsKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    int r = ApplyMfgKey(device, key, value, error);
    if (r == 0) r = ApplyWaferKey(device, key, value, error);
    if (r == 0) r = ApplyParameterKey(device, key, value, error);
    return r;
}

// The clock, its hold, the OOB parameters and the async time-out are
// runtime settings: a power cycle loses them.
void SaveSettings(const Device &device, Json *, Json *runtime) {
    const SettingsModel &s = device.settings;
    (*runtime)["switchTime"] = {{"low", s.timeLow},
                                {"high", s.timeHigh},
                                {"issuer", s.timeIssuer},
                                {"zone", WriteText(s.timeZone, sizeof s.timeZone)}};
    (*runtime)["timeHolder"] = s.timeHolder;
    (*runtime)["oobCommandTimeout"] = s.oob.CmdRespTimeout;
    (*runtime)["oobPollInterval"] = s.oob.RespPollInterval;
    (*runtime)["oobAbortTimeout"] = s.oob.AbortRespTimeout;
    (*runtime)["oobResetTimeout"] = s.oob.ResetRespTimeout;
    (*runtime)["asyncTimeout"] = s.asyncTimeout;
}

// The library's logging: "logLevelAll", "logLevelSwitch", "logSize",
// "logCount", "logOverwrite" and "logPath" (empty for the console).
int ApplyLibraryKey(const std::string &key, const Json &value, Problem *error) {
    LibParameters &p = gLibParameters;
    if (key == "logLevelAll") return Took(Store(value, &p.levelAll, error));
    if (key == "logLevelSwitch") return Took(Store(value, &p.levelSwitch, error));
    if (key == "logSize") return Took(Store(value, &p.logSize, error));
    if (key == "logCount") return Took(Store(value, &p.logCount, error));
    if (key == "logOverwrite") return Took(Store(value, &p.overwrite, error));
    if (key == "logPath") return Took(ReadText(value, p.path, sizeof p.path - 1, error));
    return 0;
}

void SaveLibrary(Json *library) {
    const LibParameters &p = gLibParameters;
    *library = {{"logLevelAll", p.levelAll},  {"logLevelSwitch", p.levelSwitch},
                {"logSize", p.logSize},       {"logCount", p.logCount},
                {"logOverwrite", p.overwrite}, {"logPath", WriteText(p.path, sizeof p.path)}};
}

}  // namespace

void CacheMfgInfo(const Device &device) {
    switchMfgInfo_temp = device.settings.mfg;
}

namespace {

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
    s.deviceSbrVersion = d.deviceSbrVersion;

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

}  // namespace

extern const ModelPart kSettingsPart = {
    "settings", SetSettingsDefaults, ApplySettingsKey, SaveSettings, nullptr, ApplyLibraryKey, SaveLibrary,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelGetTemperature(PTR_ZENTREL_DEVICE Device, uint32_t *Temperature) {
    return sim::ReadFromDevice(__func__, Device, Temperature, [](const sim::Device &d) { return d.settings.temperature; });
}

ZENTREL_STATUS simlib::ZentrelSwitchGetMfgInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_MFG_INFO MfgInfo) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (MfgInfo == nullptr) return call.Return(sim::kStatusInvalidParameter);
    *MfgInfo = call.Target().settings.mfg;
    sim::CacheMfgInfo(call.Target());
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetSBRVersion(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_SBR_VERSION Version) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Version == nullptr) return call.Return(sim::kStatusInvalidParameter);
    memset(Version, 0, sizeof *Version);
    Version->Version = call.Target().settings.sbrVersion;
    Version->DeviceVersion = call.Target().settings.deviceSbrVersion;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetWaferInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_WAFER_INFO WaferInfo) {
    return sim::ReadFromDevice(__func__, Device, WaferInfo, [](const sim::Device &d) { return d.settings.wafer; });
}

// An issuer holding the time (it set it with a hold duration) keeps the
// others from changing it until it sets the time again without a hold.
// The response names the issuer holding the time after the call.
ZENTREL_STATUS simlib::ZentrelSwitchSetTime(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_TIME_REQ Request,
                                                PTR_ZENTREL_SWITCH_TIME_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
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

void sim::ResetLibParameters() {
    sim::gLibParameters = sim::LibParameters();
}

ZENTREL_STATUS simlib::ZentrelSetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params) {
    Call call(__func__);
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
ZENTREL_STATUS simlib::ZentrelGetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params) {
    Call call(__func__);
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

ZENTREL_STATUS simlib::ZentrelSwitchSetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_REQ Params) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Params == nullptr) return call.Return(sim::kStatusInvalidParameter);
    ZENTREL_SWITCH_OOB_PARAMS_RESP &oob = call.Target().settings.oob;
    oob.CmdRespTimeout = Params->CmdRespTimeout;
    oob.RespPollInterval = Params->RespPollInterval;
    oob.AbortRespTimeout = Params->AbortRespTimeout;
    oob.ResetRespTimeout = Params->ResetRespTimeout;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_RESP Params) {
    return sim::ReadFromDevice(__func__, Device, Params, [](const sim::Device &d) { return d.settings.oob; });
}

ZENTREL_STATUS simlib::ZentrelSwitchSetAsyncCommandTimeout(PTR_ZENTREL_DEVICE Device, uint32_t Timeout) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    call.Target().settings.asyncTimeout = Timeout;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
