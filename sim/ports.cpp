// Ports of the simulated switches: their properties, error counters and
// Advanced Error Reporting registers, and packet RAM soft-error counters.
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

constexpr uint32_t kLastPortNumber = ZENTREL_PORT_COUNT - 1;

// A little-endian field of a record, by its scenario name. `cleared`
// marks the counters and status bits that a reset clears.
struct RecordField {
    const char *name;
    uint16_t offset;
    uint8_t size;
    bool cleared;
};

#define ENTRY_FIELD(name, member) \
    {name, offsetof(ZENTREL_SWITCH_PORT_ENTRY, member), sizeof(ZENTREL_SWITCH_PORT_ENTRY::member), false}

const RecordField kEntryFields[] = {
    ENTRY_FIELD("valid", Valid),
    ENTRY_FIELD("type", PortType),
    ENTRY_FIELD("gid", Gid),
    ENTRY_FIELD("mrr", MaxReadRequestSize),
    ENTRY_FIELD("mps", MaxPayloadSize),
    ENTRY_FIELD("mpss", MaxPayloadSizeSupported),
    ENTRY_FIELD("speed", NegotiatedLinkSpeed),
    ENTRY_FIELD("maxSpeed", MaxLinkSpeed),
    ENTRY_FIELD("width", NegotiatedLinkWidth),
    ENTRY_FIELD("maxWidth", MaxLinkWidth),
    ENTRY_FIELD("clockMode", ClockMode),
    {"secondaryBus", 0x34, 1, false},
    {"subordinateBus", 0x35, 1, false},
    {"hostPort", 0x38, 1, false},
    {"slot", 0x3C, 2, false},
    {"deviceAttached", 0x40, 4, false},
    {"vendorId", 0x44, 2, false},
    {"deviceId", 0x46, 2, false},
    ENTRY_FIELD("subClass", DeviceSubClass),
    ENTRY_FIELD("classCode", DeviceClassCode),
    ENTRY_FIELD("subsystemVendorId", SubsystemVendorId),
    ENTRY_FIELD("subsystemId", SubsystemId),
    ENTRY_FIELD("deviceSpeed", DeviceLinkSpeed),
    ENTRY_FIELD("deviceMaxSpeed", DeviceMaxLinkSpeed),
    ENTRY_FIELD("activeLanes", ActiveLanes),
    ENTRY_FIELD("rxDetect", LaneRxDetect),
    ENTRY_FIELD("dpr", Dpr),
    ENTRY_FIELD("dpcControl", DpcControl),
    ENTRY_FIELD("dpcStatus", DpcStatus),
    ENTRY_FIELD("dpcSourceId", DpcErrorSourceId),
    ENTRY_FIELD("gen3Eq", Gen3EqStatus),
    ENTRY_FIELD("gen4Eq", Gen4EqStatus),
    ENTRY_FIELD("gen5Eq", Gen5EqStatus),
    ENTRY_FIELD("laneReversal", LaneReversal),
    ENTRY_FIELD("powerState", LinkPowerState),
    ENTRY_FIELD("rxEvalCount", RxEvalCount),
};
#undef ENTRY_FIELD

#define ERROR_FIELD(name, member, cleared)                                 \
    {name, offsetof(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, member),         \
     sizeof(ZENTREL_SWITCH_PORT_ERROR_STATISTICS::member), cleared}

const RecordField kErrorFields[] = {
    ERROR_FIELD("portNumber", PortNumber, false),
    ERROR_FIELD("receiverErrors", PortReceiverErrors, true),
    ERROR_FIELD("badTlp", BadTlpErrors, true),
    ERROR_FIELD("badDllp", BadDllpErrors, true),
    ERROR_FIELD("recoveryDiagnostics", RecoveryDiagnosticsErrors, true),
    ERROR_FIELD("linkDownCount", LinkDownCount, true),
    ERROR_FIELD("errorStatus", ErrorStatus, true),
    ERROR_FIELD("uncorrectableStatus", UncorrectableStatus, true),
    ERROR_FIELD("correctableStatus", CorrectableStatus, true),
    ERROR_FIELD("capControl", AdvCapControl, false),
    ERROR_FIELD("uncorrectableMask", UncorrectableMask, false),
    ERROR_FIELD("correctableMask", CorrectableMask, false),
    ERROR_FIELD("uncorrectableSeverity", UncorrectableSeverity, false),
    ERROR_FIELD("framingStatus", FramingStatus, true),
    ERROR_FIELD("serdesStatus", SerdesStatus, true),
};
#undef ERROR_FIELD

#define RAM_FIELD(name, member, cleared) \
    {name, offsetof(ZENTREL_PACKET_RAM_STATION, member), 4, cleared}

const RecordField kRamFields[] = {
    RAM_FIELD("valid", Valid, false),
    RAM_FIELD("packetLinkList", PacketLinkList, true),
    RAM_FIELD("headerRam0Inst0", HeaderRam0[0], true),
    RAM_FIELD("headerRam0Inst1", HeaderRam0[1], true),
    RAM_FIELD("headerRam1Inst0", HeaderRam1[0], true),
    RAM_FIELD("headerRam1Inst1", HeaderRam1[1], true),
    RAM_FIELD("payloadRam0Inst0", PayloadRam0[0], true),
    RAM_FIELD("payloadRam0Inst1", PayloadRam0[1], true),
    RAM_FIELD("payloadRam1Inst0", PayloadRam1[0], true),
    RAM_FIELD("payloadRam1Inst1", PayloadRam1[1], true),
    RAM_FIELD("sourceQueueLinkList", SourceQueueLinkList, true),
    RAM_FIELD("destinationQueueLinkList", DestinationQueueLinkList, true),
    RAM_FIELD("registerFile", RegisterFile, true),
    RAM_FIELD("retryBuffer", RetryBuffer, true),
    RAM_FIELD("destinationQueueData", DestinationQueueData, true),
    RAM_FIELD("tecAlut", TecAlut, true),
    RAM_FIELD("tecDmaRam0", TecDma[0], true),
    RAM_FIELD("tecDmaRam1", TecDma[1], true),
    RAM_FIELD("tecGlobalToLocal", TecGlobalToLocal, true),
};
#undef RAM_FIELD

template <size_t N>
constexpr size_t Count(const RecordField (&)[N]) {
    return N;
}

uint32_t Get(const void *record, const RecordField &f) {
    uint32_t v = 0;
    memcpy(&v, static_cast<const uint8_t *>(record) + f.offset, f.size);
    return v;
}

void Put(void *record, const RecordField &f, uint32_t v) {
    memcpy(static_cast<uint8_t *>(record) + f.offset, &v, f.size);
}

uint64_t MaxOf(const RecordField &f) {
    return f.size == 4 ? UINT32_MAX : (1ull << (8 * f.size)) - 1;
}

// {"name": number, ...} into the named fields of a record; the keys in
// `skip` are the caller's.
bool ReadRecord(const Json &value, void *record, const RecordField *fields, size_t count, Problem *error,
                std::initializer_list<const char *> skip) {
    constexpr size_t kMostFields = 40;
    uint32_t values[kMostFields];
    Field places[kMostFields];
    if (count > kMostFields) return false;
    for (size_t i = 0; i < count; ++i) {
        values[i] = Get(record, fields[i]);
        places[i] = {fields[i].name, &values[i], MaxOf(fields[i])};
    }
    if (!ReadFields(value, places, count, error, skip)) return false;
    for (size_t i = 0; i < count; ++i) Put(record, fields[i], values[i]);
    return true;
}

// The fields a reset clears (or all of them), by name.
Json WriteRecord(const void *record, const RecordField *fields, size_t count, bool clearedOnly) {
    Json out = Json::object();
    for (size_t i = 0; i < count; ++i)
        if (!clearedOnly || fields[i].cleared) out[fields[i].name] = Get(record, fields[i]);
    return out;
}

void ClearRecord(void *record, const RecordField *fields, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (fields[i].cleared) Put(record, fields[i], 0);
}

// The number under `key` (a port or a station) of a list entry.
bool ReadIndex(const Json &entry, const char *key, uint32_t last, uint32_t *index, Problem *error) {
    const Json *number = Member(entry, key);
    if (number == nullptr) {
        *error = std::string("each entry needs \"") + key + "\" from 0 to " + std::to_string(last);
        return false;
    }
    if (!Store(*number, index, error, last)) return error->In(key);
    return true;
}

bool ReadByteList(const Json &value, uint8_t *bytes, size_t count, uint64_t max, Problem *error) {
    if (!value.is_array() || value.size() > count) {
        *error = "must be a list of at most " + std::to_string(count) + " numbers";
        return false;
    }
    for (size_t i = 0; i < value.size(); ++i)
        if (!Store(value[i], &bytes[i], error, max)) return error->At(i);
    return true;
}

// The ports a host port lists as assigned to it.
bool ReadAssignedPorts(const Json &value, ZENTREL_SWITCH_PORT_ENTRY &e, Problem *error) {
    if (!value.is_array()) {
        *error = "must be a list of port numbers";
        return false;
    }
    memset(e.Role.Host.AssignedPorts, 0, sizeof e.Role.Host.AssignedPorts);
    for (size_t i = 0; i < value.size(); ++i) {
        uint32_t port = 0;
        if (!Store(value[i], &port, error, kLastPortNumber)) return error->At(i);
        e.Role.Host.AssignedPorts[port / 8] |= static_cast<uint8_t>(1u << (port % 8));
    }
    return true;
}

bool ReadPortEntry(const Json &entry, PortsModel &model, Problem *error) {
    uint32_t port = 0;
    if (!ReadIndex(entry, "port", kLastPortNumber, &port, error)) return false;
    ZENTREL_SWITCH_PORT_ENTRY &e = model.ports[port];
    if (!ReadRecord(entry, &e, kEntryFields, Count(kEntryFields), error, {"port", "clockSources", "assignedPorts"}))
        return false;
    e.PortNumber = port;
    if (const Json *sources = Member(entry, "clockSources"))
        if (!ReadByteList(*sources, e.LaneClockSource, sizeof e.LaneClockSource, 0xFF, error))
            return error->In("clockSources");
    if (const Json *assigned = Member(entry, "assignedPorts"))
        if (!ReadAssignedPorts(*assigned, e, error)) return error->In("assignedPorts");
    return true;
}

bool ReadErrorEntry(const Json &entry, PortsModel &model, Problem *error) {
    uint32_t port = 0;
    if (!ReadIndex(entry, "port", kLastPortNumber, &port, error)) return false;
    return ReadRecord(entry, &model.errors[port], kErrorFields, Count(kErrorFields), error, {"port"});
}

bool ReadRamEntry(const Json &entry, PortsModel &model, Problem *error) {
    uint32_t station = 0;
    if (!ReadIndex(entry, "station", ZENTREL_PKT_RAM_STATIONS - 1, &station, error)) return false;
    return ReadRecord(entry, &model.packetRam.Stations[station], kRamFields, Count(kRamFields), error, {"station"});
}

template <typename Read>
bool ReadList(const Json &list, PortsModel &model, Problem *error, Read read) {
    if (!list.is_array()) {
        *error = "must be a list, not " + Excerpt(list);
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        if (!list[i].is_object()) {
            *error = "must be an object, not " + Excerpt(list[i]);
            return error->At(i);
        }
        if (!read(list[i], model, error)) return error->At(i);
    }
    return true;
}

// A device attached behind a downstream port.
struct DeviceDefault {
    uint16_t vendorId, deviceId, subsystemVendorId, subsystemId;
    uint32_t classCode;
    uint8_t speed, maxSpeed;
};

const DeviceDefault kNvmeGen4 = {0x1C5F, 0x0540, 0x1C5F, 0x4A10, 0x010802, 4, 4};
const DeviceDefault kNvmeGen5 = {0x1E49, 0x0071, 0x1E49, 0x0B01, 0x010802, 5, 5};
const DeviceDefault kNvmeGen3 = {0x1C5F, 0x0320, 0x1C5F, 0x3A02, 0x010802, 3, 3};
const DeviceDefault kNic = {0x1D6A, 0x07B1, 0x1D6A, 0x0001, 0x020000, 3, 4};
const DeviceDefault kAccelerator = {0x1F0D, 0x2210, 0x1F0D, 0x0100, 0x120000, 5, 5};

// One port of a default switch; its lanes start at the port number's
// station lane. Host ports list the downstream ports assigned to them.
struct PortDefault {
    uint8_t port;
    uint8_t type;
    uint8_t speed, maxSpeed, width, maxWidth;
    uint8_t clockMode;
    uint8_t secondaryBus, subordinateBus, hostPort;
    uint16_t slot;  // downstream ports; a host port's subsystem id
    const DeviceDefault *device;
    bool laneReversal;
};

// The first switch (144 lanes, generation 5): a host port with four drive
// bays, one of them empty with its link down, and an accelerator; a second
// host port with a network adapter trained below its best and a drive; a
// third host port no downstream port is assigned to yet; a fabric port and
// a management port.
const PortDefault kSwitch0[] = {
    {0, ZENTREL_PORT_TYPE_HOST, 5, 5, 16, 16, ZENTREL_CLOCK_MODE_COMMON, 0, 0, 0, 0xA010, nullptr, false},
    {16, ZENTREL_PORT_TYPE_DOWNSTREAM, 4, 5, 4, 4, ZENTREL_CLOCK_MODE_COMMON, 0x02, 0x02, 0, 1, &kNvmeGen4, false},
    {20, ZENTREL_PORT_TYPE_DOWNSTREAM, 5, 5, 4, 4, ZENTREL_CLOCK_MODE_COMMON, 0x03, 0x03, 0, 2, &kNvmeGen5, false},
    {24, ZENTREL_PORT_TYPE_DOWNSTREAM_ALT, 5, 5, 4, 4, ZENTREL_CLOCK_MODE_COMMON, 0x04, 0x04, 0, 3, &kNvmeGen5, true},
    {28, ZENTREL_PORT_TYPE_DOWNSTREAM_ALT, 1, 5, 0, 4, ZENTREL_CLOCK_MODE_COMMON, 0x05, 0x05, 0, 4, nullptr, false},
    {32, ZENTREL_PORT_TYPE_HOST_ALT, 4, 5, 8, 8, ZENTREL_CLOCK_MODE_SRIS, 0, 0, 0, 0xA011, nullptr, false},
    {40, ZENTREL_PORT_TYPE_DOWNSTREAM, 3, 4, 2, 4, ZENTREL_CLOCK_MODE_SRIS, 0x22, 0x22, 32, 5, &kNic, false},
    {44, ZENTREL_PORT_TYPE_DOWNSTREAM, 4, 5, 4, 4, ZENTREL_CLOCK_MODE_SRIS, 0x23, 0x23, 32, 6, &kNvmeGen4, false},
    {64, ZENTREL_PORT_TYPE_HOST, 5, 5, 16, 16, ZENTREL_CLOCK_MODE_SSC, 0, 0, 0, 0xA012, nullptr, false},
    {96, ZENTREL_PORT_TYPE_DOWNSTREAM, 5, 5, 8, 8, ZENTREL_CLOCK_MODE_COMMON, 0x41, 0x45, 0, 7, &kAccelerator, false},
    {128, ZENTREL_PORT_TYPE_FABRIC, 5, 5, 8, 8, ZENTREL_CLOCK_MODE_COMMON, 0, 0, 0, 0, nullptr, false},
    {136, ZENTREL_PORT_TYPE_MANAGEMENT, 2, 2, 1, 1, ZENTREL_CLOCK_MODE_COMMON, 0, 0, 0, 0, nullptr, false},
};

// The second, alternate-family switch (96 lanes, generation 4): one host
// port with two drives and an empty x8 bay, and a management port.
const PortDefault kSwitch1[] = {
    {0, ZENTREL_PORT_TYPE_HOST, 4, 4, 16, 16, ZENTREL_CLOCK_MODE_COMMON, 0, 0, 0, 0xB034, nullptr, false},
    {32, ZENTREL_PORT_TYPE_DOWNSTREAM, 4, 4, 4, 4, ZENTREL_CLOCK_MODE_COMMON, 0x02, 0x02, 0, 1, &kNvmeGen4, false},
    {36, ZENTREL_PORT_TYPE_DOWNSTREAM_ALT, 3, 4, 4, 4, ZENTREL_CLOCK_MODE_COMMON, 0x03, 0x03, 0, 2, &kNvmeGen3, true},
    {48, ZENTREL_PORT_TYPE_DOWNSTREAM, 0, 4, 0, 8, ZENTREL_CLOCK_MODE_COMMON, 0x04, 0x04, 0, 3, nullptr, false},
    {80, ZENTREL_PORT_TYPE_MANAGEMENT, 2, 2, 1, 1, ZENTREL_CLOCK_MODE_COMMON, 0, 0, 0, 0, nullptr, false},
};

// Counters and status bits that are not zero at first.
struct ErrorDefault {
    uint8_t port;
    uint32_t receiver, badTlp, badDllp, recovery, linkDown;
    uint32_t errorStatus, uncorrectable, correctable, framing;
    uint16_t serdes;
};

const ErrorDefault kErrors0[] = {
    {16, 3, 1, 2, 1, 1, 0x1, 0, 0x00C1, 0x10000080, 0},
    {28, 0, 0, 0, 0, 4, 0x4, 0x20, 0, 0, 0x1},
    {40, 57, 0, 6, 12, 2, 0x1, 0, 0x1081, 0x40000000, 0},
};
const ErrorDefault kErrors1[] = {
    {36, 2, 0, 0, 1, 0, 0x1, 0, 0x0001, 0, 0},
    {48, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0},
};

// The PCIe defaults: internal errors masked, the usual fatal severities.
constexpr uint32_t kUncorrectableMask = 0x00400000;
constexpr uint32_t kCorrectableMask = 0x00006000;
constexpr uint32_t kSeverity = 0x00462030;
constexpr uint32_t kCapControl = 0x000001E0;  // ECRC generation and check, capable and enabled
constexpr uint16_t kDownstreamDpc = 0x001D;   // trigger on fatal errors, UR, interrupt and ERR_COR enabled
constexpr uint16_t kHostSubsystemVendor = 0x1F2E;

// Soft errors: {station, word, count}.
struct RamDefault {
    uint8_t station;
    uint8_t word;
    uint32_t count;
};
const RamDefault kRam0[] = {{1, 6, 2}, {1, 5, 1}, {4, 13, 1}, {4, 16, 3}, {8, 12, 1}};
const RamDefault kRam1[] = {{2, 1, 1}};

struct SwitchDefault {
    const PortDefault *ports;
    size_t portCount;
    const ErrorDefault *errors;
    size_t errorCount;
    const RamDefault *ram;
    size_t ramCount;
    uint32_t stations;
};

const SwitchDefault kSwitches[] = {
    {kSwitch0, 12, kErrors0, 3, kRam0, 5, 9},
    {kSwitch1, 5, kErrors1, 2, kRam1, 1, 6},
};

uint16_t LaneBits(uint32_t first, uint32_t count) {
    uint32_t bits = 0;
    for (uint32_t lane = first; lane < first + count && lane < ZENTREL_STATION_LANES; ++lane) bits |= 1u << lane;
    return static_cast<uint16_t>(bits);
}

uint8_t LaneClock(uint32_t clockMode, uint32_t station) {
    if (clockMode == ZENTREL_CLOCK_MODE_SRIS) return ZENTREL_LANE_CLOCK_SYS;
    if (clockMode == ZENTREL_CLOCK_MODE_SSC) return ZENTREL_LANE_CLOCK_SSC_PLL;
    return static_cast<uint8_t>(ZENTREL_LANE_CLOCK_S0 + station % 8);
}

void SetPort(ZENTREL_SWITCH_PORT_ENTRY &e, const PortDefault &d, size_t index) {
    bool up = d.width != 0;
    bool downstream = d.type == ZENTREL_PORT_TYPE_DOWNSTREAM || d.type == ZENTREL_PORT_TYPE_DOWNSTREAM_ALT;
    bool host = d.type == ZENTREL_PORT_TYPE_HOST || d.type == ZENTREL_PORT_TYPE_HOST_ALT;
    uint32_t first = d.port % ZENTREL_STATION_LANES;
    e.PortType = d.type;
    e.PortNumber = d.port;
    e.Valid = 1;
    e.Gid = static_cast<uint32_t>((index + 1) << 16) | d.port;
    e.MaxReadRequestSize = 512;
    e.MaxPayloadSize = host ? 512 : 256;
    e.MaxPayloadSizeSupported = 512;
    e.NegotiatedLinkSpeed = d.speed;
    e.MaxLinkSpeed = d.maxSpeed;
    e.NegotiatedLinkWidth = d.width;
    e.MaxLinkWidth = d.maxWidth;
    e.ClockMode = d.clockMode;
    e.ActiveLanes = up ? LaneBits(first, d.width) : 0;
    e.LaneRxDetect = up ? LaneBits(first, d.maxWidth) : 0;
    for (uint32_t lane = first; lane < first + d.maxWidth && lane < ZENTREL_STATION_LANES; ++lane)
        e.LaneClockSource[lane] = LaneClock(d.clockMode, d.port / ZENTREL_STATION_LANES);
    e.LaneReversal = d.laneReversal ? 1 : 0;
    e.RxEvalCount = up && d.speed >= 3 ? 2 : 0;
    e.Gen3EqStatus = up && d.speed >= 3 ? 0xF : 0;
    e.Gen4EqStatus = up && d.speed >= 4 ? 0xF : 0;
    e.Gen5EqStatus = up && d.speed >= 5 ? 0xF : 0;
    if (host) {
        e.SubsystemVendorId = kHostSubsystemVendor;
        e.SubsystemId = d.slot;
    }
    if (!downstream) return;
    e.DpcControl = kDownstreamDpc;
    ZENTREL_PORT_DOWNSTREAM_INFO &ds = e.Role.Downstream;
    ds.SecondaryBus = d.secondaryBus;
    ds.SubordinateBus = d.subordinateBus;
    ds.HostPort = d.hostPort;
    ds.SlotNumber = d.slot;
    if (d.device == nullptr) return;
    ds.DeviceAttached = 1;
    ds.DeviceVendorId = d.device->vendorId;
    ds.DeviceDeviceId = d.device->deviceId;
    e.SubsystemVendorId = d.device->subsystemVendorId;
    e.SubsystemId = d.device->subsystemId;
    e.DeviceClassCode = d.device->classCode;
    e.DeviceSubClass = static_cast<uint8_t>(d.device->classCode >> 8);
    e.DeviceLinkSpeed = d.device->speed;
    e.DeviceMaxLinkSpeed = d.device->maxSpeed;
}

void SetPortsDefaults(Device &device, size_t index) {
    const SwitchDefault &d = kSwitches[index < 2 ? index : 0];
    PortsModel &m = device.ports;
    memset(&m, 0, sizeof m);
    for (size_t i = 0; i < d.portCount; ++i) SetPort(m.ports[d.ports[i].port], d.ports[i], index);
    // Each host port lists the downstream ports assigned to it.
    for (size_t i = 0; i < d.portCount; ++i) {
        const PortDefault &ds = d.ports[i];
        if (ds.type != ZENTREL_PORT_TYPE_DOWNSTREAM && ds.type != ZENTREL_PORT_TYPE_DOWNSTREAM_ALT) continue;
        m.ports[ds.hostPort].Role.Host.AssignedPorts[ds.port / 8] |= static_cast<uint8_t>(1u << (ds.port % 8));
    }
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        ZENTREL_SWITCH_PORT_ERROR_STATISTICS &s = m.errors[port];
        s.PortNumber = static_cast<uint8_t>(port);
        s.AdvCapControl = kCapControl;
        s.UncorrectableMask = kUncorrectableMask;
        s.CorrectableMask = kCorrectableMask;
        s.UncorrectableSeverity = kSeverity;
    }
    for (size_t i = 0; i < d.errorCount; ++i) {
        const ErrorDefault &e = d.errors[i];
        ZENTREL_SWITCH_PORT_ERROR_STATISTICS &s = m.errors[e.port];
        s.PortReceiverErrors = e.receiver;
        s.BadTlpErrors = e.badTlp;
        s.BadDllpErrors = e.badDllp;
        s.RecoveryDiagnosticsErrors = e.recovery;
        s.LinkDownCount = e.linkDown;
        s.ErrorStatus = e.errorStatus;
        s.UncorrectableStatus = e.uncorrectable;
        s.CorrectableStatus = e.correctable;
        s.FramingStatus = e.framing;
        s.SerdesStatus = e.serdes;
    }
    for (uint32_t station = 0; station < d.stations; ++station)
        m.packetRam.Stations[station].Valid = ZENTREL_PKT_RAM_STATION_VALID;
    for (size_t i = 0; i < d.ramCount; ++i)
        memcpy(reinterpret_cast<uint8_t *>(&m.packetRam.Stations[d.ram[i].station]) + 4 * d.ram[i].word,
               &d.ram[i].count, sizeof d.ram[i].count);
}

int ApplyPortsKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    PortsModel &m = device.ports;
    if (key == "ports") return Took(ReadList(value, m, error, ReadPortEntry));
    if (key == "portTable") {
        // The switch has exactly the ports listed, each from zero.
        memset(m.ports, 0, sizeof m.ports);
        return Took(ReadList(value, m, error, [](const Json &entry, PortsModel &model, Problem *problem) {
            uint32_t port = 0;
            if (!ReadIndex(entry, "port", kLastPortNumber, &port, problem)) return false;
            model.ports[port].Valid = 1;
            return ReadPortEntry(entry, model, problem);
        }));
    }
    if (key == "portErrors") return Took(ReadList(value, m, error, ReadErrorEntry));
    if (key == "packetRam") return Took(ReadList(value, m, error, ReadRamEntry));
    return 0;
}

// Resets change the counters and status bits only, and a power cycle
// brings back those the switch starts with.
void SavePorts(const Device &device, Json *, Json *runtime) {
    const PortsModel &m = device.ports;
    Json errors = Json::array();
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        if (m.ports[port].Valid == 0) continue;
        Json entry = WriteRecord(&m.errors[port], kErrorFields, Count(kErrorFields), true);
        entry["port"] = port;
        errors.push_back(entry);
    }
    (*runtime)["portErrors"] = errors;
    Json ram = Json::array();
    for (uint32_t station = 0; station < ZENTREL_PKT_RAM_STATIONS; ++station) {
        Json entry = WriteRecord(&m.packetRam.Stations[station], kRamFields, Count(kRamFields), true);
        entry["station"] = station;
        ram.push_back(entry);
    }
    (*runtime)["packetRam"] = ram;
}

bool PortExists(const PortsModel &m, uint32_t port) {
    return port < ZENTREL_PORT_COUNT && m.ports[port].Valid != 0;
}

}  // namespace

// A port whose link is held down (disabled by port control, or by a
// link-down condition) shows its link down.
ZENTREL_SWITCH_PORT_ENTRY Shown(const Device &d, uint32_t port) {
    ZENTREL_SWITCH_PORT_ENTRY e = d.ports.ports[port];
    if (d.topology.disabled[port] != 0) {
        e.NegotiatedLinkWidth = 0;
        e.ActiveLanes = 0;
    }
    return e;
}

extern const ModelPart kPortsPart = {
    "ports", SetPortsDefaults, ApplyPortsKey, SavePorts, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetPciePortProperties(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_PORT_PROPERTIES Properties) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Properties == nullptr) return call.Return(sim::kStatusInvalidParameter);
    memset(Properties, 0, sizeof *Properties);
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) Properties->Ports[port] = sim::Shown(call.Target(), port);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Only the asked port's entry is filled; a port the switch does not have
// (or a number beyond 143) is refused.
ZENTREL_STATUS simlib::ZentrelSwitchGetSinglePortPciePortProperties(PTR_ZENTREL_DEVICE Device, uint32_t Port,
                                                                        PTR_ZENTREL_SWITCH_PORT_PROPERTIES Properties) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PortsModel &m = call.Target().ports;
    if (Properties == nullptr || !sim::PortExists(m, Port)) return call.Return(sim::kStatusInvalidParameter);
    memset(Properties, 0, sizeof *Properties);
    Properties->Ports[Port] = sim::Shown(call.Target(), Port);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The station, station port, global id and link speed are the port's own;
// a port whose link is down reports speed 0.
ZENTREL_STATUS simlib::ZentrelSwitchGetPciPortErrorStatistics(PTR_ZENTREL_DEVICE Device, uint32_t Port,
                                                                  PTR_ZENTREL_SWITCH_PORT_ERROR_STATISTICS Statistics) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::PortsModel &m = call.Target().ports;
    if (Statistics == nullptr || !sim::PortExists(m, Port)) return call.Return(sim::kStatusInvalidParameter);
    const ZENTREL_SWITCH_PORT_ENTRY e = sim::Shown(call.Target(), Port);
    *Statistics = m.errors[Port];
    Statistics->StationNumber = static_cast<uint8_t>(Port / ZENTREL_STATION_LANES);
    Statistics->StationPort = static_cast<uint8_t>(Port % ZENTREL_STATION_LANES);
    Statistics->GlobalId = e.Gid;
    Statistics->LinkSpeed = e.NegotiatedLinkWidth != 0 ? e.NegotiatedLinkSpeed : 0;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Clears the port's counters and error status bits; masks, severities and
// the capabilities stay.
ZENTREL_STATUS simlib::ZentrelSwitchResetPciPortErrorStatistics(PTR_ZENTREL_DEVICE Device, uint32_t Port) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::PortsModel &m = call.Target().ports;
    if (!sim::PortExists(m, Port)) return call.Return(sim::kStatusInvalidParameter);
    sim::ClearRecord(&m.errors[Port], sim::kErrorFields, sim::Count(sim::kErrorFields));
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchPacketRamSoftErrorCount(PTR_ZENTREL_DEVICE Device,
                                                                PTR_ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT Count) {
    return sim::ReadFromDevice(__func__, Device, Count, [](const sim::Device &d) { return d.ports.packetRam; });
}

// Clears every station's counters.
ZENTREL_STATUS simlib::ZentrelSwitchResetPacketRamSoftErrorCount(PTR_ZENTREL_DEVICE Device) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    for (ZENTREL_PACKET_RAM_STATION &station : call.Target().ports.packetRam.Stations)
        sim::ClearRecord(&station, sim::kRamFields, sim::Count(sim::kRamFields));
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
