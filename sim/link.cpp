// Switch memory, LTSSM probe registers, LTSSM triggers and monitors, and
// the performance counters of the simulated switches.
#include <cstring>
#include <sys/stat.h>

#include "sim.h"

namespace sim {

namespace {

// The trigger's dump could not be written: its directory does not exist.
constexpr ZENTREL_STATUS kStatusDumpFailed = 0x6;
// A counter read before counting started on a start/stop switch.
constexpr ZENTREL_STATUS kStatusNotStarted = 0x7;

constexpr uint32_t kPortCount = ZENTREL_PORT_COUNT;
constexpr size_t kMaxHistory = 64;
constexpr uint32_t kDefaultWindowMs = 1000;
constexpr int32_t kMaxLoad = 10000;

// Training from Detect to L0, the speed change to the link's best rate with
// its equalization included; then the walk's loop repeats.
const uint16_t kTraining[] = {
    0x000, 0x001, 0x103, 0x107, 0x201, 0x203, 0x202, 0x206, 0x207, 0x200,
    0x301, 0x401, 0x407, 0x401, 0x405, 0x415, 0x417, 0x401, 0x403, 0x400,
};
constexpr uint32_t kTrainingSteps = sizeof kTraining / sizeof kTraining[0];
const uint16_t kUpLoop[] = {0x301};
const uint16_t kRecoveringLoop[] = {0x301, 0x301, 0x301, 0x401, 0x403, 0x400};
const uint16_t kDownLoop[] = {0x000, 0x001};
constexpr uint16_t kDetectQuiet = 0x000;

const char *const kWalkNames[] = {"auto", "up", "recovering", "down"};

// Bytes per second of one lane, by generation.
const uint64_t kLaneRate[] = {0, 250000000, 500000000, 984615384, 1969230769, 3938461538};

// How long each switch has been counting when the simulation starts.
const uint64_t kUptimeMs[] = {86400000, 7200000};

bool PortExists(const Device &device, uint32_t port) {
    return port < kPortCount && device.ports.ports[port].Valid != 0;
}

bool LinkUp(const Device &device, uint32_t port) {
    return PortExists(device, port) && device.ports.ports[port].NegotiatedLinkWidth != 0;
}

LtssmWalk WalkOf(const Device &device, uint32_t port) {
    LtssmWalk walk = device.link.ltssm[port].walk;
    if (walk != LtssmWalk::kAuto) return walk;
    return LinkUp(device, port) ? LtssmWalk::kUp : LtssmWalk::kDown;
}

template <size_t N>
uint16_t Loop(const uint16_t (&loop)[N], uint32_t index) {
    return loop[index % N];
}

uint16_t StateAt(const Device &device, uint32_t port, uint32_t step) {
    if (!PortExists(device, port)) return kDetectQuiet;
    LtssmWalk walk = WalkOf(device, port);
    if (walk == LtssmWalk::kDown) return Loop(kDownLoop, step);
    if (step < kTrainingSteps) return kTraining[step];
    if (walk == LtssmWalk::kRecovering) return Loop(kRecoveringLoop, step - kTrainingSteps);
    return Loop(kUpLoop, step - kTrainingSteps);
}

// One step of the port's walk; an armed trigger sees every state entered.
void Advance(Device &device, uint32_t port) {
    if (!PortExists(device, port)) return;
    LtssmPort &p = device.link.ltssm[port];
    uint16_t before = StateAt(device, port, p.step);
    ++p.step;
    uint16_t now = StateAt(device, port, p.step);
    auto it = device.link.triggers.find(port);
    if (now == before || it == device.link.triggers.end()) return;
    LtssmTrigger &t = it->second;
    if (t.history.size() < kMaxHistory) t.history.push_back(now);
    if (now == t.state) t.fired = true;
}

// The state as the probe shows it, then one step on: the code in bits
// 11..0 and, in L0, the link's generation in bits 15..12.
uint32_t Sample(Device &device, uint32_t port) {
    uint32_t state = StateAt(device, port, PortExists(device, port) ? device.link.ltssm[port].step : 0);
    uint32_t value = state;
    if (state == ZENTREL_LTSSM_L0) value |= (device.ports.ports[port].NegotiatedLinkSpeed & 0xFu) << 12;
    Advance(device, port);
    return value;
}

bool Alternate(const Device &device) {
    return (device.info.DeviceId & ZENTREL_LTSSM_ALT_ID_MASK) == ZENTREL_LTSSM_ALT_ID;
}

// A word as written, or its value from the start: 0 for the probe
// registers, believable register contents elsewhere.
uint32_t Stored(const Device &device, uint32_t address) {
    auto it = device.link.registers.find(address);
    if (it != device.link.registers.end()) return it->second;
    uint32_t offset = address & 0xFFFFu;
    if (offset == (ZENTREL_LTSSM_PROBE_REG & 0xFFFFu) || offset == (ZENTREL_LTSSM_PROBE_STATUS_REG & 0xFFFFu)) return 0;
    return Filler(device.link.registerSeed ^ address).Word();
}

// A word as a read sees it: the probe registers show the selected port's
// state when the select register enables the probe.
uint32_t ReadWord(Device &device, uint32_t address) {
    uint32_t value = Stored(device, address);
    uint32_t offset = address & 0xFFFFu;
    uint32_t station = (address >> ZENTREL_LTSSM_STATION_SHIFT) & 0xFu;
    if (!Alternate(device) && offset == (ZENTREL_LTSSM_PROBE_REG & 0xFFFFu) && (value & ZENTREL_LTSSM_SELECT_ENABLE) != 0) {
        uint32_t port = station * ZENTREL_STATION_LANES + (value >> ZENTREL_LTSSM_SELECT_PORT_SHIFT);
        return (value & ~ZENTREL_LTSSM_STATE_MASK) | (Sample(device, port) & ZENTREL_LTSSM_STATE_MASK);
    }
    if (Alternate(device) && offset == (ZENTREL_LTSSM_PROBE_STATUS_REG & 0xFFFFu)) {
        uint32_t select = Stored(device, address - 4);
        if ((select & ZENTREL_LTSSM_ALT_SELECT_ENABLE) == ZENTREL_LTSSM_ALT_SELECT_ENABLE) {
            uint32_t port = station * ZENTREL_STATION_LANES + ((select >> ZENTREL_LTSSM_ALT_SELECT_PORT_SHIFT) & 0xFu);
            return Sample(device, port);
        }
    }
    return value;
}

bool InRegisterSpace(uint32_t address, uint32_t count) {
    uint64_t end = static_cast<uint64_t>(address) + count;
    return address >= kRegisterBase && end <= static_cast<uint64_t>(kRegisterBase) + kRegisterSpan &&
           count <= kMaxAccessBytes;
}

// ---- Performance counters ----

enum Counter { kPh, kPdw, kNph, kNpdw, kCplh, kCpldw, kDllp };

int32_t LoadOf(const Device &device, uint32_t port, bool ingress) {
    const PerfPort &p = device.link.perf[port];
    int32_t own = ingress ? p.ingressLoad : p.egressLoad;
    if (own >= 0) return own;
    const ZENTREL_SWITCH_PORT_ENTRY &e = device.ports.ports[port];
    switch (e.PortType) {
    case ZENTREL_PORT_TYPE_HOST:
    case ZENTREL_PORT_TYPE_HOST_ALT:
        return ingress ? 3500 : 4200;
    case ZENTREL_PORT_TYPE_FABRIC:
        return 2000;
    case ZENTREL_PORT_TYPE_MANAGEMENT:
        return 5;
    default:
        if (e.Role.Downstream.DeviceAttached == 0) return 0;
        return ingress ? static_cast<int32_t>(1800 + port % 5 * 300) : static_cast<int32_t>(1500 + port % 3 * 250);
    }
}

uint64_t Bandwidth(const Device &device, uint32_t port) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = device.ports.ports[port];
    uint32_t speed = e.NegotiatedLinkSpeed < 6 ? e.NegotiatedLinkSpeed : 5;
    return kLaneRate[speed] * e.NegotiatedLinkWidth;
}

// One direction's traffic over ms milliseconds: 55% of the bytes posted
// writes of 256 bytes, 40% completions of 128 bytes, 5% read requests (one
// in 16 a non-posted write of one dword), and an acknowledge every second TLP.
void AddTraffic(uint64_t (&counters)[ZENTREL_PERF_COUNTER_COUNT], uint64_t bandwidth, int32_t load, uint64_t ms) {
    uint64_t bytes = bandwidth / 1000 * ms / kMaxLoad * static_cast<uint64_t>(load);
    uint64_t posted = bytes * 55 / 100 / (16 + 256 + 4);
    uint64_t completions = bytes * 40 / 100 / (16 + 128 + 4);
    uint64_t requests = bytes * 5 / 100 / (16 + 4);
    counters[kPh] += posted;
    counters[kPdw] += posted * 64;
    counters[kCplh] += completions;
    counters[kCpldw] += completions * 32;
    counters[kNph] += requests;
    counters[kNpdw] += requests / 16;
    counters[kDllp] += (posted + completions + requests) / 2;
}

void AdvanceCounters(Device &device, uint32_t port, uint64_t ms) {
    if (!LinkUp(device, port) || !PerfMonitored(device.designedB, port)) return;
    PerfPort &p = device.link.perf[port];
    uint64_t bandwidth = Bandwidth(device, port);
    AddTraffic(p.ingress, bandwidth, LoadOf(device, port, true), ms);
    AddTraffic(p.egress, bandwidth, LoadOf(device, port, false), ms);
}

// What the firmware derives from the counters' growth over the window.
ZENTREL_PORT_PERF_STATISTIC Statistic(const uint64_t (&now)[ZENTREL_PERF_COUNTER_COUNT],
                                      const uint64_t (&before)[ZENTREL_PERF_COUNTER_COUNT], uint64_t bandwidth,
                                      uint64_t ms) {
    uint64_t d[ZENTREL_PERF_COUNTER_COUNT];
    for (uint32_t i = 0; i < ZENTREL_PERF_COUNTER_COUNT; ++i) d[i] = now[i] - before[i];
    uint64_t tlps = d[kPh] + d[kNph] + d[kCplh];
    ZENTREL_PORT_PERF_STATISTIC s;
    memset(&s, 0, sizeof s);
    s.PayloadTotal = (d[kPdw] + d[kNpdw] + d[kCpldw]) * 4;
    s.TotalData = tlps * 16 + s.PayloadTotal + d[kDllp] * 8;
    s.PayloadAverage = tlps != 0 ? s.PayloadTotal / tlps : 0;
    s.TotalRate = s.TotalData * 1000 / ms;
    s.PayloadRate = s.PayloadTotal * 1000 / ms;
    s.LinkUtilization = bandwidth != 0 ? s.TotalRate * 10000 / bandwidth : 0;
    return s;
}

template <typename Entry, typename T>
void FillEntry(const Device &device, uint32_t port, bool statistics, uint64_t ms, Entry *e) {
    const PerfPort &p = device.link.perf[port];
    e->Valid = 1;
    for (uint32_t i = 0; i < ZENTREL_PERF_COUNTER_COUNT; ++i) {
        e->Ingress[i] = static_cast<T>(p.ingress[i]);
        e->Egress[i] = static_cast<T>(p.egress[i]);
        e->PreIngress[i] = static_cast<T>(p.preIngress[i]);
        e->PreEgress[i] = static_cast<T>(p.preEgress[i]);
    }
    if (!statistics) return;
    uint64_t bandwidth = Bandwidth(device, port);
    e->IngressStatistic = Statistic(p.ingress, p.preIngress, bandwidth, ms);
    e->EgressStatistic = Statistic(p.egress, p.preEgress, bandwidth, ms);
}

void Snapshot(PerfPort &p) {
    memcpy(p.preIngress, p.ingress, sizeof p.ingress);
    memcpy(p.preEgress, p.egress, sizeof p.egress);
}

bool SamplingSwitch(const Device &device) {
    return device.info.DeviceGeneration == 2 || device.info.DeviceGeneration == 3;
}

// ---- Defaults, scenario keys, state ----

void SetLinkDefaults(Device &device, size_t index) {
    LinkModel &m = device.link;
    m.registerSeed = 0x4C494E4Bu + static_cast<uint32_t>(index);
    m.registers.clear();
    m.triggers.clear();
    m.perfStarted = false;
    uint64_t uptime = kUptimeMs[index < 2 ? index : 0];
    for (uint32_t port = 0; port < kPortCount; ++port) {
        m.ltssm[port] = {LtssmWalk::kAuto, kTrainingSteps};
        PerfPort &p = m.perf[port];
        memset(&p, 0, sizeof p);
        p.ingressLoad = -1;
        p.egressLoad = -1;
        AdvanceCounters(device, port, uptime);
        Snapshot(p);
    }
}

bool ReadWalk(const Json &value, LtssmWalk *walk, Problem *error) {
    for (size_t i = 0; i < sizeof kWalkNames / sizeof kWalkNames[0]; ++i)
        if (value.is_string() && value.get<std::string>() == kWalkNames[i]) {
            *walk = static_cast<LtssmWalk>(i);
            return true;
        }
    *error = "must be \"auto\", \"up\", \"recovering\" or \"down\", not " + Excerpt(value);
    return false;
}

// [{"port": n, "walk": "recovering", "step": n}, ...]
bool ReadLtssm(const Json &list, LinkModel &m, Problem *error) {
    return ReadNumberedList(list, "port", kPortCount - 1, error, [&](uint64_t port, const Json &entry, Problem *e) {
        LtssmPort &p = m.ltssm[port];
        Field fields[] = {{"step", &p.step, UINT32_MAX}};
        if (!ReadFields(entry, fields, 1, e, {"port", "walk"})) return false;
        if (const Json *walk = Member(entry, "walk"))
            if (!ReadWalk(*walk, &p.walk, e)) return e->In("walk");
        return true;
    });
}

// [{"address": a, "value": v}, ...]: words of the register space.
bool ReadRegisters(const Json &list, LinkModel &m, Problem *error) {
    if (!list.is_array()) {
        *error = "must be a list, not " + Excerpt(list);
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        uint32_t address = 0, value = 0;
        Field fields[] = {{"address", &address, UINT32_MAX}, {"value", &value, UINT32_MAX}};
        if (!ReadFields(list[i], fields, 2, error)) return error->At(i);
        if (address % 4 != 0 || !InRegisterSpace(address, 4)) {
            *error = "address must be a word from 0x60800000 to 0x608ffffc";
            return error->In("address"), error->At(i);
        }
        m.registers[address] = value;
    }
    return true;
}

// [{"port": n, "state": s, "fired": 0/1, "monitor": 0/1, "history": [...]}, ...]
bool ReadTriggers(const Json &list, LinkModel &m, Problem *error) {
    m.triggers.clear();
    return ReadNumberedList(list, "port", kPortCount - 1, error, [&](uint64_t port, const Json &entry, Problem *e) {
        uint32_t state = 0, fired = 0, monitor = 0;
        Field fields[] = {{"state", &state, 0xFFFF}, {"fired", &fired, 1}, {"monitor", &monitor, 1}};
        if (!ReadFields(entry, fields, 3, e, {"port", "history"})) return false;
        LtssmTrigger t = {static_cast<uint16_t>(state), fired != 0, monitor != 0, {}};
        if (const Json *history = Member(entry, "history")) {
            if (!history->is_array() || history->size() > kMaxHistory) {
                *e = "must be a list of at most 64 states";
                return e->In("history");
            }
            for (size_t i = 0; i < history->size(); ++i) {
                uint16_t code = 0;
                if (!Store((*history)[i], &code, e, 0xFFF)) return e->At(i), e->In("history");
                t.history.push_back(code);
            }
        }
        m.triggers[static_cast<uint32_t>(port)] = t;
        return true;
    });
}

bool ReadCounterList(const Json &entry, const char *key, uint64_t (&counters)[ZENTREL_PERF_COUNTER_COUNT],
                     Problem *error) {
    const Json *list = Member(entry, key);
    if (list == nullptr) return true;
    if (!list->is_array() || list->size() > ZENTREL_PERF_COUNTER_COUNT) {
        *error = "must be a list of at most 7 counters (PH, PDW, NPH, NPDW, CplH, CplDW, DLLP)";
        return error->In(key);
    }
    for (size_t i = 0; i < list->size(); ++i)
        if (!Store((*list)[i], &counters[i], error)) return error->At(i), error->In(key);
    return true;
}

// [{"port": n, "ingress": [...], "egress": [...], "preIngress": [...], "preEgress": [...],
//   "ingressLoad": n, "egressLoad": n}, ...]
bool ReadPerf(const Json &list, LinkModel &m, Problem *error) {
    return ReadNumberedList(list, "port", kPortCount - 1, error, [&](uint64_t port, const Json &entry, Problem *e) {
        PerfPort &p = m.perf[port];
        uint32_t ingressLoad = p.ingressLoad < 0 ? UINT32_MAX : static_cast<uint32_t>(p.ingressLoad);
        uint32_t egressLoad = p.egressLoad < 0 ? UINT32_MAX : static_cast<uint32_t>(p.egressLoad);
        Field fields[] = {{"ingressLoad", &ingressLoad, kMaxLoad}, {"egressLoad", &egressLoad, kMaxLoad}};
        if (!ReadFields(entry, fields, 2, e, {"port", "ingress", "egress", "preIngress", "preEgress"})) return false;
        p.ingressLoad = ingressLoad == UINT32_MAX ? -1 : static_cast<int32_t>(ingressLoad);
        p.egressLoad = egressLoad == UINT32_MAX ? -1 : static_cast<int32_t>(egressLoad);
        return ReadCounterList(entry, "ingress", p.ingress, e) && ReadCounterList(entry, "egress", p.egress, e) &&
               ReadCounterList(entry, "preIngress", p.preIngress, e) &&
               ReadCounterList(entry, "preEgress", p.preEgress, e);
    });
}

int ApplyLinkKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    LinkModel &m = device.link;
    if (key == "registers") return Took(ReadRegisters(value, m, error));
    if (key == "ltssm") return Took(ReadLtssm(value, m, error));
    if (key == "ltssmTriggers") return Took(ReadTriggers(value, m, error));
    if (key == "perfCounters") return Took(ReadPerf(value, m, error));
    if (key == "perfStarted") {
        uint32_t started = 0;
        if (!Store(value, &started, error, 1)) return -1;
        m.perfStarted = started != 0;
        return 1;
    }
    return 0;
}

Json Counters(const uint64_t (&counters)[ZENTREL_PERF_COUNTER_COUNT]) {
    Json list = Json::array();
    for (uint64_t c : counters) list.push_back(c);
    return list;
}

// Everything here is the switch's running state: a power cycle loses it.
void SaveLink(const Device &device, Json *, Json *runtime) {
    const LinkModel &m = device.link;
    Json registers = Json::array();
    for (const auto &word : m.registers) registers.push_back({{"address", word.first}, {"value", word.second}});
    (*runtime)["registers"] = registers;
    Json ltssm = Json::array(), triggers = Json::array(), perf = Json::array();
    for (uint32_t port = 0; port < kPortCount; ++port) {
        const LtssmPort &p = m.ltssm[port];
        if (p.walk != LtssmWalk::kAuto || p.step != kTrainingSteps)
            ltssm.push_back({{"port", port}, {"walk", kWalkNames[static_cast<size_t>(p.walk)]}, {"step", p.step}});
        const PerfPort &c = m.perf[port];
        if (!PortExists(device, port) && c.ingress[kDllp] == 0 && c.egress[kDllp] == 0) continue;
        perf.push_back({{"port", port}, {"ingress", Counters(c.ingress)}, {"egress", Counters(c.egress)},
                        {"preIngress", Counters(c.preIngress)}, {"preEgress", Counters(c.preEgress)}});
    }
    for (const auto &t : m.triggers)
        triggers.push_back({{"port", t.first}, {"state", t.second.state}, {"fired", t.second.fired ? 1 : 0},
                            {"monitor", t.second.monitor ? 1 : 0}, {"history", t.second.history}});
    (*runtime)["ltssm"] = ltssm;
    (*runtime)["ltssmTriggers"] = triggers;
    (*runtime)["perfCounters"] = perf;
    (*runtime)["perfStarted"] = m.perfStarted ? 1 : 0;
}

// A switch starts with its probe registers and counters at zero, no
// trigger armed, and every link training again from Detect.
void PowerCycleLink(Device &device) {
    LinkModel &m = device.link;
    m.registers.clear();
    m.triggers.clear();
    m.perfStarted = false;
    for (uint32_t port = 0; port < kPortCount; ++port) {
        m.ltssm[port].step = 0;
        PerfPort &p = m.perf[port];
        memset(p.ingress, 0, sizeof p.ingress);
        memset(p.egress, 0, sizeof p.egress);
        Snapshot(p);
    }
}

// The trigger's dump: what it was set for and the states entered since.
bool WriteDump(const char *directory, uint32_t port, const LtssmTrigger &t) {
    struct stat st;
    if (stat(directory, &st) != 0 || !S_ISDIR(st.st_mode)) return false;
    std::string path = directory;
    if (!path.empty() && path.back() != '/') path += '/';
    path += "ltssm_port" + std::to_string(port) + ".txt";
    char line[96];
    snprintf(line, sizeof line, "LTSSM trace of port %u\nTrigger state 0x%03x, %s\nStates entered: %u\n", port,
             t.state, t.fired ? "fired" : "not fired", static_cast<unsigned>(t.history.size()));
    std::string text = line;
    for (uint16_t code : t.history) {
        snprintf(line, sizeof line, "0x%03x\n", code);
        text += line;
    }
    return WriteFileBytes(path.c_str(), std::vector<uint8_t>(text.begin(), text.end()));
}

void Arm(Device &device, uint32_t port, uint16_t state, bool monitor) {
    LtssmTrigger t = {state, false, monitor, {}};
    device.link.triggers[port] = t;
}

}  // namespace

extern const ModelPart kLinkPart = {
    "link", SetLinkDefaults, ApplyLinkKey, SaveLink, PowerCycleLink, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

// Addresses from 0x60800000 to 0x608FFFFF, at most 4096 bytes a call; a
// read of a probe register samples the selected port's LTSSM.
ZENTREL_STATUS simlib::ZentrelSwitchMemoryRead(PTR_ZENTREL_DEVICE Device, uint32_t Address, void *Buffer,
                                                   uint32_t Count) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if ((Buffer == nullptr && Count != 0) || !sim::InRegisterSpace(Address, Count))
        return call.Return(sim::kStatusInvalidParameter);
    uint8_t *out = static_cast<uint8_t *>(Buffer);
    for (uint32_t i = 0; i < Count;) {
        uint32_t word = (Address + i) & ~3u;
        uint32_t value = sim::ReadWord(call.Target(), word);
        sim::LogMemoryAccess(call.Target().designedB, word, value, false);
        for (uint32_t b = (Address + i) & 3u; b < 4 && i < Count; ++b, ++i) out[i] = static_cast<uint8_t>(value >> (8 * b));
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Words written in part keep their other bytes.
ZENTREL_STATUS simlib::ZentrelSwitchMemoryWrite(PTR_ZENTREL_DEVICE Device, uint32_t Address, const void *Buffer,
                                                    uint32_t Count) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if ((Buffer == nullptr && Count != 0) || !sim::InRegisterSpace(Address, Count))
        return call.Return(sim::kStatusInvalidParameter);
    sim::Device &device = call.Target();
    const uint8_t *in = static_cast<const uint8_t *>(Buffer);
    for (uint32_t i = 0; i < Count;) {
        uint32_t word = (Address + i) & ~3u;
        uint32_t value = sim::Stored(device, word);
        for (uint32_t b = (Address + i) & 3u; b < 4 && i < Count; ++b, ++i)
            value = (value & ~(0xFFu << (8 * b))) | static_cast<uint32_t>(in[i]) << (8 * b);
        device.link.registers[word] = value;
        sim::LogMemoryAccess(device.designedB, word, value, true);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Disarms the port's trigger and dumps it into the directory, which must
// exist. Nothing armed: nothing to dump, and success.
ZENTREL_STATUS simlib::ZentrelSwitchStopAndGetLtssmTrigger(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_LTSSM_TRIGGER Trigger,
                                                               const char *DumpDirectory) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Trigger == nullptr || DumpDirectory == nullptr || Trigger->PortNumber >= sim::kPortCount)
        return call.Return(sim::kStatusInvalidParameter);
    auto &triggers = call.Target().link.triggers;
    auto it = triggers.find(Trigger->PortNumber);
    if (it == triggers.end()) return call.Return(ZENTREL_STATUS_SUCCESS);
    sim::LtssmTrigger trigger = it->second;
    triggers.erase(it);
    if (!sim::WriteDump(DumpDirectory, Trigger->PortNumber, trigger)) return call.Return(sim::kStatusDumpFailed);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A condition above 0xFFF is no LTSSM state: the firmware sets its default,
// Polling.Active, and says so through FwTriggerVal.
ZENTREL_STATUS simlib::ZentrelSwitchLtssmSetupTrigger(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_LTSSM_TRIGGER Trigger,
                                                          uint32_t *FwTriggerVal) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Trigger == nullptr || FwTriggerVal == nullptr || Trigger->PortNumber >= sim::kPortCount)
        return call.Return(sim::kStatusInvalidParameter);
    uint32_t state = Trigger->TriggerCondition <= 0xFFFu ? Trigger->TriggerCondition : ZENTREL_LTSSM_POLLING_ACTIVE;
    sim::Arm(call.Target(), Trigger->PortNumber, static_cast<uint16_t>(state), false);
    *FwTriggerVal = state;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Time passes between queries: each one walks the port's LTSSM a step.
ZENTREL_STATUS simlib::ZentrelSwitchLtssmIsTriggerred(PTR_ZENTREL_DEVICE Device, uint32_t PortNumber,
                                                          uint32_t *Triggered) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Triggered == nullptr || PortNumber >= sim::kPortCount) return call.Return(sim::kStatusInvalidParameter);
    sim::Device &device = call.Target();
    sim::Advance(device, PortNumber);
    auto it = device.link.triggers.find(PortNumber);
    *Triggered = it != device.link.triggers.end() && it->second.fired ? 1u : 0u;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Polling.Active and L0 only, with the fixed parameters 10, 0, 16, 39, 0
// and every reserved byte zero.
ZENTREL_STATUS simlib::ZentrelSwitchSetupLtssmMonitor(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr) return call.Return(sim::kStatusInvalidParameter);
    ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ expected;
    memset(&expected, 0, sizeof expected);
    expected.PortNumber = Request->PortNumber;
    expected.TriggerState = Request->TriggerState;
    expected.Param4 = ZENTREL_LTSSM_MONITOR_PARAM4;
    expected.Param8 = ZENTREL_LTSSM_MONITOR_PARAM8;
    expected.Param9 = ZENTREL_LTSSM_MONITOR_PARAM9;
    if (memcmp(&expected, Request, sizeof expected) != 0 || Request->PortNumber >= sim::kPortCount ||
        (Request->TriggerState != ZENTREL_LTSSM_POLLING_ACTIVE && Request->TriggerState != ZENTREL_LTSSM_L0))
        return call.Return(sim::kStatusInvalidParameter);
    sim::Arm(call.Target(), Request->PortNumber, Request->TriggerState, true);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Each read counts the traffic of the statistic window (1000 ms when none is
// given) and reports the counters before and after it.
ZENTREL_STATUS simlib::ZentrelSwitchGetPciePortPerformance(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE Performance) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Performance == nullptr) return call.Return(sim::kStatusInvalidParameter);
    sim::Device &device = call.Target();
    sim::LinkModel &m = device.link;
    uint32_t op = Performance->Operation;
    bool single = (Performance->Flags & ZENTREL_PERF_FLAG_SINGLE_PORT) != 0;
    bool sampling = sim::SamplingSwitch(device);
    if (op < ZENTREL_PERF_OP_START || op > ZENTREL_PERF_OP_READ64 || (single && !sampling) ||
        (single && Performance->PortNumber >= ZENTREL_PERF_PORT_COUNT) || (op == ZENTREL_PERF_OP_READ64 && !sampling))
        return call.Return(sim::kStatusInvalidParameter);
    if (op == ZENTREL_PERF_OP_START || op == ZENTREL_PERF_OP_STOP) {
        m.perfStarted = op == ZENTREL_PERF_OP_START;
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    if (!sampling && !m.perfStarted) return call.Return(sim::kStatusNotStarted);
    uint64_t ms = Performance->StatisticElapsedTimeMs != 0 ? Performance->StatisticElapsedTimeMs : sim::kDefaultWindowMs;
    bool statistics = (Performance->Flags & ZENTREL_PERF_FLAG_STATISTIC) != 0;
    memset(Performance->Ports32, 0, sizeof Performance->Ports32);
    memset(Performance->Ports64, 0, sizeof Performance->Ports64);
    for (uint32_t port = 0; port < sim::kPortCount; ++port) {
        if (!sim::PortExists(device, port) || (single && port != Performance->PortNumber)) continue;
        sim::Snapshot(m.perf[port]);
        sim::AdvanceCounters(device, port, ms);
        if (op == ZENTREL_PERF_OP_READ32)
            sim::FillEntry<ZENTREL_PORT_PERF_ENTRY32, uint32_t>(device, port, statistics, ms, &Performance->Ports32[port]);
        else
            sim::FillEntry<ZENTREL_PORT_PERF_ENTRY64, uint64_t>(device, port, statistics, ms, &Performance->Ports64[port]);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
