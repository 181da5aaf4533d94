// Lane margining, the hardware eye, equalization, Serdes information and
// PRBS of the simulated switches.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

// Margining capabilities: voltage margining with independent up/down and
// left/right margins; the faster switch also reports its samples and has
// an independent error sampler.
constexpr uint32_t kCapsGen4 = 0x07, kCapsGen5 = 0x17;
constexpr uint64_t kBitsPerSecond[] = {0, 2500000000ull, 5000000000ull, 8000000000ull, 16000000000ull, 32000000000ull};
constexpr uint64_t kMaxBits = (1ull << 48) - 1;  // the checker's 48-bit counter
constexpr uint32_t kDefaultBer = 12;
constexpr uint32_t kPollsToOpen = 3;  // the eye is fully open after three polls

uint32_t Degradation(const PhyModel &m, uint32_t lane) {
    return 100u - std::min<uint32_t>(m.lanes[lane].quality, 100);
}

bool IsFast(const PhyModel &m) {
    return m.maxRate >= ZENTREL_PRBS_RATE_32G;
}

uint32_t VoltageSteps(const PhyModel &m) {
    return IsFast(m) ? 127 : 64;
}

uint32_t TimingSteps(const PhyModel &m) {
    return IsFast(m) ? 63 : 32;
}

// True when lanes [first, first + count) are lanes of the switch.
bool LanesExist(const PhyModel &m, uint64_t first, uint64_t count) {
    return first + count <= m.laneCount;
}

// Lane `lane` of port `port`: the port's lanes start at its station lane
// and stay in its station.
bool PortLane(const PhyModel &m, uint32_t port, uint32_t lane, uint32_t *absolute) {
    if (port >= ZENTREL_PORT_COUNT || port % ZENTREL_STATION_LANES + lane >= ZENTREL_STATION_LANES) return false;
    *absolute = port + lane;
    return *absolute < m.laneCount;
}

bool IsAlternateFamily(const Device &device) {
    return (device.info.DeviceId & 0xFFFB) == 0xC030;
}

bool IsPattern(const Device &device, uint32_t pattern) {
    if (IsAlternateFamily(device)) return pattern <= 5;  // PRBS7, 9, 11, 15, 23, 31
    return pattern == 0 || (pattern >= 2 && pattern <= 4);  // PRBS7, 15, 23, 31
}

void SetPhyDefaults(Device &device, size_t index) {
    PhyModel &m = device.phy;
    bool second = index == 1;
    m.laneCount = second ? 96 : 144;
    m.maxRate = second ? 4 : ZENTREL_PRBS_RATE_32G;
    m.pswVersion = second ? 0x17 : 0x23;
    for (uint32_t lane = 0; lane < ZENTREL_LANE_COUNT; ++lane)
        m.lanes[lane] = {static_cast<uint8_t>(72 + (lane * 37 + index * 11) % 23), false};
    // A few weaker lanes: the network adapter's link trained below its best
    // on the first switch, the older drive's bay on the second.
    if (second) {
        m.lanes[37].quality = 47;
    } else {
        m.lanes[41].quality = 48;
        m.lanes[98].quality = 58;
    }
    m.eye = {};
    for (PrbsLane &p : m.prbs) p = {};
}

bool ReadLanes(const Json &list, PhyModel &m, Problem *error) {
    return ReadNumberedList(list, "lane", ZENTREL_LANE_COUNT - 1, error, [&](uint64_t lane, const Json &entry, Problem *e) {
        PhyLane &l = m.lanes[lane];
        uint32_t quality = l.quality, inverted = l.invertedPolarity;
        Field fields[] = {{"quality", &quality, 100}, {"invertedPolarity", &inverted, 1}};
        if (!ReadFields(entry, fields, 2, e, {"lane"})) return false;
        l.quality = static_cast<uint8_t>(quality);
        l.invertedPolarity = inverted != 0;
        return true;
    });
}

bool ReadEye(const Json &value, EyeScan &eye, Problem *error) {
    uint32_t active = eye.active;
    Field fields[] = {{"active", &active, 1},
                      {"startLane", &eye.startLane, ZENTREL_LANE_COUNT},
                      {"laneCount", &eye.laneCount, ZENTREL_LANE_COUNT},
                      {"targetBer", &eye.targetBer, UINT32_MAX},
                      {"polls", &eye.polls, UINT32_MAX}};
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error)) return false;
    eye.active = active != 0;
    return true;
}

Json WriteEye(const EyeScan &eye) {
    return {{"active", eye.active ? 1 : 0}, {"startLane", eye.startLane}, {"laneCount", eye.laneCount},
            {"targetBer", eye.targetBer}, {"polls", eye.polls}};
}

// [{"lane": n, "generating": 0/1, "pattern": n, ...}, ...]: the lanes whose
// generator or checker is running.
bool ReadPrbs(const Json &list, PhyModel &m, Problem *error) {
    return ReadNumberedList(list, "lane", ZENTREL_LANE_COUNT - 1, error, [&](uint64_t lane, const Json &entry, Problem *e) {
        PrbsLane &p = m.prbs[lane];
        uint32_t generating = p.generating, checking = p.checking, invert = p.invert, infinite = p.infinite;
        uint32_t inSync = p.inSync, done = p.done, errors = static_cast<uint32_t>(p.errors);
        Field fields[] = {{"generating", &generating, 1}, {"pattern", &p.pattern, 5},
                          {"rate", &p.rate, ZENTREL_PRBS_RATE_32G}, {"checking", &checking, 1},
                          {"checkPattern", &p.checkPattern, UINT32_MAX}, {"checkRate", &p.checkRate, UINT32_MAX},
                          {"invert", &invert, 1}, {"infinite", &infinite, 1},
                          {"inSync", &inSync, 1}, {"done", &done, 1},
                          {"errors", &errors, INT32_MAX}, {"injected", &p.injected, UINT32_MAX}};
        if (!ReadFields(entry, fields, sizeof fields / sizeof fields[0], e, {"lane", "sampleCount", "bits"}))
            return false;
        for (auto [key, place] : {std::pair{"sampleCount", &p.sampleCount}, std::pair{"bits", &p.bits}})
            if (const Json *v = Member(entry, key))
                if (!Store(*v, place, e, kMaxBits)) return e->In(key);
        p.generating = generating != 0;
        p.checking = checking != 0;
        p.invert = invert != 0;
        p.infinite = infinite != 0;
        p.inSync = inSync != 0;
        p.done = done != 0;
        p.errors = static_cast<int32_t>(errors);
        return true;
    });
}

Json WritePrbs(const PhyModel &m) {
    Json list = Json::array();
    for (uint32_t lane = 0; lane < ZENTREL_LANE_COUNT; ++lane) {
        const PrbsLane &p = m.prbs[lane];
        if (!p.generating && !p.checking) continue;
        list.push_back({{"lane", lane}, {"generating", p.generating ? 1 : 0}, {"pattern", p.pattern},
                        {"rate", p.rate}, {"checking", p.checking ? 1 : 0}, {"checkPattern", p.checkPattern},
                        {"checkRate", p.checkRate}, {"invert", p.invert ? 1 : 0}, {"infinite", p.infinite ? 1 : 0},
                        {"sampleCount", p.sampleCount}, {"inSync", p.inSync ? 1 : 0}, {"done", p.done ? 1 : 0},
                        {"bits", p.bits}, {"errors", p.errors}, {"injected", p.injected}});
    }
    return list;
}

int ApplyPhyKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    PhyModel &m = device.phy;
    if (key == "phyLanes") return Took(ReadLanes(value, m, error));
    if (key == "hwEye") return Took(ReadEye(value, m.eye, error));
    if (key == "prbs") {
        for (PrbsLane &p : m.prbs) p = {};  // the list names every running lane
        return Took(ReadPrbs(value, m, error));
    }
    return 0;
}

// The eye measurement and the PRBS generators and checkers run until a
// power cycle; the lanes' quality is the scenario's and no call changes it.
void SavePhy(const Device &device, Json *, Json *runtime) {
    (*runtime)["hwEye"] = WriteEye(device.phy.eye);
    (*runtime)["prbs"] = WritePrbs(device.phy);
}

// One second of PRBS traffic into a lane's checker: it keeps sync while
// its generator sends the pattern and rate it expects with the polarity
// it expects, and finishes at its sample count.
void RunChecker(PhyModel &m, uint32_t lane) {
    PrbsLane &p = m.prbs[lane];
    if (!p.checking || p.done) return;
    p.inSync = p.generating && p.pattern == p.checkPattern && p.rate == p.checkRate &&
               p.invert == m.lanes[lane].invertedPolarity;
    if (!p.inSync) return;
    p.bits = std::min(p.bits + kBitsPerSecond[p.rate], kMaxBits);
    int64_t errors = static_cast<int64_t>(p.errors) + PrbsErrorsPerSecond(m, lane) + p.injected;
    p.errors = static_cast<int32_t>(std::min<int64_t>(errors, INT32_MAX));
    p.injected = 0;
    if (!p.infinite && p.bits >= p.sampleCount) {
        p.bits = p.sampleCount;
        p.done = true;
    }
}

void ReportChecker(const PrbsLane &p, PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP response) {
    memset(response, 0, sizeof *response);
    response->CheckerStatus = (p.inSync ? ZENTREL_PRBS_IN_SYNC : 0) | (p.done ? ZENTREL_PRBS_CHECK_DONE : 0);
    for (int i = 0; i < 3; ++i) response->WordCount[i] = static_cast<uint16_t>(p.bits >> (16 * i));
    response->ErrorCount = p.errors;
}

ZENTREL_STATUS Prbs(Device &device, const ZENTREL_SWITCH_PRBS_REQ &r, PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP response) {
    PhyModel &m = device.phy;
    if (r.Lane >= m.laneCount) return kStatusInvalidParameter;
    PrbsLane &p = m.prbs[r.Lane];
    bool checker = r.Operation == ZENTREL_PRBS_ENABLE_CHECKER || r.Operation == ZENTREL_PRBS_CHECK_STATUS ||
                   r.Operation == ZENTREL_PRBS_READ_COUNTER;
    if (checker && response == nullptr) return kStatusInvalidParameter;
    bool validPattern = IsPattern(device, r.Pattern) && r.Rate >= 1 && r.Rate <= m.maxRate;
    switch (r.Operation) {
    case ZENTREL_PRBS_GENERATE:
        if (!validPattern) return kStatusInvalidParameter;
        p.generating = true;
        p.pattern = r.Pattern;
        p.rate = r.Rate;
        return ZENTREL_STATUS_SUCCESS;
    case ZENTREL_PRBS_INJECT_ERROR:
        // The library waits the wait time before it injects; the model
        // answers at once.
        if (!p.generating) return kStatusInvalidParameter;
        if (p.checking && !p.done) ++p.injected;
        return ZENTREL_STATUS_SUCCESS;
    case ZENTREL_PRBS_ENABLE_CHECKER:
        if (!validPattern) return kStatusInvalidParameter;
        p.checking = true;
        p.checkPattern = r.Pattern;
        p.checkRate = r.Rate;
        p.invert = r.InvertPolarity != 0;
        p.infinite = r.Infinite != 0;
        p.sampleCount = r.SampleCount[0] | static_cast<uint64_t>(r.SampleCount[1]) << 16 |
                        static_cast<uint64_t>(r.SampleCount[2]) << 32;
        p.inSync = p.done = false;
        p.bits = 0;
        p.errors = 0;
        p.injected = 0;
        break;
    case ZENTREL_PRBS_CHECK_STATUS:
        RunChecker(m, r.Lane);
        break;
    case ZENTREL_PRBS_READ_COUNTER:
        break;
    default:
        return kStatusInvalidParameter;
    }
    ReportChecker(p, response);
    return ZENTREL_STATUS_SUCCESS;
}

ZENTREL_SERDES_LANE_INFO SerdesOf(const PhyModel &m, uint32_t lane) {
    ZENTREL_SERDES_LANE_INFO info = {};
    ZENTREL_SWITCH_TX_COEFF_LANE tx = TxCoeffOf(m, lane);
    ZENTREL_SWITCH_RX_EQ_LANE rx = RxEqOf(m, lane);
    uint32_t d = Degradation(m, lane);
    info.Tx.Cm1 = static_cast<uint8_t>(-tx.PreCursorNear);
    info.Tx.C0 = static_cast<uint8_t>(tx.MainCursorNear);
    info.Tx.Cp1 = static_cast<uint8_t>(-tx.PostCursorNear);
    info.Tx.Amplitude = d > 60 ? 4 : 5;  // a weak lane's partner asked for less swing
    info.Rx.Dlevo = static_cast<int8_t>(20 + (100 - d) * 2 / 5);
    info.Rx.Dleve = static_cast<int8_t>(info.Rx.Dlevo - 1 - static_cast<int>(lane % 2));
    for (int i = 0; i < 8; ++i) info.Rx.H[i] = static_cast<int8_t>(rx.DfeTap[i]);
    info.Rx.Vga = static_cast<int8_t>(rx.Vga);
    info.Rx.Aeq = static_cast<int8_t>(rx.Aeq);
    info.Rx.H1P = static_cast<int8_t>(rx.DfeTap1P);
    info.Rx.H1N = static_cast<int8_t>(rx.DfeTap1N);
    info.Rx.Qskw = static_cast<uint8_t>(8 + lane % 5 + d / 20);
    return info;
}

}  // namespace

LaneMargins MarginsOf(const PhyModel &m, uint32_t lane) {
    uint32_t q = 100 - Degradation(m, lane);
    uint32_t t = TimingSteps(m) / 2 * q / 100, v = VoltageSteps(m) / 2 * q / 100;
    auto less = [](uint32_t value, uint32_t by) { return value > by ? value - by : 0; };
    return {less(t, lane % 2), less(t, lane % 3 == 0 ? 1 : 0), less(v, lane % 4 / 2), less(v, 1 - lane % 2)};
}

ZENTREL_SWITCH_RX_EQ_LANE RxEqOf(const PhyModel &m, uint32_t lane) {
    int32_t d = static_cast<int32_t>(Degradation(m, lane)), l = static_cast<int32_t>(lane);
    ZENTREL_SWITCH_RX_EQ_LANE r = {};
    r.Vga = 4 + d / 8;
    r.Aeq = 3 + d / 10 + l % 3;
    r.DfeTap1P = 18 + d / 3 + l % 4;
    r.DfeTap1N = -(16 + d / 3 + l % 3);
    for (int32_t k = 2; k <= 9; ++k) r.DfeTap[k - 2] = ((k + l) % 2 != 0 ? -1 : 1) * (12 + d / 4) / k;
    return r;
}

ZENTREL_SWITCH_TX_COEFF_LANE TxCoeffOf(const PhyModel &m, uint32_t lane) {
    int32_t d = static_cast<int32_t>(Degradation(m, lane)), l = static_cast<int32_t>(lane);
    ZENTREL_SWITCH_TX_COEFF_LANE c = {};
    c.PreCursorNear = -(4 + l % 3 + d / 25);
    c.PostCursorNear = -(10 + d / 10 + l % 2);
    c.MainCursorNear = 48 + c.PreCursorNear + c.PostCursorNear;
    c.PreCursorFar = -(5 + l % 2);
    c.PostCursorFar = -(8 + l / 2 % 3);
    c.MainCursorFar = 48 + c.PreCursorFar + c.PostCursorFar;
    return c;
}

ZENTREL_SWITCH_HW_EYE_LANE EyeOf(const PhyModel &m, uint32_t lane, uint32_t ber, uint32_t polls) {
    double q = 100 - Degradation(m, lane);
    uint32_t exponent = ber == 0 ? kDefaultBer : ber;
    // A lower target error rate closes the eye a little.
    double scale = std::clamp(1.0 + (static_cast<double>(kDefaultBer) - exponent) * 0.03, 0.7, 1.2);
    double open = static_cast<double>(std::min(polls + 1, kPollsToOpen + 1)) / (kPollsToOpen + 1) * scale;
    double width = q * 0.6 * open, height = q * 1.5 * open;
    double skew = (static_cast<double>(lane % 5) - 2.0) * 0.4;
    ZENTREL_SWITCH_HW_EYE_LANE e = {};
    e.TargetBer = pow(10.0, -static_cast<double>(exponent));
    e.EyeLeft = -(width / 2 + skew);
    e.EyeRight = width / 2 - skew;
    e.EyeUp = height / 2 + static_cast<double>(lane % 3) * 0.5;
    e.EyeDown = -(height / 2);
    return e;
}

int32_t PrbsErrorsPerSecond(const PhyModel &m, uint32_t lane) {
    uint32_t q = 100 - Degradation(m, lane);
    return q >= 60 ? 0 : static_cast<int32_t>((60 - q) * (60 - q) / 4);
}

extern const ModelPart kPhyPart = {
    "phy", SetPhyDefaults, ApplyPhyKey, SavePhy, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetLaneMarginCapacities(PTR_ZENTREL_DEVICE Device, uint8_t Port,
                                                                uint16_t Lane, uint32_t *MarginControlCaps,
                                                                uint32_t *Steps, uint32_t *Offsets) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PhyModel &m = call.Target().phy;
    uint32_t lane = 0;
    if (MarginControlCaps == nullptr || Steps == nullptr || Offsets == nullptr || !sim::PortLane(m, Port, Lane, &lane))
        return call.Return(sim::kStatusInvalidParameter);
    // The offsets a lane reaches at its last step shrink with its eye.
    uint32_t q = 100 - sim::Degradation(m, lane);
    *MarginControlCaps = sim::IsFast(m) ? sim::kCapsGen5 : sim::kCapsGen4;
    *Steps = sim::VoltageSteps(m) << 16 | sim::TimingSteps(m);
    *Offsets = (10 + q * 2 / 5) << 16 | (10 + q * 2 / 5 + lane % 3);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Each direction is margined up to the steps asked for; a lane passes them
// all, or stops where its errors pass the limit (a larger limit reaches a
// little further).
ZENTREL_STATUS simlib::ZentrelSwitchPerformLaneMargining(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_LANE_MARGIN_REQ Request,
                                                             PTR_ZENTREL_SWITCH_LANE_MARGIN_RESULT Results) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Reserved1 != 0) return call.Return(sim::kStatusInvalidParameter);
    const sim::PhyModel &m = call.Target().phy;
    uint32_t lanes = 0, absolute = 0;
    for (uint32_t k = 0; k < ZENTREL_MARGIN_MAX_LANES; ++k) {
        if ((Request->LaneMask >> k & 1u) == 0) continue;
        if (!sim::PortLane(m, Request->PortNumber, k, &absolute)) return call.Return(sim::kStatusInvalidParameter);
        lanes = k + 1;
    }
    if (lanes != 0 && Results == nullptr) return call.Return(sim::kStatusInvalidParameter);
    uint32_t extra = Request->ErrorCountLimit / 8;
    auto margin = [&](uint32_t reach, uint32_t asked, uint32_t *status, uint32_t *step) {
        reach += extra;
        *status = asked <= reach ? ZENTREL_MARGIN_STATUS_PASSED : ZENTREL_MARGIN_STATUS_LIMIT_FOUND;
        *step = std::min(asked, reach);
    };
    for (uint32_t k = 0; k < lanes; ++k) {
        ZENTREL_SWITCH_LANE_MARGIN_RESULT &r = Results[k];
        memset(&r, 0, sizeof r);
        if ((Request->LaneMask >> k & 1u) == 0) continue;
        sim::LaneMargins lm = sim::MarginsOf(m, Request->PortNumber + k);
        margin(lm.right, Request->NumTimeSteps, &r.RightTimeMarginStatus, &r.RightTimeMarginStep);
        margin(lm.left, Request->NumTimeSteps, &r.LeftTimeMarginStatus, &r.LeftTimeMarginStep);
        margin(lm.up, Request->NumVoltageSteps, &r.UpVoltageMarginStatus, &r.UpVoltageMarginStep);
        margin(lm.down, Request->NumVoltageSteps, &r.DownVoltageMarginStatus, &r.DownVoltageMarginStep);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

namespace {

// The common checks of the eye calls: a buffer, lanes of the switch, and
// for every call but the start the range of the measurement under way.
bool EyeCallValid(const sim::PhyModel &m, uint32_t start, uint32_t count, const void *eye, bool started) {
    if (eye == nullptr || !sim::LanesExist(m, start, count)) return false;
    return !started || (m.eye.active && m.eye.startLane == start && m.eye.laneCount == count);
}

void WriteEyeHeader(const sim::EyeScan &scan, PTR_ZENTREL_SWITCH_HW_EYE eye) {
    uint32_t header[4] = {scan.startLane, scan.laneCount, scan.polls, scan.active ? 1u : 0u};
    memcpy(eye->Header, header, sizeof header);
}

}  // namespace

ZENTREL_STATUS simlib::ZentrelSwitchHardwareEyeStart(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                         uint32_t NumLanes, uint32_t TargetBer,
                                                         PTR_ZENTREL_SWITCH_HW_EYE Eye) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::PhyModel &m = call.Target().phy;
    if (!EyeCallValid(m, StartLane, NumLanes, Eye, false)) return call.Return(sim::kStatusInvalidParameter);
    m.eye = {true, StartLane, NumLanes, TargetBer, 0};  // a new start replaces a measurement left running
    WriteEyeHeader(m.eye, Eye);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchHardwareEyePoll(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                        uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::PhyModel &m = call.Target().phy;
    if (!EyeCallValid(m, StartLane, NumLanes, Eye, true)) return call.Return(sim::kStatusInvalidParameter);
    if (m.eye.polls < UINT32_MAX) ++m.eye.polls;
    WriteEyeHeader(m.eye, Eye);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchHardwareEyeGet(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                       uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PhyModel &m = call.Target().phy;
    if (!EyeCallValid(m, StartLane, NumLanes, Eye, true)) return call.Return(sim::kStatusInvalidParameter);
    WriteEyeHeader(m.eye, Eye);
    for (uint32_t lane = StartLane; lane < StartLane + NumLanes; ++lane)
        Eye->Lanes[lane] = sim::EyeOf(m, lane, m.eye.targetBer, m.eye.polls);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchHardwareEyeClean(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                         uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::PhyModel &m = call.Target().phy;
    if (!EyeCallValid(m, StartLane, NumLanes, Eye, true)) return call.Return(sim::kStatusInvalidParameter);
    m.eye = {};
    WriteEyeHeader(m.eye, Eye);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchRxEqStatus(PTR_ZENTREL_DEVICE Device, uint32_t StartLane, uint32_t NumLanes,
                                                   PTR_ZENTREL_SWITCH_RX_EQ_STATUS Status) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PhyModel &m = call.Target().phy;
    if (Status == nullptr || !sim::LanesExist(m, StartLane, NumLanes)) return call.Return(sim::kStatusInvalidParameter);
    for (uint32_t lane = StartLane; lane < StartLane + NumLanes; ++lane) {
        Status->Lanes[lane] = sim::RxEqOf(m, lane);
        sim::ApplyEqControl(call.Target().designedB, lane, &Status->Lanes[lane]);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchTxCoeff(PTR_ZENTREL_DEVICE Device, uint32_t StartLane, uint32_t NumLanes,
                                                uint32_t Reserved, PTR_ZENTREL_SWITCH_TX_COEFF Coefficients) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PhyModel &m = call.Target().phy;
    if (Coefficients == nullptr || Reserved != 0 || !sim::LanesExist(m, StartLane, NumLanes))
        return call.Return(sim::kStatusInvalidParameter);
    for (uint32_t lane = StartLane; lane < StartLane + NumLanes; ++lane) {
        Coefficients->Lanes[lane] = sim::TxCoeffOf(m, lane);
        sim::ApplyEqControl(call.Target().designedB, lane, &Coefficients->Lanes[lane]);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A lane of the switch, or every lane of a port that exists, as wide as
// the port can be.
ZENTREL_STATUS simlib::ZentrelSwitchGetSerdesInfo(PTR_ZENTREL_DEVICE Device,
                                                      PTR_ZENTREL_SWITCH_SERDES_INFO_REQ Request,
                                                      PTR_ZENTREL_SWITCH_SERDES_INFO_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::Device &d = call.Target();
    const sim::PhyModel &m = d.phy;
    uint32_t number = Request->Number;
    if (Request->RequestOption == ZENTREL_SERDES_REQ_LANE) {
        if (number >= m.laneCount) return call.Return(sim::kStatusInvalidParameter);
        memset(Response, 0, sizeof *Response);
        Response->Info.Lane = sim::SerdesOf(m, number);
    } else if (Request->RequestOption == ZENTREL_SERDES_REQ_PORT) {
        if (number >= ZENTREL_PORT_COUNT || !d.ports.ports[number].Valid) return call.Return(sim::kStatusInvalidParameter);
        uint32_t width = d.ports.ports[number].MaxLinkWidth & 0xFF, lane = 0, count = 0;
        memset(Response, 0, sizeof *Response);
        while (count < width && count < ZENTREL_SERDES_MAX_ENTRIES && sim::PortLane(m, number, count, &lane))
            Response->Info.Port.Entries[count++] = sim::SerdesOf(m, lane);
        Response->Info.Port.EntryCount = count;
    } else {
        return call.Return(sim::kStatusInvalidParameter);
    }
    Response->ResponseType = Request->RequestOption;
    Response->PswVersion = m.pswVersion;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchPrbs(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_PRBS_REQ Request,
                                             PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr) return call.Return(sim::kStatusInvalidParameter);
    return call.Return(sim::Prbs(call.Target(), *Request, Response));
}
