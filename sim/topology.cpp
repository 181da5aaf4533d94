// Topology of the simulated switches: port attributes by host address, the
// devices below the downstream ports, vDSP binding, capability registers,
// port control, switch properties and the MPI management page. Port types,
// buses, slots, links and attached devices come from the ports model, and
// binding and port control change it, so the port properties agree.
#include <algorithm>
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

constexpr uint32_t kLastPort = ZENTREL_PORT_COUNT - 1;
constexpr uint8_t kNoHost = 0xFF;

bool IsDownstreamType(uint32_t type) {
    return type == ZENTREL_PORT_TYPE_DOWNSTREAM || type == ZENTREL_PORT_TYPE_DOWNSTREAM_ALT;
}

bool IsHostType(uint32_t type) {
    return type == ZENTREL_PORT_TYPE_HOST || type == ZENTREL_PORT_TYPE_HOST_ALT;
}

bool IsPort(const Device &d, uint32_t port) {
    return port < ZENTREL_PORT_COUNT && d.ports.ports[port].Valid != 0;
}

bool IsHostPort(const Device &d, uint32_t port) {
    return IsPort(d, port) && IsHostType(d.ports.ports[port].PortType);
}

bool IsDownstreamPort(const Device &d, uint32_t port) {
    return IsPort(d, port) && IsDownstreamType(d.ports.ports[port].PortType);
}

bool Assigned(const ZENTREL_SWITCH_PORT_ENTRY &host, uint32_t port) {
    return (host.Role.Host.AssignedPorts[port / 8] >> (port % 8) & 1u) != 0;
}

// The host port a downstream port is assigned to, or kNoHost.
uint8_t HostOf(const Device &d, uint32_t port) {
    for (uint32_t h = 0; h < ZENTREL_PORT_COUNT; ++h)
        if (IsHostPort(d, h) && Assigned(d.ports.ports[h], port)) return static_cast<uint8_t>(h);
    return kNoHost;
}

// The bus below a host port's upstream bridge: one below the lowest
// secondary bus of its downstream ports; 0 when it has none.
uint32_t InternalBus(const Device &d, uint32_t host) {
    uint32_t lowest = 0x100;
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
        if (IsDownstreamPort(d, p) && Assigned(d.ports.ports[host], p))
            lowest = std::min<uint32_t>(lowest, d.ports.ports[p].Role.Downstream.SecondaryBus);
    return lowest == 0x100 || lowest == 0 ? 0 : lowest - 1;
}

// The bridge number of a downstream port below its host port.
uint32_t BridgeIndex(const Device &d, uint32_t host, uint32_t port) {
    uint32_t index = 0;
    for (uint32_t p = 0; p < port; ++p)
        if (IsDownstreamPort(d, p) && Assigned(d.ports.ports[host], p)) ++index;
    return index;
}

// The runtime vDSPs decide which downstream ports each host port has.
void SyncAssignments(Device &d) {
    TopologyModel &t = d.topology;
    for (uint32_t h = 0; h < ZENTREL_PORT_COUNT; ++h) {
        bool hasVdsps = std::any_of(t.vdsps.begin(), t.vdsps.end(), [h](const Vdsp &v) { return v.hostPort == h; });
        if (!IsHostPort(d, h) || !hasVdsps) continue;
        memset(d.ports.ports[h].Role.Host.AssignedPorts, 0, sizeof d.ports.ports[h].Role.Host.AssignedPorts);
    }
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
        if (IsDownstreamPort(d, p)) d.ports.ports[p].Role.Downstream.HostPort = kNoHost;
    for (const Vdsp &v : t.vdsps) {
        if (v.port == ZENTREL_VDSP_NO_PORT || !IsHostPort(d, v.hostPort) || !IsDownstreamPort(d, v.port)) continue;
        d.ports.ports[v.hostPort].Role.Host.AssignedPorts[v.port / 8] |= static_cast<uint8_t>(1u << (v.port % 8));
        d.ports.ports[v.port].Role.Downstream.HostPort = v.hostPort;
    }
    // Downstream ports listed by a host port without vDSPs keep that host.
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
        if (IsDownstreamPort(d, p) && d.ports.ports[p].Role.Downstream.HostPort == kNoHost)
            d.ports.ports[p].Role.Downstream.HostPort = HostOf(d, p);
}

// ---- capability registers ----

constexpr uint32_t kCapPowerManagement = 0x01, kCapMsi = 0x05, kCapPcie = 0x10, kCapMsix = 0x11;
constexpr uint32_t kExtAer = 0x01, kExtVirtualChannel = 0x02, kExtDpc = 0x1D;
constexpr uint32_t kCapLength = 0x40;

bool HasCapability(const Device &d, uint32_t port, bool extended, uint32_t id) {
    if (!IsPort(d, port)) return false;
    uint32_t type = d.ports.ports[port].PortType;
    if (!extended) return id == kCapPowerManagement || id == kCapMsi || id == kCapPcie || id == kCapMsix;
    if (id == kExtAer) return true;
    if (id == kExtVirtualChannel) return !IsDownstreamType(type);
    if (id == kExtDpc) return IsDownstreamType(type);
    return false;
}

// A register's value before any write, from the port's properties and
// error registers.
uint32_t DefaultWord(const Device &d, uint32_t port, bool extended, uint32_t id, uint32_t offset) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = d.ports.ports[port];
    const ZENTREL_SWITCH_PORT_ERROR_STATISTICS &s = d.ports.errors[port];
    bool downstream = IsDownstreamType(e.PortType);
    bool up = e.NegotiatedLinkWidth != 0 && d.topology.disabled[port] == 0;
    if (offset == 0) return extended ? (id | 1u << 16) : id;
    if (extended && id == kExtAer) {
        switch (offset) {
        case 0x04: return s.UncorrectableStatus;
        case 0x08: return s.UncorrectableMask;
        case 0x0C: return s.UncorrectableSeverity;
        case 0x10: return s.CorrectableStatus;
        case 0x14: return s.CorrectableMask;
        case 0x18: return s.AdvCapControl;
        default: return 0;
        }
    }
    if (extended && id == kExtDpc) {
        if (offset == 0x04) return static_cast<uint32_t>(e.DpcControl) << 16;
        if (offset == 0x08) return e.DpcStatus | static_cast<uint32_t>(e.DpcErrorSourceId) << 16;
        return 0;
    }
    if (!extended && id == kCapPcie) {
        switch (offset) {
        case 0x0C: return (e.MaxLinkSpeed & 0xF) | (e.MaxLinkWidth & 0x3F) << 4;
        case 0x10: {
            uint32_t control = d.topology.disabled[port] != 0 ? 0x10u : 0u;  // Link Disable
            uint32_t status = up ? (e.NegotiatedLinkSpeed & 0xF) | (e.NegotiatedLinkWidth & 0x3F) << 4 : 0;
            return control | status << 16;
        }
        case 0x14:  // Slot Capabilities: hot-plug surprise and capable, slot number
            return downstream ? 0x60u | static_cast<uint32_t>(e.Role.Downstream.SlotNumber) << 19 : 0;
        default: return 0;
        }
    }
    return 0;
}

// The first register with the Message Control in its upper half: MSI is
// enabled on downstream ports, MSI-X on host ports.

uint32_t FirstWord(const Device &d, uint32_t port, bool extended, uint32_t id) {
    uint32_t word = DefaultWord(d, port, extended, id, 0);
    const ZENTREL_SWITCH_PORT_ENTRY &e = d.ports.ports[port];
    if (!extended && id == kCapMsi && IsDownstreamType(e.PortType)) word |= 0x0081u << 16;
    if (!extended && id == kCapMsi && !IsDownstreamType(e.PortType)) word |= 0x0080u << 16;
    if (!extended && id == kCapMsix) word |= (IsHostType(e.PortType) ? 0x8007u : 0x0007u) << 16;
    return word;
}

uint8_t RegisterByte(const Device &d, uint32_t port, bool extended, uint32_t id, uint32_t offset) {
    auto written = d.topology.csrWrites.find(
        CsrKey(static_cast<uint8_t>(port), extended ? 1 : 0, id, static_cast<uint16_t>(offset)));
    if (written != d.topology.csrWrites.end()) return written->second;
    uint32_t aligned = offset & ~3u;
    uint32_t word = aligned == 0 ? FirstWord(d, port, extended, id) : DefaultWord(d, port, extended, id, aligned);
    return static_cast<uint8_t>(word >> 8 * (offset & 3u));
}

bool RegisterBit(const Device &d, uint32_t port, bool extended, uint32_t id, uint32_t offset, uint32_t bit) {
    return HasCapability(d, port, extended, id) && (RegisterByte(d, port, extended, id, offset + bit / 8) >> (bit % 8) & 1u) != 0;
}

// ---- downstream devices ----

struct DeviceList {
    uint32_t ports = 0, portsWithDevices = 0, devices = 0;
};

uint32_t DevicesBelow(const Device &d, uint32_t port) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = d.ports.ports[port];
    if (e.Role.Downstream.DeviceAttached == 0) return 0;
    uint32_t count = 1;
    for (const ExtraDevice &x : d.topology.extraDevices)
        if (x.port == port) ++count;
    return count;
}

DeviceList CountDevices(const Device &d) {
    DeviceList list;
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p) {
        if (!IsDownstreamPort(d, p)) continue;
        ++list.ports;
        uint32_t below = DevicesBelow(d, p);
        if (below != 0) ++list.portsWithDevices;
        list.devices += below;
    }
    return list;
}

void FillRecord(const Device &d, uint32_t port, uint32_t index, const ExtraDevice *extra,
                ZENTREL_DS_DEVICE_RECORD &r) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = d.ports.ports[port];
    const ZENTREL_PORT_DOWNSTREAM_INFO &ds = e.Role.Downstream;
    bool up = e.NegotiatedLinkWidth != 0 && d.topology.disabled[port] == 0;
    uint32_t firstGid = e.Gid | 1u << 8;
    r.Gid = e.Gid | (index + 1) << 8;
    r.ParentGid = extra != nullptr && extra->belowDevice ? firstGid : e.Gid;
    uint32_t bus = ds.SecondaryBus + (extra != nullptr && extra->belowDevice ? 1u : 0u);
    if (extra == nullptr) {
        r.Flags = 0x1;
        r.VendorId = ds.DeviceVendorId;
        r.DeviceId = ds.DeviceDeviceId;
        r.SubsystemVendorId = e.SubsystemVendorId;
        r.SubsystemId = e.SubsystemId;
        r.ClassCode = e.DeviceClassCode;
        r.PciRevision = 0x01;
    } else {
        r.Flags = extra->flags;
        r.VendorId = extra->vendorId;
        r.DeviceId = extra->deviceId;
        r.SubsystemVendorId = extra->subsystemVendorId;
        r.SubsystemId = extra->subsystemId;
        r.ClassCode = extra->classCode;
        r.PciRevision = extra->revision;
    }
    uint8_t host = HostOf(d, port);
    r.AssignedToHost = host != kNoHost ? 1 : 0;
    r.HostPortNumber = host;
    r.HostPortDomain = host != kNoHost ? d.topology.segment[host] : 0;
    r.HostPortSlot = ds.SlotNumber;
    r.HostTreeRequesterId = ZENTREL_BDF(bus, 0, index);
    r.LinkSpeed = static_cast<uint8_t>(up ? e.DeviceLinkSpeed << 1 : 0);
    r.MaxLinkSpeed = static_cast<uint8_t>(e.DeviceMaxLinkSpeed << 1);
}

// Writes the list into a buffer of `capacity` bytes, whole blocks only.
// False when a block did not fit.
bool WriteDeviceList(const Device &d, uint8_t *buffer, size_t capacity) {
    if (capacity < sizeof(ZENTREL_DS_LIST_HEAD)) return false;
    size_t at = sizeof(ZENTREL_DS_LIST_HEAD);
    uint32_t blocks = 0;
    bool fits = true;
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT && fits; ++p) {
        if (!IsDownstreamPort(d, p)) continue;
        uint32_t below = DevicesBelow(d, p);
        size_t size = sizeof(ZENTREL_DS_PORT_BLOCK) + below * sizeof(ZENTREL_DS_DEVICE_RECORD);
        if (at + size > capacity) {
            fits = false;
            break;
        }
        ZENTREL_DS_PORT_BLOCK block = {};
        block.BlockSize = static_cast<uint16_t>(size);
        block.Valid = d.topology.disabled[p] == 0 ? 1 : 0;  // a disabled port's devices are not enumerated
        block.PortId = static_cast<uint16_t>(p);
        block.NumDevices = static_cast<uint16_t>(below);
        memcpy(buffer + at, &block, sizeof block);
        size_t record = at + sizeof block;
        uint32_t index = 0;
        if (below != 0) {
            ZENTREL_DS_DEVICE_RECORD r = {};
            FillRecord(d, p, index++, nullptr, r);
            memcpy(buffer + record, &r, sizeof r);
            record += sizeof r;
        }
        for (const ExtraDevice &x : d.topology.extraDevices) {
            if (x.port != p || below == 0) continue;
            ZENTREL_DS_DEVICE_RECORD r = {};
            FillRecord(d, p, index++, &x, r);
            memcpy(buffer + record, &r, sizeof r);
            record += sizeof r;
        }
        at += size;
        ++blocks;
    }
    memcpy(buffer, &blocks, sizeof blocks);
    return fits;
}

// ---- port attributes ----

ZENTREL_PORT_ATTR_ENTRY AttributeEntry(const Device &d, uint32_t port) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = d.ports.ports[port];
    ZENTREL_PORT_ATTR_ENTRY a = {};
    a.PortNumber = static_cast<uint8_t>(port);
    a.Station = static_cast<uint8_t>(port / ZENTREL_STATION_LANES);
    a.StationPort = static_cast<uint8_t>(port % ZENTREL_STATION_LANES);
    if (IsHostType(e.PortType)) {
        a.PortType = ZENTREL_PORT_ATTR_UPSTREAM;
        a.SegmentValid = 1;
        a.Segment = d.topology.segment[port];
        uint32_t bus = InternalBus(d, port);
        a.Role.Upstream.HostBdf = ZENTREL_BDF(bus != 0 ? bus - 1 : 0, 0, 0);
        a.Role.Upstream.HostBdfValid = bus != 0 ? 1 : 0;
    } else if (IsDownstreamType(e.PortType)) {
        a.PortType = ZENTREL_PORT_ATTR_DOWNSTREAM;
        a.Role.Downstream.SlotNumber = e.Role.Downstream.SlotNumber;
        uint8_t host = HostOf(d, port);
        if (host != kNoHost) {
            a.SegmentValid = 1;
            a.Segment = d.topology.segment[host];
            a.Role.Downstream.HostBdf = ZENTREL_BDF(InternalBus(d, host), BridgeIndex(d, host, port), 0);
            a.Role.Downstream.HostBdfValid = 1;
        }
    } else {
        a.PortType = static_cast<uint8_t>(e.PortType);
    }
    return a;
}

bool Matches(const ZENTREL_PORT_ATTR_ENTRY &a, const ZENTREL_SWITCH_GET_PORT_ATTR_REQ &r) {
    if (a.PortType == ZENTREL_PORT_ATTR_UPSTREAM)
        return r.RequestKind == ZENTREL_PORT_ATTR_BY_SEGMENT && a.Role.Upstream.HostBdfValid != 0 &&
               a.Role.Upstream.HostBdf == r.HostBdf && a.Segment == r.SegmentOrSlot;
    if (a.PortType != ZENTREL_PORT_ATTR_DOWNSTREAM || a.Role.Downstream.HostBdfValid == 0 ||
        a.Role.Downstream.HostBdf != r.HostBdf)
        return false;
    if (r.RequestKind == ZENTREL_PORT_ATTR_BY_SEGMENT) return a.Segment == r.SegmentOrSlot;
    return a.Role.Downstream.SlotNumber == r.SegmentOrSlot;
}

// ---- defaults ----

struct ExtraDefault {
    size_t switchIndex;
    ExtraDevice device;
};

// The network adapter of switch 0 has a second function, and its
// accelerator is a bridge to two compute functions.
const ExtraDefault kExtraDefaults[] = {
    {0, {40, false, 0x1D6A, 0x07B1, 0x1D6A, 0x0001, 0x020000, 0x02, 0x1}},
    {0, {96, true, 0x1F0D, 0x2211, 0x1F0D, 0x0101, 0x120000, 0x01, 0x3}},
    {0, {96, true, 0x1F0D, 0x2211, 0x1F0D, 0x0101, 0x120000, 0x01, 0x3}},
};

constexpr uint16_t kVendor = 0x1F2E;
constexpr uint32_t kSpareVdsps = 2;
constexpr uint32_t kFewestVdsps = 4;

void SetTopologyDefaults(Device &device, size_t index) {
    TopologyModel &t = device.topology;
    t = TopologyModel{};
    t.switchId = static_cast<uint8_t>(index & 0x7F);
    t.segmentLookup = index != 1;
    uint8_t segment = 0;
    for (uint32_t h = 0; h < ZENTREL_PORT_COUNT; ++h) {
        if (!IsHostPort(device, h)) continue;
        t.segment[h] = segment++;
        uint32_t id = 1;
        for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
            if (IsDownstreamPort(device, p) && Assigned(device.ports.ports[h], p))
                t.vdsps.push_back({static_cast<uint8_t>(h), static_cast<uint8_t>(id++), static_cast<uint8_t>(p),
                                   static_cast<uint8_t>(p)});
        uint32_t last = std::max(id - 1 + kSpareVdsps, kFewestVdsps);
        while (id <= last)
            t.vdsps.push_back({static_cast<uint8_t>(h), static_cast<uint8_t>(id++), ZENTREL_VDSP_NO_PORT,
                               ZENTREL_VDSP_NO_PORT});
        t.mpi[h] = {0, 0, 1};
    }
    for (const ExtraDefault &x : kExtraDefaults)
        if (x.switchIndex == index) t.extraDevices.push_back(x.device);
    ZENTREL_SWITCH_GET_PROP_RESP &p = t.properties;
    bool first = index != 1;
    p.NumHistoryBuffers = first ? 4 : 2;
    p.ValidFlags[0] = first ? 0x1F : 0x3F;  // the first switch has no OEM family
    p.VendorId = kVendor;
    p.DeviceId = static_cast<uint16_t>(device.info.DeviceId);
    p.SubsystemVendorId = kVendor;
    p.SubsystemId = first ? 0x0A10 : 0x0B34;
    p.InstanceId = static_cast<uint16_t>(index + 1);
    p.OemFamilyId = first ? 0 : 0x0003;
}

// ---- scenario and state keys ----

bool ReadVdsp(uint64_t host, const Json &entry, TopologyModel &t, bool saved, Problem *error) {
    uint32_t id = 0, port = ZENTREL_VDSP_NO_PORT;
    Field fields[] = {{"vdsp", &id, 0xFF}, {"port", &port, 0xFF}};
    if (!ReadFields(entry, fields, 2, error, {"hostPort"})) return false;
    auto it = std::find_if(t.vdsps.begin(), t.vdsps.end(),
                           [&](const Vdsp &v) { return v.hostPort == host && v.id == id; });
    if (it == t.vdsps.end()) {
        t.vdsps.push_back({static_cast<uint8_t>(host), static_cast<uint8_t>(id), ZENTREL_VDSP_NO_PORT,
                           ZENTREL_VDSP_NO_PORT});
        it = t.vdsps.end() - 1;
    }
    (saved ? it->savedPort : it->port) = static_cast<uint8_t>(port);
    return true;
}

bool ReadExtraDevice(uint64_t port, const Json &entry, TopologyModel &t, Problem *error) {
    uint32_t below = 0, vendor = 0, device = 0, subVendor = 0, sub = 0, cls = 0, rev = 0, flags = 1, count = 1;
    Field fields[] = {{"belowDevice", &below, 1},     {"vendorId", &vendor, 0xFFFF}, {"deviceId", &device, 0xFFFF},
                      {"subsystemVendorId", &subVendor, 0xFFFF}, {"subsystemId", &sub, 0xFFFF},
                      {"classCode", &cls, 0xFFFFFF}, {"revision", &rev, 0xFF}, {"flags", &flags, UINT32_MAX},
                      {"count", &count, 4096}};
    if (!ReadFields(entry, fields, sizeof fields / sizeof fields[0], error, {"port"})) return false;
    ExtraDevice x = {static_cast<uint8_t>(port), below != 0, static_cast<uint16_t>(vendor),
                     static_cast<uint16_t>(device), static_cast<uint16_t>(subVendor), static_cast<uint16_t>(sub),
                     cls, static_cast<uint8_t>(rev), flags};
    t.extraDevices.insert(t.extraDevices.end(), count, x);
    return true;
}

bool ReadCsrWrite(uint64_t port, const Json &entry, TopologyModel &t, Problem *error) {
    uint32_t extended = 0, id = 0, offset = 0, byte = 0;
    Field fields[] = {{"extended", &extended, 1}, {"capId", &id, UINT32_MAX}, {"offset", &offset, 0xFFFF},
                      {"byte", &byte, 0xFF}};
    if (!ReadFields(entry, fields, 4, error, {"port"})) return false;
    t.csrWrites[CsrKey(static_cast<uint8_t>(port), static_cast<uint8_t>(extended), id,
                       static_cast<uint16_t>(offset))] = static_cast<uint8_t>(byte);
    return true;
}

bool ReadPortList(const Json &value, uint8_t *flags, Problem *error) {
    if (!value.is_array()) {
        *error = "must be a list of port numbers";
        return false;
    }
    memset(flags, 0, ZENTREL_PORT_COUNT);
    for (size_t i = 0; i < value.size(); ++i) {
        uint32_t port = 0;
        if (!Store(value[i], &port, error, kLastPort)) return error->At(i);
        flags[port] = 1;
    }
    return true;
}

bool ReadProperties(const Json &value, ZENTREL_SWITCH_GET_PROP_RESP &p, Problem *error) {
    uint32_t valid = 0;
    memcpy(&valid, p.ValidFlags, sizeof valid);
    uint32_t v[] = {p.NumHistoryBuffers, valid, p.VendorId, p.DeviceId, p.SubsystemVendorId,
                    p.SubsystemId, p.InstanceId, p.OemFamilyId};
    Field fields[] = {{"historyBuffers", &v[0], 0xFFFF},   {"validFlags", &v[1], UINT32_MAX},
                      {"vendorId", &v[2], 0xFFFF},         {"deviceId", &v[3], 0xFFFF},
                      {"subsystemVendorId", &v[4], 0xFFFF}, {"subsystemId", &v[5], 0xFFFF},
                      {"instanceId", &v[6], 0xFFFF},       {"oemFamilyId", &v[7], 0xFFFF}};
    if (!ReadFields(value, fields, 8, error)) return false;
    p.NumHistoryBuffers = static_cast<uint16_t>(v[0]);
    memcpy(p.ValidFlags, &v[1], sizeof v[1]);
    p.VendorId = static_cast<uint16_t>(v[2]);
    p.DeviceId = static_cast<uint16_t>(v[3]);
    p.SubsystemVendorId = static_cast<uint16_t>(v[4]);
    p.SubsystemId = static_cast<uint16_t>(v[5]);
    p.InstanceId = static_cast<uint16_t>(v[6]);
    p.OemFamilyId = static_cast<uint16_t>(v[7]);
    return true;
}

bool ReadMpi(uint64_t host, const Json &entry, TopologyModel &t, Problem *error) {
    MpiPage &m = t.mpi[host];
    uint32_t access = m.access, saved = m.savedAccess, control = m.control;
    Field fields[] = {{"access", &access, ZENTREL_MPI_ACCESS_LAST},
                      {"savedAccess", &saved, ZENTREL_MPI_ACCESS_LAST},
                      {"control", &control, 0xFF}};
    if (!ReadFields(entry, fields, 3, error, {"hostPort"})) return false;
    m = {static_cast<uint8_t>(access), static_cast<uint8_t>(saved), static_cast<uint8_t>(control)};
    return true;
}

int ApplyTopologyKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    TopologyModel &t = device.topology;
    auto each = [&](auto read) {
        return [&t, read](uint64_t n, const Json &entry, Problem *problem) { return read(n, entry, t, problem); };
    };
    if (key == "vdsps" || key == "savedVdsps") {
        bool saved = key == "savedVdsps";
        bool ok = ReadNumberedList(value, "hostPort", kLastPort, error,
                                   [&](uint64_t host, const Json &entry, Problem *problem) {
                                       return ReadVdsp(host, entry, t, saved, problem);
                                   });
        if (ok) SyncAssignments(device);
        return Took(ok);
    }
    if (key == "vdspTable") {
        // The host ports have exactly the vDSPs listed, bound alike at
        // runtime and in the configuration page.
        t.vdsps.clear();
        bool ok = ReadNumberedList(value, "hostPort", kLastPort, error,
                                   [&](uint64_t host, const Json &entry, Problem *problem) {
                                       return ReadVdsp(host, entry, t, false, problem);
                                   });
        for (Vdsp &v : t.vdsps) v.savedPort = v.port;
        if (ok) SyncAssignments(device);
        return Took(ok);
    }
    if (key == "downstreamDevices") {
        t.extraDevices.clear();
        return Took(ReadNumberedList(value, "port", kLastPort, error, each(ReadExtraDevice)));
    }
    if (key == "csrWrites") {
        t.csrWrites.clear();
        return Took(ReadNumberedList(value, "port", kLastPort, error, each(ReadCsrWrite)));
    }
    if (key == "mpiPage") return Took(ReadNumberedList(value, "hostPort", kLastPort, error, each(ReadMpi)));
    if (key == "disabledPorts") {
        uint8_t listed[ZENTREL_PORT_COUNT];
        if (!ReadPortList(value, listed, error)) return -1;
        for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
            t.disabled[p] = static_cast<uint8_t>((t.disabled[p] & ~kDownByPortControl) | (listed[p] != 0 ? kDownByPortControl : 0));
        return 1;
    }
    if (key == "segments") {
        return Took(ReadNumberedList(value, "hostPort", kLastPort, error,
                                     [&t](uint64_t host, const Json &entry, Problem *problem) {
                                         uint32_t segment = t.segment[host];
                                         Field f[] = {{"segment", &segment, 0xFF}};
                                         if (!ReadFields(entry, f, 1, problem, {"hostPort"})) return false;
                                         t.segment[host] = static_cast<uint8_t>(segment);
                                         return true;
                                     }));
    }
    if (key == "segmentLookup") {
        uint32_t on = 0;
        if (!Store(value, &on, error, 1)) return -1;
        t.segmentLookup = on != 0;
        return 1;
    }
    if (key == "switchNumber") return Took(Store(value, &t.switchId, error, 0x7F));
    if (key == "switchProperties") return Took(ReadProperties(value, t.properties, error));
    return 0;
}

// Bindings made for future sessions and the MPI page's saved access live
// in the configuration page; the rest is lost on a power cycle.
void SaveTopology(const Device &device, Json *flash, Json *runtime) {
    const TopologyModel &t = device.topology;
    Json page = Json::array(), bound = Json::array();
    for (const Vdsp &v : t.vdsps) {
        page.push_back({{"hostPort", v.hostPort}, {"vdsp", v.id}, {"port", v.savedPort}});
        bound.push_back({{"hostPort", v.hostPort}, {"vdsp", v.id}, {"port", v.port}});
    }
    (*flash)["savedVdsps"] = page;
    (*runtime)["vdsps"] = bound;
    Json disabled = Json::array();
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p)
        if ((t.disabled[p] & kDownByPortControl) != 0) disabled.push_back(p);
    (*runtime)["disabledPorts"] = disabled;
    Json writes = Json::array();
    for (const auto &[k, byte] : t.csrWrites)
        writes.push_back({{"port", std::get<0>(k)}, {"extended", std::get<1>(k)}, {"capId", std::get<2>(k)},
                          {"offset", std::get<3>(k)}, {"byte", byte}});
    (*runtime)["csrWrites"] = writes;
    // The same key in both: the saved access flags survive a power cycle.
    Json access = Json::array(), saved = Json::array();
    for (uint32_t h = 0; h < ZENTREL_PORT_COUNT; ++h) {
        if (!IsHostPort(device, h)) continue;
        access.push_back({{"hostPort", h}, {"access", t.mpi[h].access}});
        saved.push_back({{"hostPort", h}, {"savedAccess", t.mpi[h].savedAccess}});
    }
    (*runtime)["mpiPage"] = access;
    (*flash)["mpiPage"] = saved;
}

void PowerCycleTopology(Device &device) {
    TopologyModel &t = device.topology;
    for (Vdsp &v : t.vdsps) v.port = v.savedPort;
    for (MpiPage &m : t.mpi) m.access = m.savedAccess;
    memset(t.disabled, 0, sizeof t.disabled);
    t.csrWrites.clear();
    SyncAssignments(device);
}

Vdsp *FindVdsp(TopologyModel &t, uint32_t host, uint32_t id) {
    for (Vdsp &v : t.vdsps)
        if (v.hostPort == host && v.id == id) return &v;
    return nullptr;
}

bool OwnPort(const Device &d, uint32_t descriptor) {
    return ZENTREL_DESCRIPTOR_SWITCH(descriptor) == d.topology.switchId && (descriptor & 0x00FFFF80u) == 0;
}

// A capability access the switch can serve: the port has the capability
// and the bytes lie within its registers.
bool CsrAccessValid(const Device &d, const ZENTREL_SWITCH_PORT_CSR_ACCESS &a) {
    return a.IsExtendedCap <= 1 && HasCapability(d, a.PortNum, a.IsExtendedCap != 0, a.PcieCapId) &&
           static_cast<uint32_t>(a.Offset) + a.DataLength <= kCapLength;
}

ZENTREL_STATUS PortControl(const char *function, PTR_ZENTREL_DEVICE device, uint32_t port, bool enable) {
    Call call(function);
    call.Dev(device);
    if (!call.Proceed()) return call.Result();
    Device &d = call.Target();
    if (!IsPort(d, port)) return call.Return(kStatusInvalidParameter);
    if (enable)
        d.topology.disabled[port] = static_cast<uint8_t>(d.topology.disabled[port] & ~kDownByPortControl);
    else
        d.topology.disabled[port] |= kDownByPortControl;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

}  // namespace

extern const ModelPart kTopologyPart = {
    "topology", SetTopologyDefaults, ApplyTopologyKey, SaveTopology, PowerCycleTopology,
    nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchGetPortAttr(PTR_ZENTREL_DEVICE Device,
                                                    PTR_ZENTREL_SWITCH_GET_PORT_ATTR_REQ Request,
                                                    PTR_ZENTREL_SWITCH_GET_PORT_ATTR_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->NumPorts == 0)
        return call.Return(sim::kStatusInvalidParameter);
    const ZENTREL_SWITCH_GET_PORT_ATTR_REQ &r = *Request;
    const sim::Device &d = call.Target();
    if (r.RequestKind < ZENTREL_PORT_ATTR_BY_SEGMENT || r.RequestKind > ZENTREL_PORT_ATTR_ALL)
        return call.Return(sim::kStatusInvalidParameter);
    if (r.RequestKind == ZENTREL_PORT_ATTR_BY_SEGMENT && !d.topology.segmentLookup)
        return call.Return(ZENTREL_STATUS_FEATURE_UNSUPPORTED);
    std::vector<ZENTREL_PORT_ATTR_ENTRY> found;
    for (uint32_t p = 0; p < ZENTREL_PORT_COUNT; ++p) {
        if (!sim::IsPort(d, p)) continue;
        ZENTREL_PORT_ATTR_ENTRY a = sim::AttributeEntry(d, p);
        if (r.RequestKind == ZENTREL_PORT_ATTR_ALL || sim::Matches(a, r)) found.push_back(a);
    }
    // The response has room for the number of ports asked for.
    memset(Response, 0, ZENTREL_PORT_ATTR_RESP_LENGTH(r.NumPorts));
    Response->TotalPorts = static_cast<uint16_t>(found.size());
    if (found.empty()) return call.Return(sim::kStatusInvalidParameter);
    if (found.size() > r.NumPorts) return call.Return(ZENTREL_STATUS_PORT_ATTR_TOO_MANY);
    Response->NumEntries = static_cast<uint16_t>(found.size());
    memcpy(reinterpret_cast<uint8_t *>(Response) + sizeof *Response, found.data(),
           found.size() * sizeof(ZENTREL_PORT_ATTR_ENTRY));
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The caller sizes the list from the counts it was given (the length the
// header defines, cut to 16 bits); no more than that is written.
ZENTREL_STATUS simlib::ZentrelSwitchGetDSAllDeviceInfo(PTR_ZENTREL_DEVICE Device, uint32_t Selector,
                                                           void *Buffer) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Buffer == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::Device &d = call.Target();
    sim::DeviceList counts = sim::CountDevices(d);
    if (Selector == ZENTREL_DS_SELECT_COUNT) {
        ZENTREL_DS_DEVICE_COUNT c = {counts.ports, counts.portsWithDevices, counts.devices};
        memcpy(Buffer, &c, sizeof c);
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    if (Selector != ZENTREL_DS_SELECT_ALL) return call.Return(sim::kStatusInvalidParameter);
    size_t capacity = ZENTREL_DS_LIST_LENGTH(counts.ports, counts.devices, counts.portsWithDevices);
    if (!sim::WriteDeviceList(d, static_cast<uint8_t *>(Buffer), capacity))
        return call.Return(ZENTREL_STATUS_DS_LIST_TOO_SMALL);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Binds a downstream port of this switch to a host port's vDSP, at runtime
// (moving it from a vDSP it was bound to), in the configuration page, or both.
ZENTREL_STATUS simlib::ZentrelSwitchPortDsVDspBind(PTR_ZENTREL_DEVICE Device, uint32_t DsPort, uint32_t HostPort,
                                                       uint32_t AssignRule, uint16_t VdspId) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    uint32_t ds = ZENTREL_DESCRIPTOR_PORT(DsPort), host = ZENTREL_DESCRIPTOR_PORT(HostPort);
    sim::Vdsp *v = sim::FindVdsp(d.topology, host, VdspId);
    if (!sim::OwnPort(d, DsPort) || !sim::OwnPort(d, HostPort) || !sim::IsDownstreamPort(d, ds) ||
        !sim::IsHostPort(d, host) || AssignRule < ZENTREL_ASSIGN_RUNTIME || AssignRule > ZENTREL_ASSIGN_BOTH ||
        v == nullptr)
        return call.Return(sim::kStatusInvalidParameter);
    for (sim::Vdsp &other : d.topology.vdsps) {
        if ((AssignRule & ZENTREL_ASSIGN_RUNTIME) != 0 && other.port == ds) other.port = ZENTREL_VDSP_NO_PORT;
        if ((AssignRule & ZENTREL_ASSIGN_PERSISTENT) != 0 && other.savedPort == ds)
            other.savedPort = ZENTREL_VDSP_NO_PORT;
    }
    if ((AssignRule & ZENTREL_ASSIGN_RUNTIME) != 0) v->port = static_cast<uint8_t>(ds);
    if ((AssignRule & ZENTREL_ASSIGN_PERSISTENT) != 0) v->savedPort = static_cast<uint8_t>(ds);
    sim::SyncAssignments(d);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchPortDsVDspUnbind(PTR_ZENTREL_DEVICE Device, uint32_t HostPort,
                                                         uint32_t AssignRule, uint16_t VdspId) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    uint32_t host = ZENTREL_DESCRIPTOR_PORT(HostPort);
    sim::Vdsp *v = sim::FindVdsp(d.topology, host, VdspId);
    if (!sim::OwnPort(d, HostPort) || !sim::IsHostPort(d, host) || AssignRule < ZENTREL_ASSIGN_RUNTIME ||
        AssignRule > ZENTREL_ASSIGN_BOTH || v == nullptr)
        return call.Return(sim::kStatusInvalidParameter);
    if ((AssignRule & ZENTREL_ASSIGN_RUNTIME) != 0) v->port = ZENTREL_VDSP_NO_PORT;
    if ((AssignRule & ZENTREL_ASSIGN_PERSISTENT) != 0) v->savedPort = ZENTREL_VDSP_NO_PORT;
    sim::SyncAssignments(d);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetHostPortVDSPInfo(PTR_ZENTREL_DEVICE Device, uint32_t HostPort,
                                                            PTR_ZENTREL_SWITCH_HOST_PORT_VDSP_INFO Info) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    uint32_t host = ZENTREL_DESCRIPTOR_PORT(HostPort);
    if (Info == nullptr || !sim::OwnPort(d, HostPort) || !sim::IsHostPort(d, host))
        return call.Return(sim::kStatusInvalidParameter);
    memset(Info, 0, sizeof *Info);
    for (const sim::Vdsp &v : d.topology.vdsps) {
        if (v.hostPort != host || Info->NumEntries == ZENTREL_VDSP_ENTRIES) continue;
        ZENTREL_VDSP_ENTRY &e = Info->Entries[Info->NumEntries++];
        e.Valid = 1;
        e.VdspId = v.id;
        e.PhysicalPort = v.port;
        e.SwitchId = v.port == ZENTREL_VDSP_NO_PORT ? 0 : d.topology.switchId;
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Reads DataLength bytes of a capability's registers into the data area
// (which the caller makes that long).
ZENTREL_STATUS simlib::ZentrelSwitchReadPortCSR(PTR_ZENTREL_DEVICE Device,
                                                    PTR_ZENTREL_SWITCH_PORT_CSR_ACCESS Access) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    if (Access == nullptr || !sim::CsrAccessValid(d, *Access)) return call.Return(sim::kStatusInvalidParameter);
    uint8_t *data = reinterpret_cast<uint8_t *>(Access) + offsetof(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data);
    for (uint32_t i = 0; i < Access->DataLength; ++i)
        data[i] = sim::RegisterByte(d, Access->PortNum, Access->IsExtendedCap != 0, Access->PcieCapId,
                                    Access->Offset + i);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchWritePortCSR(PTR_ZENTREL_DEVICE Device,
                                                     PTR_ZENTREL_SWITCH_PORT_CSR_ACCESS Access) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Access == nullptr || !sim::CsrAccessValid(d, *Access)) return call.Return(sim::kStatusInvalidParameter);
    const uint8_t *data = reinterpret_cast<const uint8_t *>(Access) + offsetof(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data);
    for (uint32_t i = 0; i < Access->DataLength; ++i)
        d.topology.csrWrites[sim::CsrKey(Access->PortNum, Access->IsExtendedCap, Access->PcieCapId,
                                         static_cast<uint16_t>(Access->Offset + i))] = data[i];
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A disabled port's link is down until the port is enabled again.
ZENTREL_STATUS simlib::ZentrelSwitchControlPortEnbl(PTR_ZENTREL_DEVICE Device, uint32_t Port) {
    return sim::PortControl(__func__, Device, Port, true);
}

ZENTREL_STATUS simlib::ZentrelSwitchControlPortDsbl(PTR_ZENTREL_DEVICE Device, uint32_t Port) {
    return sim::PortControl(__func__, Device, Port, false);
}

// The flags are read from the capability registers, so register writes
// show: hot-plug capable in the slot capabilities, MSI and MSI-X enables
// in their message control, AER and virtual channel by their presence.
ZENTREL_STATUS simlib::ZentrelSwitchGetPciCapabilities(PTR_ZENTREL_DEVICE Device, uint8_t Port,
                                                           PTR_ZENTREL_SWITCH_PCI_CAPABILITIES Capabilities) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    if (Capabilities == nullptr || !sim::IsPort(d, Port)) return call.Return(sim::kStatusInvalidParameter);
    memset(Capabilities, 0, sizeof *Capabilities);
    Capabilities->HotPlug = sim::RegisterBit(d, Port, false, sim::kCapPcie, 0x14, 6) ? 1 : 0;
    Capabilities->Aer = sim::HasCapability(d, Port, true, sim::kExtAer) ? 1 : 0;
    Capabilities->Msi = sim::RegisterBit(d, Port, false, sim::kCapMsi, 2, 0) ? 1 : 0;
    Capabilities->MsiX = sim::RegisterBit(d, Port, false, sim::kCapMsix, 2, 15) ? 1 : 0;
    Capabilities->VirtualChannel = sim::HasCapability(d, Port, true, sim::kExtVirtualChannel) ? 1 : 0;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetProperties(PTR_ZENTREL_DEVICE Device,
                                                      PTR_ZENTREL_SWITCH_GET_PROP_RESP Response) {
    return sim::ReadFromDevice(__func__, Device, Response,
                               [](const sim::Device &d) { return d.topology.properties; });
}

// Buffer 0's access flags of a host port, for the current session, future
// sessions or both; the control setting cannot be set.
ZENTREL_STATUS simlib::ZentrelSwitchSetMpiMgmtPage(PTR_ZENTREL_DEVICE Device,
                                                       PTR_ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    sim::Device &d = call.Target();
    if (Request == nullptr || !sim::IsHostPort(d, Request->HostPort)) return call.Return(sim::kStatusInvalidParameter);
    if (Request->SetOption == ZENTREL_MPI_CONTROL_SETTING) return call.Return(ZENTREL_STATUS_FEATURE_UNSUPPORTED);
    uint32_t update = Request->UpdateSettings & 3u;
    if (Request->SetOption != ZENTREL_MPI_BUFFER_ACCESS || Request->BufferId != ZENTREL_MPI_FW_DOWNLOAD_BUFFER ||
        Request->AccessFlags > ZENTREL_MPI_ACCESS_LAST || update == 0)
        return call.Return(sim::kStatusInvalidParameter);
    sim::MpiPage &m = d.topology.mpi[Request->HostPort];
    if ((update & ZENTREL_MPI_UPDATE_CURRENT) != 0) m.access = Request->AccessFlags;
    if ((update & ZENTREL_MPI_UPDATE_FUTURE) != 0) m.savedAccess = Request->AccessFlags;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetMpiMgmtPage(PTR_ZENTREL_DEVICE Device,
                                                       PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ Request,
                                                       PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    const sim::Device &d = call.Target();
    if (Request == nullptr || Response == nullptr || !sim::IsHostPort(d, Request->HostPort) ||
        Request->GetOption > ZENTREL_MPI_CONTROL_SETTING ||
        (Request->GetOption == ZENTREL_MPI_BUFFER_ACCESS && Request->BufferId != ZENTREL_MPI_FW_DOWNLOAD_BUFFER))
        return call.Return(sim::kStatusInvalidParameter);
    const sim::MpiPage &m = d.topology.mpi[Request->HostPort];
    memset(Response, 0, sizeof *Response);
    Response->HostPort = Request->HostPort;
    Response->GetOption = Request->GetOption;
    Response->BufferId = Request->BufferId;
    Response->Value = Request->GetOption == ZENTREL_MPI_BUFFER_ACCESS ? m.access : m.control;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
