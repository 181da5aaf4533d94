// Port properties: the port table, the downstream and host tables, and the
// additional status (DPC, equalization, lane clock sources) of every port.
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "ports.h"

namespace {

// The device generation whose switches have no sub-class code to show.
constexpr uint32_t kGenerationWithoutSubClass = 2;

const char kNone[] = "-";

// Name of a code from a table indexed by code; other codes print "-".
template <size_t N>
const char *CodeName(const char *const (&names)[N], uint32_t code) {
    if (code >= N || names[code] == nullptr) return kNone;
    return names[code];
}

const char *const kTypeNames[] = {"Down", "Fab", "Mgmt", "Host", nullptr, "Host", "Down"};
const char *const kSpeedNames[] = {nullptr, "Gen1", "Gen2", "Gen3", "Gen4", "Gen5"};
const char *const kClockModeNames[] = {"Common", "SRIS", "SSC"};
const char *const kTriggerReasonNames[] = {"UCErr", "NoFatal", "Fatal", "Other"};
const char *const kLaneClockNames[] = {
    "SysClk", "SSC PLL", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    "S0Clk", "S1Clk", "S2Clk", "S3Clk", "S4Clk", "S5Clk", "S6Clk", "S7Clk",
};

const char *WidthName(uint32_t width) {
    switch (width) {
    case 1: return "x1";
    case 2: return "x2";
    case 4: return "x4";
    case 8: return "x8";
    case 16: return "x16";
    default: return kNone;
    }
}

bool IsDownstream(const ZENTREL_SWITCH_PORT_ENTRY &e) {
    return e.PortType == ZENTREL_PORT_TYPE_DOWNSTREAM || e.PortType == ZENTREL_PORT_TYPE_DOWNSTREAM_ALT;
}

bool IsHost(const ZENTREL_SWITCH_PORT_ENTRY &e) {
    return e.PortType == ZENTREL_PORT_TYPE_HOST || e.PortType == ZENTREL_PORT_TYPE_HOST_ALT;
}

int AsInt(uint32_t value) {
    return static_cast<int>(value);
}

uint32_t StationLane(const ZENTREL_SWITCH_PORT_ENTRY &e) {
    return e.PortNumber & (ZENTREL_STATION_LANES - 1);
}

uint32_t LaneCount(const ZENTREL_SWITCH_PORT_ENTRY &e) {
    return e.MaxLinkWidth & 0xFFu;
}

// The lanes of the port that are active, numbered from the port's first
// lane. The bitmap has one bit per station lane, so lanes beyond station
// lane 15 are never shown.
void PrintActiveLanes(FILE *out, const ZENTREL_SWITCH_PORT_ENTRY &e) {
    bool any = false;
    uint32_t active = e.ActiveLanes;
    for (uint32_t lane = 0; lane < LaneCount(e); ++lane) {
        uint32_t bit = (lane + StationLane(e)) & 0xFFu;
        if (bit < 32 && (active >> bit & 1u) != 0) {
            fprintf(out, "%d,", AsInt(lane));
            any = true;
        }
    }
    if (any)
        fprintf(out, "%-7s", " ");
    else
        fprintf(out, "%-15s", kNone);
}

void PrintPortTable(FILE *out, const ZENTREL_SWITCH_PORT_PROPERTIES &p) {
    fprintf(out, "\n");
    fprintf(out, "Type:  Port type Down-Downstream, Up-Upstream, Fab-Fabric Mode, Mgmt-Management\n");
    fprintf(out, "MRR:   Max Read Request Size                 MPSS: Max Payload Size Supported\n");
    fprintf(out, "MPS:   Max Payload Size                      Link: Link Width by Negotiated/Maximum\n");
    fprintf(out, "Speed: Link Speed by Negotiated/Maximum   ClkMode: Clock Mode\n");
    fprintf(out, "%-5s %-10s %-5s %-5s %-5s %-5s %-13s %-10s %-7s  %-5s  %-15s %-5s", "Port", "GID", "Type", "MRR",
            "MPS", "MPSS", "LinkSpeed", "LinkWidth", "ClkMode", "Up?", "ActiveLanes", "DPR");
    fprintf(out, "\n");
    fprintf(out, "----- ----- ----- ----- ----- ------------- ---------- -------- ----- ------------ ------------ ------");
    fprintf(out, "\n");
    for (const ZENTREL_SWITCH_PORT_ENTRY &e : p.Ports) {
        if (e.Valid == 0) continue;
        bool up = e.NegotiatedLinkWidth != 0;
        fprintf(out, "%-5d ", AsInt(e.PortNumber));
        fprintf(out, "%-10x ", e.Gid);
        fprintf(out, "%-5s ", CodeName(kTypeNames, e.PortType));
        fprintf(out, "%-5d ", AsInt(e.MaxReadRequestSize));
        fprintf(out, "%-5d ", AsInt(e.MaxPayloadSize));
        fprintf(out, "%-5d ", AsInt(e.MaxPayloadSizeSupported));
        fprintf(out, "%-5s/ ", up ? CodeName(kSpeedNames, e.NegotiatedLinkSpeed) : kNone);
        fprintf(out, "%-5s  ", CodeName(kSpeedNames, e.MaxLinkSpeed));
        fprintf(out, "%-4s/ ", WidthName(e.NegotiatedLinkWidth));
        fprintf(out, "%-4s ", WidthName(e.MaxLinkWidth));
        fprintf(out, "%-7s  ", CodeName(kClockModeNames, e.ClockMode));
        fprintf(out, "%-10s", up ? "Up" : "Down");
        PrintActiveLanes(out, e);
        fprintf(out, "%d", e.Dpr);
        fprintf(out, "\n\n");
    }
}

void PrintDownstreamTable(FILE *out, const ZENTREL_SWITCH_PORT_PROPERTIES &p, bool showSubClass) {
    fprintf(out, "\n");
    fprintf(out, "Downstream Ports \n");
    fprintf(out, "\n");
    fprintf(out, "%-5s %-12s %-17s  %-19s  %-57s %-14s %17s", "Port", "DS Buses", "Phys Slot Number",
            "Assigned Host Port", "Attached Device VID DID SVD SID ClassCode SubClassCode", "LinkSpeed[Gen]",
            "MaxLinkSpeed[Gen]");
    fprintf(out, "\n");
    fprintf(out, "----- ----- ----- ----- ----- ------------- ---------- -------- ----- ------------------ -----------");
    fprintf(out, "\n");
    for (const ZENTREL_SWITCH_PORT_ENTRY &e : p.Ports) {
        if (e.Valid == 0 || !IsDownstream(e)) continue;
        const ZENTREL_PORT_DOWNSTREAM_INFO &ds = e.Role.Downstream;
        fprintf(out, "%-5d", AsInt(e.PortNumber));
        fprintf(out, "%5Xh", ds.SecondaryBus);
        fprintf(out, "->");
        fprintf(out, "%Xh      ", ds.SubordinateBus);
        fprintf(out, "%-17d", ds.SlotNumber);
        fprintf(out, "%-19d", ds.HostPort);
        if (ds.DeviceAttached != 0) {
            fprintf(out, "%25Xh", ds.DeviceVendorId);
            fprintf(out, "%5Xh", ds.DeviceDeviceId);
            fprintf(out, "%5Xh", e.SubsystemVendorId);
            fprintf(out, "%5Xh", e.SubsystemId);
            fprintf(out, "%5Xh", e.DeviceClassCode);
            if (showSubClass)
                fprintf(out, "%5Xh", e.DeviceSubClass);
            else
                fprintf(out, "%5s", kNone);
            fprintf(out, "%14d\t", e.DeviceLinkSpeed);
            fprintf(out, "%17d\t", e.DeviceMaxLinkSpeed);
        }
        fprintf(out, "\n");
    }
}

void PrintHostTable(FILE *out, const ZENTREL_SWITCH_PORT_PROPERTIES &p) {
    fprintf(out, "\n");
    fprintf(out, "Host Ports: \n");
    fprintf(out, "\n");
    fprintf(out, "%-5s %-9s %-9s %-17s", "Port", "SubVenId", "SubDevId", "Assigned DS Ports\n");
    fprintf(out, "----- --------- --------- ------------------");
    fprintf(out, "\n");
    for (const ZENTREL_SWITCH_PORT_ENTRY &e : p.Ports) {
        if (e.Valid == 0 || !IsHost(e)) continue;
        fprintf(out, "%-5d", AsInt(e.PortNumber));
        fprintf(out, " %9Xh ", e.SubsystemVendorId);
        fprintf(out, " %9Xh ", e.SubsystemId);
        for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port)
            if ((e.Role.Host.AssignedPorts[port / 8] >> (port % 8) & 1u) != 0) fprintf(out, "%d, ", AsInt(port));
        fprintf(out, "\n");
    }
}

// A single-bit setting of the DPC control register, shown as Yes/No.
struct DpcFlag {
    uint8_t bit;
    const char *label;
};

const DpcFlag kDpcControlFlags[] = {
    {3, "DPC Interrupt Enable"},
    {4, "DPC ERR_CORR Enable"},
    {5, "Poisoned TLP Egress Blocking Enable"},
    {6, "DPC Software Triggering Enable"},
    {7, "DL_Active ERR_CORR Enable"},
    {8, "DPC SIG_SFW Enable"},
};

const char *const kEqLabels[] = {"EQ Complete", "EQ Phase 1 Success", "EQ Phase 2 Success", "EQ Phase 3 Success"};

void PrintNumber(FILE *out, const char *label, uint32_t value) {
    fprintf(out, "%25s : %d\n", label, AsInt(value));
}

void PrintText(FILE *out, const char *label, const char *text) {
    fprintf(out, "%25s : %s\n", label, text);
}

void PrintEqualization(FILE *out, const char *title, uint8_t status) {
    fprintf(out, "%s : ", title);
    fprintf(out, "\n");
    for (uint32_t bit = 0; bit < 4; ++bit) PrintNumber(out, kEqLabels[bit], status >> bit & 1u);
}

// The clock source of each of the port's lanes, read from the byte at
// LaneClockSource[first station lane + lane]. For lanes beyond station lane
// 15 that byte lies past the 16 sources, in the bytes that follow them in
// the record, and is named like any other code.
void PrintLaneClocks(FILE *out, const ZENTREL_SWITCH_PORT_PROPERTIES &p, size_t index) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = p.Ports[index];
    const uint8_t *raw = reinterpret_cast<const uint8_t *>(&p);
    size_t first = offsetof(ZENTREL_SWITCH_PORT_PROPERTIES, Ports) + index * sizeof(ZENTREL_SWITCH_PORT_ENTRY) +
                   offsetof(ZENTREL_SWITCH_PORT_ENTRY, LaneClockSource) + StationLane(e);
    for (uint32_t lane = 0; lane < LaneCount(e); ++lane) {
        fprintf(out, "%25s : %d", "Lane", AsInt(lane));
        fprintf(out, "\n");
        // Always inside the record: the last entry ends far before its end.
        size_t at = first + lane;
        uint8_t source = at < sizeof p ? raw[at] : 0xFFu;
        PrintText(out, "clock source", CodeName(kLaneClockNames, source));
    }
}

void PrintAdditionalStatus(FILE *out, const ZENTREL_SWITCH_PORT_PROPERTIES &p, size_t index) {
    const ZENTREL_SWITCH_PORT_ENTRY &e = p.Ports[index];
    fprintf(out, "port number = %d\n", AsInt(e.PortNumber));
    fprintf(out, "Lane Rx Detect Stat =%d\n", e.LaneRxDetect);
    fprintf(out, "Lane Reversal Status for Requested Port =%d\n", AsInt(e.LaneReversal));
    fprintf(out, "Link Power State Status =%d\n", AsInt(e.LinkPowerState));
    fprintf(out, "Number of times the receive data quality was evaluated during recovery Equalization State %d\n",
            AsInt(e.RxEvalCount));
    fprintf(out, "%s : \n", "DPC Information");
    uint32_t control = e.DpcControl;
    PrintNumber(out, "DPC Trigger Enable", control & 0x3u);
    PrintText(out, "DPC Completion Control", (control >> 2 & 1u) != 0 ? "UR" : "CA");
    for (const DpcFlag &flag : kDpcControlFlags)
        PrintText(out, flag.label, (control >> flag.bit & 1u) != 0 ? "Yes" : "No");
    uint32_t status = e.DpcStatus;
    PrintNumber(out, "DPC Trigger Status", status & 1u);
    PrintText(out, "DPC Trigger Reason", kTriggerReasonNames[status >> 1 & 0x3u]);
    PrintNumber(out, "DPC Interrupt Status", status >> 3 & 1u);
    PrintNumber(out, "DPC RP Busy", status >> 4 & 1u);
    PrintNumber(out, "DPC Error Source ID", e.DpcErrorSourceId);
    PrintEqualization(out, "Equalization status for Gen3", e.Gen3EqStatus);
    PrintEqualization(out, "Equalization status for Gen4", e.Gen4EqStatus);
    PrintEqualization(out, "Equalization status for Gen5", e.Gen5EqStatus);
    fprintf(out, "%s : ", "Clock source for Lanes");
    fprintf(out, "\n");
    PrintLaneClocks(out, p, index);
}

// Reads one port's properties (port >= 0 as typed) or every port's, and
// prints them. Failures are reported; the result is always 0.
uint32_t ReadAndPrint(PTR_ZENTREL_DEVICE device, bool singlePort, int32_t port) {
    auto *properties =
        static_cast<PTR_ZENTREL_SWITCH_PORT_PROPERTIES>(AllocZeroed(sizeof(ZENTREL_SWITCH_PORT_PROPERTIES)));
    if (properties == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_PORT_PROPERTIES\n");
        return 0;
    }
    ZENTREL_STATUS status;
    if (singlePort) {
        printf("Reading port properties for port 0x%x", static_cast<unsigned>(port));
        status = ZentrelSwitchGetSinglePortPciePortProperties(device, static_cast<uint32_t>(port), properties);
    } else {
        printf("Reading port properties for all ports.Please wait...\n");
        status = ZentrelSwitchGetPciePortProperties(device, properties);
    }
    // The single-port read reports its failure under the same name.
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetPciePortProperties ().. return Status -  %x \n", status);
    } else {
        printf("\n---- Port Properties ----\n");
        PrintPortProperties(properties, stdout);
    }
    FreeBuffer(properties);
    return 0;
}

}  // namespace

uint32_t PrintPortProperties(const ZENTREL_SWITCH_PORT_PROPERTIES *properties, FILE *stream) {
    ZENTREL_DEVICE_INFO info;
    memset(&info, 0, sizeof info);
    // The selected switch's information, asked for by its handle.
    ZENTREL_STATUS status = ZentrelGetDeviceInfo(gSelectedDeviceHandle, ZENTREL_DEVICE_INFO_LENGTH, &info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        fprintf(stream, "Could not get the device information\n");
        return status;
    }
    const ZENTREL_SWITCH_PORT_PROPERTIES &p = *properties;
    PrintPortTable(stream, p);
    PrintDownstreamTable(stream, p, info.DeviceGeneration != kGenerationWithoutSubClass);
    PrintHostTable(stream, p);
    fprintf(stream, "Additional port status\n");
    fprintf(stream, "=======================\n");
    for (size_t i = 0; i < ZENTREL_PORT_COUNT; ++i)
        if (p.Ports[i].Valid != 0) PrintAdditionalStatus(stream, p, i);
    return 0;
}

uint32_t ReadAllPortProperties(PTR_ZENTREL_DEVICE device) {
    return ReadAndPrint(device, false, 0);
}

// From the command line every port is read; the menu asks whether to read
// one port only. The port number goes to the library as typed.
uint32_t GetPortProperties(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr) {
        if (WantsUsage(words)) {
            printf("Usage: zentrelLibTest -i 0 -portprop\n");
            return 0;
        }
        return ReadAllPortProperties(device);
    }
    printf("Do you want to read port information only for one port?(1 - Yes / 0 - No):");
    int32_t single = 0;
    ScanDecimal(&single);
    int32_t port = 0;
    if (single != 0) {
        printf("Input the port number:");
        ScanDecimal(&port);
    }
    return ReadAndPrint(device, single != 0, port);
}
