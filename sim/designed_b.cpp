// History buffers, performance monitoring set-up, address traps, host
// physical address ranges and equalization control of the simulated switches.
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

// Limits of fixed equalization values.
constexpr uint8_t kMaxPre = 15, kMaxMain = 63, kMaxPost = 24, kMaxCtle = 31, kMaxVga = 31;
// Where the host ports' windows start, and their size per device.
constexpr uint64_t kHpaBase = 0x4000000000ull, kHpaHostSpan = 0x1000000000ull, kHpaWindow = 0x10000000ull;

// The function's number: its place among every function the model exports,
// from 1.
// The function's code in history buffer 0: the 32-bit FNV-1a hash of its
// name folded to 16 bits, so that a code keeps its meaning when functions
// are added, in saved state files as well.
uint16_t FunctionNumber(const char *function) {
    uint32_t hash = 2166136261u;
    for (const char *c = function; *c != '\0'; ++c) hash = (hash ^ static_cast<uint8_t>(*c)) * 16777619u;
    return static_cast<uint16_t>((hash >> 16) ^ (hash & 0xFFFFu));
}

void Log(HistoryBuffer &b, uint16_t code, uint32_t address, uint32_t data) {
    if (!b.enabled) return;
    ++b.total;
    if (b.entries.size() >= b.depth) {
        if (!b.wrap) return;
        b.entries.pop_front();
    }
    ZENTREL_SWITCH_HISTORY_ENTRY e = {};
    e.Sequence = b.total;
    e.Code = code;
    e.Address = address;
    e.Data = data;
    b.entries.push_back(e);
}

void Trim(HistoryBuffer &b) {
    while (b.entries.size() > b.depth) b.entries.pop_front();
}

// Both switches log calls in a wrapping buffer; the first also logs memory
// writes until its smaller buffer is full, the second does not log them.
void SetDesignedBDefaults(Device &device, size_t index) {
    DesignedBModel &m = device.designedB;
    bool second = index == 1;
    m.history[ZENTREL_HISTORY_BUFFER_CALLS] = {true, true, static_cast<uint16_t>(second ? 32 : 64), 0, {}};
    m.history[ZENTREL_HISTORY_BUFFER_WRITES] = {!second, false, 32, 0, {}};
    for (bool &off : m.perfOff) off = false;
    for (AddressTrap &t : m.traps) t = {0, 0, 0};
    m.trapLog.clear();
    for (EqSetting &e : m.eq) e = {false, 0, 0, 0, 0, 0};
}

// [{"buffer": b, "enabled": 0/1, "wrap": 0/1, "depth": n, "totalLogged": n,
//   "entries": [[sequence, code, address, data], ...]}, ...]
bool ReadHistory(const Json &list, DesignedBModel &m, Problem *error) {
    return ReadNumberedList(list, "buffer", ZENTREL_HISTORY_BUFFER_COUNT - 1, error,
                            [&](uint64_t buffer, const Json &entry, Problem *e) {
        HistoryBuffer &b = m.history[buffer];
        uint32_t enabled = b.enabled, wrap = b.wrap, depth = b.depth, total = b.total;
        Field fields[] = {{"enabled", &enabled, 1}, {"wrap", &wrap, 1}, {"depth", &depth, ZENTREL_HISTORY_MAX_DEPTH},
                          {"totalLogged", &total, UINT32_MAX}};
        if (!ReadFields(entry, fields, 4, e, {"buffer", "entries"})) return false;
        if (depth == 0) {
            *e = "must be from 1 to 256";
            return e->In("depth");
        }
        b.enabled = enabled != 0;
        b.wrap = wrap != 0;
        b.depth = static_cast<uint16_t>(depth);
        b.total = total;
        const Json *entries = Member(entry, "entries");
        if (entries == nullptr) return true;
        if (!entries->is_array() || entries->size() > depth) {
            *e = "must be a list of at most depth entries";
            return e->In("entries");
        }
        b.entries.clear();
        for (size_t i = 0; i < entries->size(); ++i) {
            const Json &item = (*entries)[i];
            ZENTREL_SWITCH_HISTORY_ENTRY h = {};
            if (!item.is_array() || item.size() != 4) {
                *e = "must be [sequence, code, address, data]";
                return e->At(i), e->In("entries");
            }
            if (!Store(item[0], &h.Sequence, e) || !Store(item[1], &h.Code, e) || !Store(item[2], &h.Address, e) ||
                !Store(item[3], &h.Data, e))
                return e->At(i), e->In("entries");
            b.entries.push_back(h);
        }
        return true;
    });
}

// [{"trap": t, "access": bits, "start": address, "end": address}, ...]
bool ReadTraps(const Json &list, DesignedBModel &m, Problem *error) {
    return ReadNumberedList(list, "trap", ZENTREL_TRAP_COUNT - 1, error, [&](uint64_t trap, const Json &entry, Problem *e) {
        AddressTrap &t = m.traps[trap];
        uint32_t access = t.access;
        Field fields[] = {{"access", &access, ZENTREL_TRAP_ACCESS_READ | ZENTREL_TRAP_ACCESS_WRITE},
                          {"start", &t.start, UINT32_MAX},
                          {"end", &t.end, UINT32_MAX}};
        if (!ReadFields(entry, fields, 3, e, {"trap"})) return false;
        t.access = static_cast<uint8_t>(access);
        return true;
    });
}

// [[address, data, trap, access], ...], oldest first.
bool ReadTrapLog(const Json &list, DesignedBModel &m, Problem *error) {
    if (!list.is_array() || list.size() > kTrapLogDepth) {
        *error = "must be a list of at most 64 accesses";
        return false;
    }
    m.trapLog.clear();
    for (size_t i = 0; i < list.size(); ++i) {
        const Json &item = list[i];
        ZENTREL_SWITCH_TRAP_ENTRY t = {};
        if (!item.is_array() || item.size() != 4) {
            *error = "must be [address, data, trap, access]";
            return error->At(i);
        }
        if (!Store(item[0], &t.Address, error) || !Store(item[1], &t.Data, error) ||
            !Store(item[2], &t.Trap, error, ZENTREL_TRAP_COUNT - 1) || !Store(item[3], &t.Access, error, 3))
            return error->At(i);
        m.trapLog.push_back(t);
    }
    return true;
}

// [port, ...]: the ports the performance counters skip.
bool ReadPerfOff(const Json &list, DesignedBModel &m, Problem *error) {
    if (!list.is_array()) {
        *error = "must be a list of ports";
        return false;
    }
    for (bool &off : m.perfOff) off = false;
    for (size_t i = 0; i < list.size(); ++i) {
        uint32_t port = 0;
        if (!Store(list[i], &port, error, ZENTREL_PORT_COUNT - 1)) return error->At(i);
        m.perfOff[port] = true;
    }
    return true;
}

// [{"lane": l, "pre": n, "main": n, "post": n, "ctle": n, "vga": n}, ...]:
// lanes fixed by hand; the others are adaptive.
bool ReadEq(const Json &list, DesignedBModel &m, Problem *error) {
    return ReadNumberedList(list, "lane", ZENTREL_LANE_COUNT - 1, error, [&](uint64_t lane, const Json &entry, Problem *e) {
        EqSetting &s = m.eq[lane];
        uint32_t pre = s.pre, main = s.main, post = s.post, ctle = s.ctle, vga = s.vga;
        Field fields[] = {{"pre", &pre, kMaxPre}, {"main", &main, kMaxMain}, {"post", &post, kMaxPost},
                          {"ctle", &ctle, kMaxCtle}, {"vga", &vga, kMaxVga}};
        if (!ReadFields(entry, fields, 5, e, {"lane"})) return false;
        s = {true, static_cast<uint8_t>(pre), static_cast<uint8_t>(main), static_cast<uint8_t>(post),
             static_cast<uint8_t>(ctle), static_cast<uint8_t>(vga)};
        return true;
    });
}

int ApplyDesignedBKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    DesignedBModel &m = device.designedB;
    if (key == "historyBuffers") return Took(ReadHistory(value, m, error));
    if (key == "perfUnmonitoredPorts") return Took(ReadPerfOff(value, m, error));
    if (key == "addressTraps") return Took(ReadTraps(value, m, error));
    if (key == "trapLog") return Took(ReadTrapLog(value, m, error));
    if (key == "eqControl") return Took(ReadEq(value, m, error));
    return 0;
}

// Everything here is the switch's runtime state: a power cycle brings the
// defaults back.
void SaveDesignedB(const Device &device, Json *, Json *runtime) {
    const DesignedBModel &m = device.designedB;
    Json history = Json::array();
    for (uint32_t i = 0; i < ZENTREL_HISTORY_BUFFER_COUNT; ++i) {
        const HistoryBuffer &b = m.history[i];
        Json entries = Json::array();
        for (const auto &e : b.entries) entries.push_back({e.Sequence, e.Code, e.Address, e.Data});
        history.push_back({{"buffer", i}, {"enabled", b.enabled ? 1 : 0}, {"wrap", b.wrap ? 1 : 0}, {"depth", b.depth},
                           {"totalLogged", b.total}, {"entries", entries}});
    }
    (*runtime)["historyBuffers"] = history;
    Json off = Json::array();
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port)
        if (m.perfOff[port]) off.push_back(port);
    (*runtime)["perfUnmonitoredPorts"] = off;
    Json traps = Json::array();
    for (uint32_t i = 0; i < ZENTREL_TRAP_COUNT; ++i)
        traps.push_back({{"trap", i}, {"access", m.traps[i].access}, {"start", m.traps[i].start}, {"end", m.traps[i].end}});
    (*runtime)["addressTraps"] = traps;
    Json log = Json::array();
    for (const auto &t : m.trapLog) log.push_back({t.Address, t.Data, t.Trap, t.Access});
    (*runtime)["trapLog"] = log;
    Json eq = Json::array();
    for (uint32_t lane = 0; lane < ZENTREL_LANE_COUNT; ++lane) {
        const EqSetting &s = m.eq[lane];
        if (s.fixed)
            eq.push_back({{"lane", lane}, {"pre", s.pre}, {"main", s.main}, {"post", s.post}, {"ctle", s.ctle}, {"vga", s.vga}});
    }
    (*runtime)["eqControl"] = eq;
}

// The settings in force on a lane: fixed ones, or the PHY's adaptive ones.
ZENTREL_SWITCH_EQ_CTRL_REQ EqInForce(const Device &device, uint32_t lane) {
    ZENTREL_SWITCH_EQ_CTRL_REQ r = {};
    r.Lane = static_cast<uint16_t>(lane);
    const EqSetting &s = device.designedB.eq[lane];
    if (s.fixed) {
        r.Mode = ZENTREL_EQ_CTRL_FIXED;
        r.PreCursor = s.pre;
        r.MainCursor = s.main;
        r.PostCursor = s.post;
        r.Ctle = s.ctle;
        r.Vga = s.vga;
        return r;
    }
    ZENTREL_SWITCH_TX_COEFF_LANE tx = TxCoeffOf(device.phy, lane);
    ZENTREL_SWITCH_RX_EQ_LANE rx = RxEqOf(device.phy, lane);
    r.Mode = ZENTREL_EQ_CTRL_ADAPTIVE;
    r.PreCursor = static_cast<uint8_t>(-tx.PreCursorNear);
    r.MainCursor = static_cast<uint8_t>(tx.MainCursorNear);
    r.PostCursor = static_cast<uint8_t>(-tx.PostCursorNear);
    r.Ctle = static_cast<uint8_t>(rx.Aeq);
    r.Vga = static_cast<uint8_t>(rx.Vga);
    return r;
}

bool LanesOk(const Device &device, uint64_t start, uint64_t count) {
    return count != 0 && start + count <= device.phy.laneCount;
}

bool IsHostPort(const Device &device, uint32_t port) {
    if (port >= ZENTREL_PORT_COUNT) return false;
    const ZENTREL_SWITCH_PORT_ENTRY &e = device.ports.ports[port];
    return e.Valid != 0 && (e.PortType == ZENTREL_PORT_TYPE_HOST || e.PortType == ZENTREL_PORT_TYPE_HOST_ALT);
}

}  // namespace

void LogCall(DesignedBModel &m, const char *function, uint64_t number) {
    Log(m.history[ZENTREL_HISTORY_BUFFER_CALLS], FunctionNumber(function), 0, static_cast<uint32_t>(number));
}

void LogMemoryAccess(DesignedBModel &m, uint32_t address, uint32_t value, bool write) {
    if (write) Log(m.history[ZENTREL_HISTORY_BUFFER_WRITES], 0, address, value);
    uint8_t access = write ? ZENTREL_TRAP_ACCESS_WRITE : ZENTREL_TRAP_ACCESS_READ;
    for (uint32_t i = 0; i < ZENTREL_TRAP_COUNT; ++i) {
        const AddressTrap &t = m.traps[i];
        if ((t.access & access) == 0 || address + 3 < t.start || address > t.end) continue;
        if (m.trapLog.size() >= kTrapLogDepth) m.trapLog.pop_front();
        ZENTREL_SWITCH_TRAP_ENTRY e = {};
        e.Address = address;
        e.Data = value;
        e.Trap = static_cast<uint8_t>(i);
        e.Access = access;
        m.trapLog.push_back(e);
        return;  // the lowest matching trap logs it
    }
}

bool PerfMonitored(const DesignedBModel &m, uint32_t port) {
    return port >= ZENTREL_PORT_COUNT || !m.perfOff[port];
}

void ApplyEqControl(const DesignedBModel &m, uint32_t lane, ZENTREL_SWITCH_TX_COEFF_LANE *tx) {
    if (lane >= ZENTREL_LANE_COUNT || !m.eq[lane].fixed) return;
    const EqSetting &s = m.eq[lane];
    tx->PreCursorNear = -static_cast<int32_t>(s.pre);
    tx->MainCursorNear = s.main;
    tx->PostCursorNear = -static_cast<int32_t>(s.post);
}

void ApplyEqControl(const DesignedBModel &m, uint32_t lane, ZENTREL_SWITCH_RX_EQ_LANE *rx) {
    if (lane >= ZENTREL_LANE_COUNT || !m.eq[lane].fixed) return;
    rx->Aeq = m.eq[lane].ctle;
    rx->Vga = m.eq[lane].vga;
}

extern const ModelPart kDesignedBPart = {
    "designedB", SetDesignedBDefaults, ApplyDesignedBKey, SaveDesignedB, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetHistoryBuffersInfo(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP Info) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Info == nullptr) return call.Return(sim::kStatusInvalidParameter);
    memset(Info, 0, sizeof *Info);
    Info->BufferCount = ZENTREL_HISTORY_BUFFER_COUNT;
    for (uint32_t i = 0; i < ZENTREL_HISTORY_BUFFER_COUNT; ++i) {
        const sim::HistoryBuffer &b = call.Target().designedB.history[i];
        ZENTREL_SWITCH_HISTORY_BUFFER_INFO &out = Info->Buffers[i];
        out.Enabled = b.enabled ? 1 : 0;
        out.Wrap = b.wrap ? 1 : 0;
        out.Depth = b.depth;
        out.EntryCount = static_cast<uint16_t>(b.entries.size());
        out.TotalLogged = b.total;
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchClearHistoryBuffer(PTR_ZENTREL_DEVICE Device, uint32_t Buffer) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Buffer >= ZENTREL_HISTORY_BUFFER_COUNT) return call.Return(sim::kStatusInvalidParameter);
    sim::HistoryBuffer &b = call.Target().designedB.history[Buffer];
    b.entries.clear();
    b.total = 0;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A smaller depth keeps the newest entries.
ZENTREL_STATUS simlib::ZentrelSwitchConfigureHistoryBuffer(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Buffer >= ZENTREL_HISTORY_BUFFER_COUNT || Request->Enabled > 1 ||
        Request->Wrap > 1 || Request->Depth == 0 || Request->Depth > ZENTREL_HISTORY_MAX_DEPTH)
        return call.Return(sim::kStatusInvalidParameter);
    sim::HistoryBuffer &b = call.Target().designedB.history[Request->Buffer];
    b.enabled = Request->Enabled != 0;
    b.wrap = Request->Wrap != 0;
    b.depth = Request->Depth;
    sim::Trim(b);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetHistoryBufferEntries(PTR_ZENTREL_DEVICE Device,
                                                                PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_REQ Request,
                                                                PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->Buffer >= ZENTREL_HISTORY_BUFFER_COUNT)
        return call.Return(sim::kStatusInvalidParameter);
    const auto &entries = call.Target().designedB.history[Request->Buffer].entries;
    memset(Response, 0, sizeof *Response);
    size_t i = Request->StartEntry;
    while (i < entries.size() && Response->EntryCount < ZENTREL_HISTORY_BATCH)
        Response->Entries[Response->EntryCount++] = entries[i++];
    Response->Remaining = static_cast<uint16_t>(i < entries.size() ? entries.size() - i : 0);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Clearing zeroes the port's performance counters and keeps its monitoring.
ZENTREL_STATUS simlib::ZentrelSwitchSetupPerfMonitoring(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_PERF_MON_REQ Request,
                                                            PTR_ZENTREL_SWITCH_PERF_MON_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &device = call.Target();
    if (Request == nullptr || Response == nullptr || Request->Operation < ZENTREL_PERF_MON_ENABLE ||
        Request->Operation > ZENTREL_PERF_MON_CLEAR ||
        (Request->Port != ZENTREL_PERF_MON_ALL_PORTS &&
         (Request->Port >= ZENTREL_PORT_COUNT || device.ports.ports[Request->Port].Valid == 0)))
        return call.Return(sim::kStatusInvalidParameter);
    uint16_t monitored = 0;
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        if (device.ports.ports[port].Valid == 0) continue;
        if (Request->Port == ZENTREL_PERF_MON_ALL_PORTS || Request->Port == port) {
            if (Request->Operation == ZENTREL_PERF_MON_CLEAR)
                device.link.perf[port] = {{}, {}, {}, {}, device.link.perf[port].ingressLoad, device.link.perf[port].egressLoad};
            else
                device.designedB.perfOff[port] = Request->Operation == ZENTREL_PERF_MON_DISABLE;
        }
        if (!device.designedB.perfOff[port]) ++monitored;
    }
    memset(Response, 0, sizeof *Response);
    Response->MonitoredPorts = monitored;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Setting a trap starts it over; clearing it also drops its logged accesses.
ZENTREL_STATUS simlib::ZentrelSwitchTrap(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_TRAP_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Trap >= ZENTREL_TRAP_COUNT) return call.Return(sim::kStatusInvalidParameter);
    sim::DesignedBModel &m = call.Target().designedB;
    const ZENTREL_SWITCH_TRAP_REQ &r = *Request;
    if (r.Operation == ZENTREL_TRAP_SET) {
        if (r.Access == 0 || (r.Access & ~(ZENTREL_TRAP_ACCESS_READ | ZENTREL_TRAP_ACCESS_WRITE)) != 0 ||
            r.EndAddress < r.StartAddress)
            return call.Return(sim::kStatusInvalidParameter);
        m.traps[r.Trap] = {r.Access, r.StartAddress, r.EndAddress};
    } else if (r.Operation == ZENTREL_TRAP_CLEAR) {
        m.traps[r.Trap] = {0, 0, 0};
        std::erase_if(m.trapLog, [&](const ZENTREL_SWITCH_TRAP_ENTRY &e) { return e.Trap == r.Trap; });
    } else {
        return call.Return(sim::kStatusInvalidParameter);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetAddressTrapInBatch(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_TRAP_BATCH_REQ Request,
                                                              PTR_ZENTREL_SWITCH_TRAP_BATCH_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const auto &log = call.Target().designedB.trapLog;
    memset(Response, 0, sizeof *Response);
    size_t i = Request->StartEntry;
    while (i < log.size() && Response->EntryCount < ZENTREL_TRAP_BATCH) Response->Entries[Response->EntryCount++] = log[i++];
    Response->Remaining = static_cast<uint16_t>(i < log.size() ? log.size() - i : 0);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// One 64-bit prefetchable window per assigned downstream port with a device
// attached, in port order, 256 MiB each from the host port's own base.
ZENTREL_STATUS simlib::ZentrelSwitchGetHPARangeInfoRequest(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_HPA_RANGE_REQ Request,
                                                               PTR_ZENTREL_SWITCH_HPA_RANGE_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &device = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::IsHostPort(device, Request->HostPort))
        return call.Return(sim::kStatusInvalidParameter);
    memset(Response, 0, sizeof *Response);
    Response->HostPort = Request->HostPort;
    uint32_t hostIndex = 0;
    for (uint32_t port = 0; port < Request->HostPort; ++port) hostIndex += sim::IsHostPort(device, port) ? 1 : 0;
    const ZENTREL_PORT_HOST_INFO &host = device.ports.ports[Request->HostPort].Role.Host;
    uint64_t base = sim::kHpaBase + hostIndex * sim::kHpaHostSpan;
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT && Response->RangeCount < ZENTREL_HPA_RANGE_COUNT; ++port) {
        const ZENTREL_SWITCH_PORT_ENTRY &e = device.ports.ports[port];
        if ((host.AssignedPorts[port / 8] >> (port % 8) & 1u) == 0 || e.Valid == 0 || sim::IsHostPort(device, port) ||
            e.Role.Downstream.DeviceAttached == 0)
            continue;
        ZENTREL_SWITCH_HPA_RANGE &r = Response->Ranges[Response->RangeCount++];
        r.BaseLow = static_cast<uint32_t>(base);
        r.BaseHigh = static_cast<uint32_t>(base >> 32);
        r.SizeLow = static_cast<uint32_t>(sim::kHpaWindow);
        r.SizeHigh = static_cast<uint32_t>(sim::kHpaWindow >> 32);
        r.Port = static_cast<uint8_t>(port);
        r.Flags = ZENTREL_HPA_FLAG_64BIT | ZENTREL_HPA_FLAG_PREFETCHABLE;
        base += sim::kHpaWindow;
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchSetEqualizationCtrl(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_EQ_CTRL_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &device = call.Target();
    if (Request == nullptr || !sim::LanesOk(device, Request->Lane, 1) || Request->Mode > ZENTREL_EQ_CTRL_FIXED)
        return call.Return(sim::kStatusInvalidParameter);
    const ZENTREL_SWITCH_EQ_CTRL_REQ &r = *Request;
    if (r.Mode == ZENTREL_EQ_CTRL_ADAPTIVE) {
        device.designedB.eq[r.Lane] = {false, 0, 0, 0, 0, 0};
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    if (r.PreCursor > sim::kMaxPre || r.MainCursor > sim::kMaxMain || r.PostCursor > sim::kMaxPost ||
        r.Ctle > sim::kMaxCtle || r.Vga > sim::kMaxVga)
        return call.Return(sim::kStatusInvalidParameter);
    device.designedB.eq[r.Lane] = {true, r.PreCursor, r.MainCursor, r.PostCursor, r.Ctle, r.Vga};
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchEqualizationCtrlGetBufSize(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                                   uint32_t NumLanes, uint32_t *BufSize) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (BufSize == nullptr || !sim::LanesOk(call.Target(), StartLane, NumLanes))
        return call.Return(sim::kStatusInvalidParameter);
    *BufSize = sizeof(ZENTREL_SWITCH_EQ_CTRL_HEADER) + NumLanes * sizeof(ZENTREL_SWITCH_EQ_CTRL_REQ);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetEqualizationCtrl(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                            uint32_t NumLanes, void *Buffer, uint32_t BufSize) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &device = call.Target();
    if (Buffer == nullptr || !sim::LanesOk(device, StartLane, NumLanes) ||
        BufSize < sizeof(ZENTREL_SWITCH_EQ_CTRL_HEADER) + NumLanes * sizeof(ZENTREL_SWITCH_EQ_CTRL_REQ))
        return call.Return(sim::kStatusInvalidParameter);
    auto *out = static_cast<uint8_t *>(Buffer);
    ZENTREL_SWITCH_EQ_CTRL_HEADER header = {static_cast<uint16_t>(StartLane), static_cast<uint16_t>(NumLanes)};
    memcpy(out, &header, sizeof header);
    out += sizeof header;
    for (uint32_t lane = StartLane; lane < StartLane + NumLanes; ++lane, out += sizeof(ZENTREL_SWITCH_EQ_CTRL_REQ)) {
        ZENTREL_SWITCH_EQ_CTRL_REQ r = sim::EqInForce(device, lane);
        memcpy(out, &r, sizeof r);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
