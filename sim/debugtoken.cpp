// Secure-debug tokens of the simulated switches: the payload to be signed
// and the signed token written as real COSE structures, tokens installed
// from such files, and the debug ports an installed token opens.
#include <cstring>

#include "cbor.h"
#include "sim.h"

namespace sim {

namespace {

// The claims of a request, in the order a token carries them.
cbor::Claims RequestClaims(const ZENTREL_SWITCH_DEBUG_TOKEN_REQ &r) {
    return {
        {ZENTREL_CLAIM_PERSIST, r.Persist},           {ZENTREL_CLAIM_EXP_LIMIT, r.ExpirationLimit},
        {ZENTREL_CLAIM_SERIAL_DEBUG, r.SerialDebug},  {ZENTREL_CLAIM_NS_JTAG, r.NsJtag},
        {ZENTREL_CLAIM_I2C, r.HwI2c},                 {ZENTREL_CLAIM_DIAG_RW, r.DiagReadWrite},
        {ZENTREL_CLAIM_HW_ANALYSIS, r.HwAnalysis},    {ZENTREL_CLAIM_PCIE_ANALYSER, r.PcieAnalyser},
        {ZENTREL_CLAIM_FWCLI_ACCESS, r.FwCliAccess},  {ZENTREL_CLAIM_NS_REG_RW, r.NsRegReadWrite},
    };
}

uint64_t Cti(uint32_t msb, uint32_t lsb) {
    return static_cast<uint64_t>(msb) << 32 | lsb;
}

bool Persistent(const DebugTokenModel &t) {
    for (const ZENTREL_DEBUG_TOKEN_CLAIM &c : t.claims)
        if (c.Key == ZENTREL_CLAIM_PERSIST) return c.Value != 0;
    return false;
}

// What a claim with a non-zero value opens.
struct Grant {
    int32_t claim;
    uint32_t ports;  // hardware debug port bits
    uint32_t management, diagnostic, telemetry;  // category bits
};

const Grant kGrants[] = {
    {ZENTREL_CLAIM_SERIAL_DEBUG, 1u << 3, 0, 0, 0},
    // SRK JTAG, MCPU and CoreSight debug (invasive and not), CoreSight device.
    {ZENTREL_CLAIM_NS_JTAG, 1u << 1 | 1u << 6 | 1u << 7 | 1u << 10 | 1u << 11 | 1u << 14, 0, 0, 0},
    {ZENTREL_CLAIM_I2C, 1u << 4, 0, 0, 0},
    {ZENTREL_CLAIM_DIAG_RW, 1u << 5, 0, 0x2, 0},
    {ZENTREL_CLAIM_HW_ANALYSIS, 1u << 15 | 1u << 17, 0, 0, 0x2},
    {ZENTREL_CLAIM_PCIE_ANALYSER, 1u << 16, 0, 0, 0x4},
    {ZENTREL_CLAIM_NS_REG_RW, 0, 0x2, 0, 0},
};

ZENTREL_SWITCH_DEBUG_PORT_CAP CurrentPorts(const DebugTokenModel &t) {
    ZENTREL_SWITCH_DEBUG_PORT_CAP caps = t.ports;
    if (!t.installed) return caps;
    for (const ZENTREL_DEBUG_TOKEN_CLAIM &c : t.claims) {
        if (c.Key == ZENTREL_CLAIM_FWCLI_ACCESS) caps.CliAccessMode = c.Value;
        if (c.Value == 0) continue;
        for (const Grant &g : kGrants) {
            if (g.claim != c.Key) continue;
            caps.HwDebugPorts |= g.ports;
            caps.SwitchManagement |= g.management;
            caps.PlatformDiagnostic |= g.diagnostic;
            caps.DebugTelemetry |= g.telemetry;
        }
    }
    return caps;
}

// --- Defaults --------------------------------------------------------------

// The first switch allows only its MDIO port without a token; the second,
// older one also its I2C slave port, and has wider management categories.
const ZENTREL_SWITCH_DEBUG_PORT_CAP kDefaultPorts[] = {
    {{0, 0}, 0x1, 0x0, 0x1, 0x1, 0x1, 0x1, 0x1},
    {{0, 0}, 0x11, 0x0, 0x3, 0x1, 0x5, 0x1, 0x0},
};

void SetDebugTokenDefaults(Device &device, size_t index) {
    DebugTokenModel &t = device.debugToken;
    uint32_t handle = device.info.Handle;
    Filler cti(handle ^ 0xC71u);
    t.ctiLsb = cti.Word();
    t.ctiMsb = cti.Word();
    Filler(handle ^ 0xA1Du).Bytes(t.debugAuthId, sizeof t.debugAuthId);
    t.ports = kDefaultPorts[index < 2 ? index : 0];
    t.installed = false;
    t.claims.clear();
}

// --- Scenario and state keys -------------------------------------------------

// [[key, value], ...]: signed 32-bit keys, unsigned 32-bit values.
bool ReadClaims(const Json &list, std::vector<ZENTREL_DEBUG_TOKEN_CLAIM> *claims, Problem *error) {
    if (!list.is_array() || list.size() > ZENTREL_DEBUG_TOKEN_MAX_CLAIMS) {
        *error = "must be a list of at most 121 [key, value] claims";
        return false;
    }
    claims->clear();
    for (size_t i = 0; i < list.size(); ++i) {
        const Json &pair = list[i];
        if (!pair.is_array() || pair.size() != 2 || !pair[0].is_number_integer() ||
            pair[0].get<int64_t>() < INT32_MIN || pair[0].get<int64_t>() > INT32_MAX) {
            *error = "must be [key, value] with a signed 32-bit key, not " + Excerpt(pair);
            return error->At(i);
        }
        ZENTREL_DEBUG_TOKEN_CLAIM claim = {static_cast<int32_t>(pair[0].get<int64_t>()), 0};
        if (!Store(pair[1], &claim.Value, error)) return error->At(i);
        claims->push_back(claim);
    }
    return true;
}

// {"installed": 0/1, "claims": [...]}
bool ReadToken(const Json &value, DebugTokenModel &t, Problem *error) {
    uint32_t installed = t.installed;
    Field fields[] = {{"installed", &installed, 1}};
    if (!ReadFields(value, fields, 1, error, {"claims"})) return false;
    if (const Json *claims = Member(value, "claims"))
        if (!ReadClaims(*claims, &t.claims, error)) return error->In("claims");
    t.installed = installed != 0;
    if (!t.installed) t.claims.clear();
    return true;
}

bool ReadParams(const Json &value, DebugTokenModel &t, Problem *error) {
    Field fields[] = {{"ctiLsb", &t.ctiLsb, UINT32_MAX}, {"ctiMsb", &t.ctiMsb, UINT32_MAX}};
    if (!ReadFields(value, fields, 2, error, {"debugAuthId"})) return false;
    if (const Json *id = Member(value, "debugAuthId")) {
        std::vector<uint8_t> bytes;
        if (!ReadHexBytes(*id, sizeof t.debugAuthId, &bytes, error)) return error->In("debugAuthId");
        memset(t.debugAuthId, 0, sizeof t.debugAuthId);
        memcpy(t.debugAuthId, bytes.data(), bytes.size());
    }
    return true;
}

bool ReadPorts(const Json &value, ZENTREL_SWITCH_DEBUG_PORT_CAP &p, Problem *error) {
    Field fields[] = {
        {"hwDebugPorts", &p.HwDebugPorts, UINT32_MAX},
        {"cliAccessMode", &p.CliAccessMode, UINT32_MAX},
        {"performanceImpact", &p.PerformanceImpact, UINT32_MAX},
        {"serviceInterruption", &p.ServiceInterruption, UINT32_MAX},
        {"switchManagement", &p.SwitchManagement, UINT32_MAX},
        {"platformDiagnostic", &p.PlatformDiagnostic, UINT32_MAX},
        {"debugTelemetry", &p.DebugTelemetry, UINT32_MAX},
    };
    return ReadFields(value, fields, sizeof fields / sizeof fields[0], error);
}

int ApplyDebugTokenKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    DebugTokenModel &t = device.debugToken;
    if (key == "debugToken") return Took(ReadToken(value, t, error));
    if (key == "debugTokenParams") return Took(ReadParams(value, t, error));
    if (key == "debugPorts") return Took(ReadPorts(value, t.ports, error));
    return 0;
}

Json TokenJson(const DebugTokenModel &t) {
    Json claims = Json::array();
    for (const ZENTREL_DEBUG_TOKEN_CLAIM &c : t.claims) claims.push_back({c.Key, c.Value});
    return {{"installed", 1}, {"claims", claims}};
}

// A token whose persist claim is set is kept in flash and survives a power
// cycle; any other lives until the switch loses power.
void SaveDebugToken(const Device &device, Json *flash, Json *runtime) {
    const DebugTokenModel &t = device.debugToken;
    bool persistent = t.installed && Persistent(t);
    (*flash)["debugToken"] = persistent ? TokenJson(t) : Json{{"installed", 0}};
    if (t.installed && !persistent) (*runtime)["debugToken"] = TokenJson(t);
}

ZENTREL_STATUS Generate(Device &d, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *r) {
    if (r->Operation == ZENTREL_DEBUG_TOKEN_SIG_STRUCTURE) {
        // The payload names this switch; the signed operation repeats it.
        r->CtiLsb = d.debugToken.ctiLsb;
        r->CtiMsb = d.debugToken.ctiMsb;
        memcpy(r->DebugAuthId, d.debugToken.debugAuthId, sizeof r->DebugAuthId);
    } else if (r->Operation != ZENTREL_DEBUG_TOKEN_SIGNED_CWT || r->Signature == nullptr || r->SignatureLength == 0) {
        return kStatusInvalidParameter;
    }
    cbor::Bytes header = cbor::EncodeProtected(static_cast<int32_t>(r->AlgorithmId));
    cbor::Bytes payload = cbor::EncodeClaims(Cti(r->CtiMsb, r->CtiLsb), RequestClaims(*r));
    cbor::Bytes out = r->Operation == ZENTREL_DEBUG_TOKEN_SIG_STRUCTURE
                          ? cbor::SigStructure(header, payload)
                          : cbor::Sign1(header, payload, cbor::Bytes(r->Signature, r->Signature + r->SignatureLength));
    return WriteFileBytes(ZENTREL_DEBUG_TOKEN_FILE, out) ? ZENTREL_STATUS_SUCCESS : kStatusTokenFileError;
}

ZENTREL_STATUS Install(DebugTokenModel &t, const uint8_t *token, uint32_t length) {
    cbor::Token parsed;
    if (token == nullptr || length == 0) return kStatusInvalidParameter;
    if (!cbor::ParseSign1(token, length, &parsed) || parsed.claims.size() > ZENTREL_DEBUG_TOKEN_MAX_CLAIMS)
        return kStatusBadToken;
    if (parsed.cti != Cti(t.ctiMsb, t.ctiLsb)) return kStatusTokenNotForSwitch;
    std::vector<ZENTREL_DEBUG_TOKEN_CLAIM> claims;
    for (const auto &[key, value] : parsed.claims) {
        if (key < INT32_MIN || key > INT32_MAX) return kStatusBadToken;
        claims.push_back({static_cast<int32_t>(key), static_cast<uint32_t>(value)});
    }
    t.claims = std::move(claims);
    t.installed = true;
    return ZENTREL_STATUS_SUCCESS;
}

}  // namespace

extern const ModelPart kDebugTokenPart = {
    "debugToken", SetDebugTokenDefaults, ApplyDebugTokenKey, SaveDebugToken, nullptr, nullptr,
    nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGenerateDebugToken(PTR_ZENTREL_DEVICE Device,
                                                           PTR_ZENTREL_SWITCH_DEBUG_TOKEN_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr) return call.Return(sim::kStatusInvalidParameter);
    return call.Return(sim::Generate(call.Target(), Request));
}

ZENTREL_STATUS simlib::ZentrelSwitchEnableDebugToken(PTR_ZENTREL_DEVICE Device, const uint8_t *Token,
                                                         uint32_t Length) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    return call.Return(sim::Install(call.Target().debugToken, Token, Length));
}

ZENTREL_STATUS simlib::ZentrelSwitchGetDebugToken(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                      PTR_ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS Claims) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Filled == nullptr || Claims == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::DebugTokenModel &t = call.Target().debugToken;
    if (!t.installed) return call.Return(sim::kStatusNoToken);
    memset(Claims, 0, sizeof *Claims);
    Claims->NumClaims = static_cast<uint16_t>(t.claims.size());
    if (!t.claims.empty()) memcpy(Claims->Claims, t.claims.data(), t.claims.size() * sizeof t.claims[0]);
    *Filled = static_cast<uint32_t>(offsetof(ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS, Claims) + t.claims.size() * sizeof t.claims[0]);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchDisableDebugToken(PTR_ZENTREL_DEVICE Device) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::DebugTokenModel &t = call.Target().debugToken;
    if (!t.installed) return call.Return(sim::kStatusNoToken);
    t.installed = false;
    t.claims.clear();
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetDebugTokenParams(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                            PTR_ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS Params) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Filled == nullptr || Params == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::DebugTokenModel &t = call.Target().debugToken;
    memset(Params, 0, sizeof *Params);
    Params->CtiLsb = t.ctiLsb;
    Params->CtiMsb = t.ctiMsb;
    memcpy(Params->DebugAuthId, t.debugAuthId, sizeof Params->DebugAuthId);
    *Filled = sizeof *Params;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchDebugPortCap(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_DEBUG_PORT_CAP Caps) {
    return sim::ReadFromDevice(__func__, Device, Caps,
                               [](const sim::Device &d) { return sim::CurrentPorts(d.debugToken); });
}
