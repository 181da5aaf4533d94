// Error injection, TLP round-trip time, credit capture and link-down
// conditions of the simulated switches. Injected errors land in the ports
// model's counters and status bits; a link-down condition holds the link
// down through the topology model's reasons, as port control does.
#include <algorithm>
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

constexpr uint32_t kSupportedErrorTypes = ((1u << (ZENTREL_ERR_INJ_LAST + 1)) - 1) & ~1u;
constexpr uint32_t kCreditSamplesPerRead = 1000;
constexpr uint32_t kCreditSamplesForFullLoad = 10000;

// Where one injected error shows: a counter (or none), a correctable or an
// uncorrectable AER status bit, and for an unsupported request the Device
// Status bit of its own.
struct ErrorEffect {
    uint32_t ZENTREL_SWITCH_PORT_ERROR_STATISTICS::*counter;
    bool uncorrectable;
    uint32_t aerBit;
};

const ErrorEffect kEffects[ZENTREL_ERR_INJ_LAST + 1] = {
    {nullptr, false, 0},
    {&ZENTREL_SWITCH_PORT_ERROR_STATISTICS::PortReceiverErrors, false, 0},
    {&ZENTREL_SWITCH_PORT_ERROR_STATISTICS::BadTlpErrors, false, 6},
    {&ZENTREL_SWITCH_PORT_ERROR_STATISTICS::BadDllpErrors, false, 7},
    {&ZENTREL_SWITCH_PORT_ERROR_STATISTICS::RecoveryDiagnosticsErrors, false, 12},  // a replay time-out retrains
    {nullptr, true, 12},  // poisoned TLP
    {nullptr, true, 14},  // completion time-out
    {nullptr, true, 18},  // malformed TLP
    {nullptr, true, 19},  // ECRC
    {nullptr, true, 20},  // unsupported request
};

constexpr uint32_t kCorrectableDetected = 1u << 0;
constexpr uint32_t kNonFatalDetected = 1u << 1;
constexpr uint32_t kFatalDetected = 1u << 2;
constexpr uint32_t kUnsupportedRequestDetected = 1u << 3;

uint32_t AddSaturating(uint32_t a, uint32_t b) {
    return a > UINT32_MAX - b ? UINT32_MAX : a + b;
}

bool HasPort(const Device &d, uint32_t port) {
    return port < ZENTREL_PORT_COUNT && d.ports.ports[port].Valid != 0;
}

bool LinkUp(const Device &d, uint32_t port) {
    return Shown(d, port).NegotiatedLinkWidth != 0;
}

// The condition takes the link down; the port counts it once.
void HoldLinkDown(Device &d, uint32_t port) {
    if (LinkUp(d, port)) d.ports.errors[port].LinkDownCount = AddSaturating(d.ports.errors[port].LinkDownCount, 1);
    d.topology.disabled[port] |= kDownByCondition;
}

void RecordInjection(InjectedErrors &list, uint8_t type, uint16_t count) {
    for (uint32_t i = 0; i < list.count; ++i) {
        if (list.entries[i].ErrorType != type) continue;
        list.entries[i].Count = static_cast<uint16_t>(std::min<uint32_t>(0xFFFFu, list.entries[i].Count + count));
        return;
    }
    if (list.count < ZENTREL_ERR_INJ_MAX_ENTRIES) list.entries[list.count++] = {type, 0, count};
}

void Inject(Device &d, uint32_t port, uint8_t type, uint16_t count) {
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS &s = d.ports.errors[port];
    const ErrorEffect &effect = kEffects[type];
    if (effect.counter != nullptr) s.*effect.counter = AddSaturating(s.*effect.counter, count);
    const uint32_t bit = 1u << effect.aerBit;
    if (!effect.uncorrectable) {
        s.CorrectableStatus |= bit;
        s.ErrorStatus |= kCorrectableDetected;
    } else {
        s.UncorrectableStatus |= bit;
        bool fatal = (s.UncorrectableSeverity & bit) != 0;
        s.ErrorStatus |= fatal ? kFatalDetected : kNonFatalDetected;
        if (type == ZENTREL_ERR_INJ_UNSUPPORTED_REQUEST) s.ErrorStatus |= kUnsupportedRequestDetected;
        if (fatal && d.designedA.linkDownCondition[port] == ZENTREL_LINK_DOWN_COND_ON_FATAL) HoldLinkDown(d, port);
    }
    RecordInjection(d.designedA.injected[port], type, count);
}

// Link rate in tenths of GT/s, and the payload share of the line
// encoding in percent, of generations 1 to 5.
const uint32_t kRateTenthsGts[6] = {25, 25, 50, 80, 160, 320};
const uint32_t kEncodingPercent[6] = {80, 80, 80, 98, 98, 98};

uint32_t Generation(const ZENTREL_SWITCH_PORT_ENTRY &e) {
    return e.NegotiatedLinkSpeed >= 1 && e.NegotiatedLinkSpeed <= 5 ? e.NegotiatedLinkSpeed : 1;
}

// A memory read of 64 bytes and its completion (108 bytes with framing)
// cross the link once each; the partner takes about 400 ns to answer, and
// each older generation adds some PHY latency.
void MeasureRoundTrip(const Device &d, uint32_t port, uint16_t samples, ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP *r) {
    const ZENTREL_SWITCH_PORT_ENTRY e = Shown(d, port);
    const uint32_t gen = Generation(e);
    const uint32_t width = e.NegotiatedLinkWidth;
    // bits / (GT/s x encoding x lanes) in ns: 108 x 8 x 10 x 100 / (tenths x percent x width)
    const uint32_t serialNs = 108u * 8u * 1000u / (kRateTenthsGts[gen] * kEncodingPercent[gen] * width);
    const uint32_t average = 400u + 60u * (5u - gen) + serialNs;
    Filler jitter(port * 131u + samples);
    r->Port = static_cast<uint8_t>(port);
    r->LinkSpeed = static_cast<uint8_t>(gen);
    r->LinkWidth = static_cast<uint8_t>(width);
    r->SampleCount = samples;
    r->AverageNs = average + jitter.Word() % 16u;
    r->MinimumNs = average - average / 10u - jitter.Word() % 8u;
    // More samples catch longer stalls.
    r->MaximumNs = average + average / 4u + samples / 8u + jitter.Word() % 32u;
}

// Credits a port of this width advertises.
ZENTREL_CREDIT_COUNTS Advertised(uint32_t width) {
    ZENTREL_CREDIT_COUNTS c;
    c.PostedHeader = static_cast<uint16_t>(16 + 4 * width);
    c.PostedData = static_cast<uint16_t>(64 + 32 * width);
    c.NonPostedHeader = static_cast<uint16_t>(8 + 2 * width);
    c.NonPostedData = static_cast<uint16_t>(2 + width);
    c.CompletionHeader = static_cast<uint16_t>(16 + 4 * width);
    c.CompletionData = static_cast<uint16_t>(64 + 32 * width);
    return c;
}

// A faster, wider link drains more of its credits: up to 90 % at Gen5 x16,
// reached as the capture takes more samples.
uint16_t Lowest(uint16_t advertised, uint32_t gen, uint32_t width, uint32_t samples, Filler &jitter) {
    uint32_t load = std::min<uint32_t>(90u, 5u + gen * width * 85u / 80u + jitter.Word() % 5u);
    load = load * std::min(samples, kCreditSamplesForFullLoad) / kCreditSamplesForFullLoad;
    return static_cast<uint16_t>(advertised - advertised * load / 100u);
}

void CaptureCredits(const Device &d, uint32_t port, ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP *r) {
    const ZENTREL_SWITCH_PORT_ENTRY e = Shown(d, port);
    const CreditCapture &c = d.designedA.credits[port];
    const uint32_t gen = Generation(e);
    const uint32_t width = e.NegotiatedLinkWidth;
    r->Port = static_cast<uint8_t>(port);
    r->Capturing = c.capturing ? 1 : 0;
    r->LinkSpeed = static_cast<uint8_t>(gen);
    r->LinkWidth = static_cast<uint8_t>(width);
    r->SampleCount = c.samples;
    r->Advertised = Advertised(width);
    Filler jitter(port * 7u + 3u);
    const ZENTREL_CREDIT_COUNTS &a = r->Advertised;
    ZENTREL_CREDIT_COUNTS &m = r->MinimumAvailable;
    m.PostedHeader = Lowest(a.PostedHeader, gen, width, c.samples, jitter);
    m.PostedData = Lowest(a.PostedData, gen, width, c.samples, jitter);
    m.NonPostedHeader = Lowest(a.NonPostedHeader, gen, width, c.samples, jitter);
    m.NonPostedData = Lowest(a.NonPostedData, gen, width, c.samples, jitter);
    m.CompletionHeader = Lowest(a.CompletionHeader, gen, width, c.samples, jitter);
    m.CompletionData = Lowest(a.CompletionData, gen, width, c.samples, jitter);
}

void SetDesignedADefaults(Device &device, size_t) {
    DesignedAModel &m = device.designedA;
    memset(&m, 0, sizeof m);
    std::fill(std::begin(m.roundTripSamples), std::end(m.roundTripSamples), kDefaultRoundTripSamples);
}

bool ReadInjections(const Json &value, DesignedAModel &m, Problem *error) {
    return ReadNumberedList(value, "port", ZENTREL_PORT_COUNT - 1, error,
                            [&m](uint64_t port, const Json &entry, Problem *problem) {
        InjectedErrors &list = m.injected[port];
        list = {};
        const Json *injected = Member(entry, "injected");
        if (injected == nullptr) return true;
        bool ok = ReadNumberedList(*injected, "type", ZENTREL_ERR_INJ_LAST, problem,
                                   [&list](uint64_t type, const Json &item, Problem *p) {
            uint32_t count = 0;
            Field f[] = {{"count", &count, 0xFFFF}};
            if (!ReadFields(item, f, 1, p, {"type"})) return false;
            if (type != ZENTREL_ERR_INJ_CLEAR && count != 0)
                RecordInjection(list, static_cast<uint8_t>(type), static_cast<uint16_t>(count));
            return true;
        });
        return ok || problem->In("injected");
    });
}

int ApplyDesignedAKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    DesignedAModel &m = device.designedA;
    if (key == "errorInjections") return Took(ReadInjections(value, m, error));
    if (key == "roundTripSamples") {
        return Took(ReadNumberedList(value, "port", ZENTREL_PORT_COUNT - 1, error,
                                     [&m](uint64_t port, const Json &entry, Problem *problem) {
            uint32_t samples = m.roundTripSamples[port];
            Field f[] = {{"samples", &samples, 0xFFFF}};
            if (!ReadFields(entry, f, 1, problem, {"port"})) return false;
            m.roundTripSamples[port] = static_cast<uint16_t>(samples != 0 ? samples : kDefaultRoundTripSamples);
            return true;
        }));
    }
    if (key == "creditCaptures") {
        return Took(ReadNumberedList(value, "port", ZENTREL_PORT_COUNT - 1, error,
                                     [&m](uint64_t port, const Json &entry, Problem *problem) {
            CreditCapture &c = m.credits[port];
            uint32_t capturing = c.capturing ? 1 : 0;
            Field f[] = {{"capturing", &capturing, 1}, {"samples", &c.samples, UINT32_MAX}};
            if (!ReadFields(entry, f, 2, problem, {"port"})) return false;
            c.capturing = capturing != 0;
            return true;
        }));
    }
    if (key == "linkDownConditions") {
        return Took(ReadNumberedList(value, "port", ZENTREL_PORT_COUNT - 1, error,
                                     [&device](uint64_t port, const Json &entry, Problem *problem) {
            uint32_t condition = device.designedA.linkDownCondition[port];
            uint32_t down = (device.topology.disabled[port] & kDownByCondition) != 0 ? 1 : 0;
            Field f[] = {{"condition", &condition, ZENTREL_LINK_DOWN_COND_LAST}, {"down", &down, 1}};
            if (!ReadFields(entry, f, 2, problem, {"port"})) return false;
            device.designedA.linkDownCondition[port] = static_cast<uint8_t>(condition);
            uint8_t &reasons = device.topology.disabled[port];
            reasons = static_cast<uint8_t>(down != 0 ? reasons | kDownByCondition : reasons & ~kDownByCondition);
            return true;
        }));
    }
    return 0;
}

// Everything here is runtime state: a power cycle clears the lists, the
// captures and the conditions, and brings the links up again.
void SaveDesignedA(const Device &device, Json *, Json *runtime) {
    const DesignedAModel &m = device.designedA;
    Json injections = Json::array(), samples = Json::array(), credits = Json::array(), conditions = Json::array();
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        const InjectedErrors &list = m.injected[port];
        if (list.count != 0) {
            Json items = Json::array();
            for (uint32_t i = 0; i < list.count; ++i)
                items.push_back({{"type", list.entries[i].ErrorType}, {"count", list.entries[i].Count}});
            injections.push_back({{"port", port}, {"injected", items}});
        }
        if (m.roundTripSamples[port] != kDefaultRoundTripSamples)
            samples.push_back({{"port", port}, {"samples", m.roundTripSamples[port]}});
        const CreditCapture &c = m.credits[port];
        if (c.capturing || c.samples != 0)
            credits.push_back({{"port", port}, {"capturing", c.capturing ? 1 : 0}, {"samples", c.samples}});
        const bool down = (device.topology.disabled[port] & kDownByCondition) != 0;
        if (m.linkDownCondition[port] != ZENTREL_LINK_DOWN_COND_NONE || down)
            conditions.push_back({{"port", port}, {"condition", m.linkDownCondition[port]}, {"down", down ? 1 : 0}});
    }
    (*runtime)["errorInjections"] = injections;
    (*runtime)["roundTripSamples"] = samples;
    (*runtime)["creditCaptures"] = credits;
    (*runtime)["linkDownConditions"] = conditions;
}

}  // namespace

extern const ModelPart kDesignedAPart = {
    "designedA", SetDesignedADefaults, ApplyDesignedAKey, SaveDesignedA, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetErrInjectionInfo(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ Request,
                                                            PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::HasPort(d, Request->Port))
        return call.Return(sim::kStatusInvalidParameter);
    const sim::InjectedErrors &list = d.designedA.injected[Request->Port];
    memset(Response, 0, sizeof *Response);
    Response->Port = Request->Port;
    Response->EntryCount = list.count;
    Response->SupportedTypes = sim::kSupportedErrorTypes;
    memcpy(Response->Entries, list.entries, sizeof list.entries);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Errors are injected only on a port whose link is up.
ZENTREL_STATUS simlib::ZentrelSwitchSetErrInjection(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_ERR_INJECTION_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || !sim::HasPort(d, Request->Port) || Request->ErrorType > ZENTREL_ERR_INJ_LAST ||
        (Request->ErrorType != ZENTREL_ERR_INJ_CLEAR && Request->Count == 0))
        return call.Return(sim::kStatusInvalidParameter);
    if (Request->ErrorType == ZENTREL_ERR_INJ_CLEAR) {
        d.designedA.injected[Request->Port] = {};
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    if (!sim::LinkUp(d, Request->Port)) return call.Return(ZENTREL_STATUS_LINK_NOT_UP);
    sim::Inject(d, Request->Port, Request->ErrorType, Request->Count);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchTLPRoundTripTime(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ Request,
                                                         PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::HasPort(d, Request->Port))
        return call.Return(sim::kStatusInvalidParameter);
    if (!sim::LinkUp(d, Request->Port)) return call.Return(ZENTREL_STATUS_LINK_NOT_UP);
    uint16_t &samples = d.designedA.roundTripSamples[Request->Port];
    if (Request->SampleCount != 0) samples = Request->SampleCount;
    memset(Response, 0, sizeof *Response);
    sim::MeasureRoundTrip(d, Request->Port, samples, Response);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Starting a capture starts it afresh; stopping keeps what it saw.
ZENTREL_STATUS simlib::ZentrelSwitchSetCreditCapture(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || !sim::HasPort(d, Request->Port) || Request->Enable > 1)
        return call.Return(sim::kStatusInvalidParameter);
    sim::CreditCapture &c = d.designedA.credits[Request->Port];
    if (Request->Enable == 0) {
        c.capturing = false;
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    if (!sim::LinkUp(d, Request->Port)) return call.Return(ZENTREL_STATUS_LINK_NOT_UP);
    c = {true, 0};
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// While a capture runs, each read finds it some samples further on.
ZENTREL_STATUS simlib::ZentrelSwitchGetCreditCapture(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ Request,
                                                         PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::HasPort(d, Request->Port))
        return call.Return(sim::kStatusInvalidParameter);
    if (!sim::LinkUp(d, Request->Port)) return call.Return(ZENTREL_STATUS_LINK_NOT_UP);
    sim::CreditCapture &c = d.designedA.credits[Request->Port];
    if (c.capturing) c.samples = sim::AddSaturating(c.samples, sim::kCreditSamplesPerRead);
    memset(Response, 0, sizeof *Response);
    sim::CaptureCredits(d, Request->Port, Response);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// "Now" takes the link down at once; "on fatal" arms the port; "none"
// disarms it and lets a link held down by a condition train again.
ZENTREL_STATUS simlib::ZentrelSwitchSetLinkDownCondition(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || !sim::HasPort(d, Request->Port) ||
        Request->Condition > ZENTREL_LINK_DOWN_COND_LAST)
        return call.Return(sim::kStatusInvalidParameter);
    d.designedA.linkDownCondition[Request->Port] = Request->Condition;
    uint8_t &reasons = d.topology.disabled[Request->Port];
    if (Request->Condition == ZENTREL_LINK_DOWN_COND_NONE)
        reasons = static_cast<uint8_t>(reasons & ~sim::kDownByCondition);
    else if (Request->Condition == ZENTREL_LINK_DOWN_COND_NOW)
        sim::HoldLinkDown(d, Request->Port);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetLinkDownConditionStatus(
    PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ Request,
    PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::HasPort(d, Request->Port))
        return call.Return(sim::kStatusInvalidParameter);
    memset(Response, 0, sizeof *Response);
    Response->Port = Request->Port;
    Response->Condition = d.designedA.linkDownCondition[Request->Port];
    Response->Triggered = (d.topology.disabled[Request->Port] & sim::kDownByCondition) != 0 ? 1 : 0;
    Response->LinkDownCount = d.ports.errors[Request->Port].LinkDownCount;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
