// What a simulated switch knows of its topology beyond the port properties:
// the host ports' segments and vDSPs, the devices below the downstream
// ports, port enables, capability register writes, its properties and the
// MPI management page of each host port. Port types, buses, slots, links
// and attached devices are read from the ports model.
#ifndef ZENTREL_SIM_TOPOLOGY_MODEL_H
#define ZENTREL_SIM_TOPOLOGY_MODEL_H

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

#include "zentrel_ports.h"
#include "zentrel_topology.h"

namespace sim {

// A vDSP of a host port and the downstream port bound to it, at runtime
// and in the configuration page (ZENTREL_VDSP_NO_PORT: none).
struct Vdsp {
    uint8_t hostPort;
    uint8_t id;
    uint8_t port;
    uint8_t savedPort;
};

// A device below a downstream port besides the one the port properties
// show: another function of that device, or a device below it (a bridge's
// child), with `belowDevice` set.
struct ExtraDevice {
    uint8_t port;
    bool belowDevice;
    uint16_t vendorId, deviceId, subsystemVendorId, subsystemId;
    uint32_t classCode;
    uint8_t revision;
    uint32_t flags;
};

// A capability register byte: port, extended, capability id, offset.
using CsrKey = std::tuple<uint8_t, uint8_t, uint32_t, uint16_t>;

struct MpiPage {
    uint8_t access;       // buffer 0 access flags in the current session
    uint8_t savedAccess;  // for future sessions
    uint8_t control;      // MPI management control setting
};

// Reasons that hold a port's link down; each is set and cleared on its own.
constexpr uint8_t kDownByPortControl = 1;  // the port was disabled
constexpr uint8_t kDownByCondition = 2;    // a link-down condition holds

struct TopologyModel {
    uint8_t switchId;                      // the switch number of descriptors
    bool segmentLookup;                    // finds ports by segment
    uint8_t segment[ZENTREL_PORT_COUNT];   // a host port's segment
    // Why a port's link is down (kDownBy... bits); 0: the link is as the port
    // table has it.
    uint8_t disabled[ZENTREL_PORT_COUNT];
    std::vector<Vdsp> vdsps;
    std::vector<ExtraDevice> extraDevices;
    std::map<CsrKey, uint8_t> csrWrites;
    MpiPage mpi[ZENTREL_PORT_COUNT];
    ZENTREL_SWITCH_GET_PROP_RESP properties;
};

}  // namespace sim

#endif
