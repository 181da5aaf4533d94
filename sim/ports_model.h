// What a simulated switch knows of its ports: their properties, their error
// counters and registers, and the packet RAM soft-error counters.
#ifndef ZENTREL_SIM_PORTS_MODEL_H
#define ZENTREL_SIM_PORTS_MODEL_H

#include <cstdint>

#include "zentrel_ports.h"

namespace sim {

struct PortsModel {
    // Entry i describes port i; a port exists when its entry is valid.
    ZENTREL_SWITCH_PORT_ENTRY ports[ZENTREL_PORT_COUNT];
    // The counters and registers of each port. The station, station port,
    // global id and link speed are the port's own when read; PortNumber is
    // what the switch reports as the port's number (normally the port).
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS errors[ZENTREL_PORT_COUNT];
    ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT packetRam;
};

struct Device;

// The port's entry as the switch reports it: a port whose link is held
// down shows no width and no active lanes.
ZENTREL_SWITCH_PORT_ENTRY Shown(const Device &d, uint32_t port);

}  // namespace sim

#endif
