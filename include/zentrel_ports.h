/*
 * Ports and topology: port properties, port error statistics with their
 * Advanced Error Reporting registers, and packet RAM soft errors.
 */
#ifndef ZENTREL_PORTS_H
#define ZENTREL_PORTS_H

#include "zentrel_types.h"

/* Ports 0 to 143; the low four bits are the port's first lane in its
 * station of 16 lanes. */
#define ZENTREL_PORT_COUNT 144u
#define ZENTREL_STATION_LANES 16u

/* Port types (PortType). */
#define ZENTREL_PORT_TYPE_DOWNSTREAM 0u
#define ZENTREL_PORT_TYPE_FABRIC 1u
#define ZENTREL_PORT_TYPE_MANAGEMENT 2u
#define ZENTREL_PORT_TYPE_HOST 3u
#define ZENTREL_PORT_TYPE_HOST_ALT 5u
#define ZENTREL_PORT_TYPE_DOWNSTREAM_ALT 6u

/* Clock modes (ClockMode). */
#define ZENTREL_CLOCK_MODE_COMMON 0u
#define ZENTREL_CLOCK_MODE_SRIS 1u
#define ZENTREL_CLOCK_MODE_SSC 2u

/* Lane clock sources (LaneClockSource): 0 system clock, 1 SSC PLL,
 * 8 to 15 the station clocks S0Clk to S7Clk. */
#define ZENTREL_LANE_CLOCK_SYS 0u
#define ZENTREL_LANE_CLOCK_SSC_PLL 1u
#define ZENTREL_LANE_CLOCK_S0 8u

/* What a downstream port knows of its buses, slot and attached device. */
typedef struct ZENTREL_PORT_DOWNSTREAM_INFO {
    uint8_t SecondaryBus;
    uint8_t SubordinateBus;
    uint8_t Reserved2[2];
    uint8_t HostPort;        /* the host port it is assigned to */
    uint8_t Reserved5[3];
    uint16_t SlotNumber;     /* physical slot */
    uint8_t Reserved10[2];
    uint32_t DeviceAttached; /* non-zero: a device answers behind the port */
    uint16_t DeviceVendorId;
    uint16_t DeviceDeviceId;
} ZENTREL_PORT_DOWNSTREAM_INFO;

/* What a host port knows of the downstream ports assigned to it. */
typedef struct ZENTREL_PORT_HOST_INFO {
    uint8_t AssignedPorts[18]; /* port n = bit n % 8 of byte n / 8 */
    uint8_t Reserved18[2];
} ZENTREL_PORT_HOST_INFO;

/* One port of the properties record; the downstream and host views share
 * their bytes. */
typedef struct ZENTREL_SWITCH_PORT_ENTRY {
    uint32_t PortType;              /* ZENTREL_PORT_TYPE_... */
    uint32_t PortNumber;
    uint8_t Valid;                  /* 0: no such port, the entry is skipped */
    uint8_t Reserved9[3];
    uint32_t Gid;
    uint32_t MaxReadRequestSize;
    uint32_t MaxPayloadSize;
    uint32_t MaxPayloadSizeSupported;
    uint32_t NegotiatedLinkSpeed;   /* generation 1 to 5 */
    uint32_t MaxLinkSpeed;          /* generation 1 to 5 */
    uint32_t NegotiatedLinkWidth;   /* lanes; 0 = link down */
    uint32_t MaxLinkWidth;          /* lanes; the low byte counts the lanes */
    uint32_t ClockMode;             /* ZENTREL_CLOCK_MODE_... */
    uint8_t Reserved48[4];
    union {
        ZENTREL_PORT_DOWNSTREAM_INFO Downstream;
        ZENTREL_PORT_HOST_INFO Host;
    } Role;
    uint8_t Reserved72[2];
    uint8_t DeviceSubClass;         /* attached device */
    uint8_t Reserved75;
    uint32_t DeviceClassCode;       /* attached device */
    uint16_t SubsystemVendorId;     /* attached device's, or a host port's own */
    uint16_t SubsystemId;
    uint8_t Reserved84[4];
    uint8_t DeviceLinkSpeed;        /* attached device, generation */
    uint8_t DeviceMaxLinkSpeed;
    uint8_t Reserved90[6];
    uint16_t ActiveLanes;           /* bit = station lane */
    uint16_t LaneRxDetect;
    uint8_t Dpr;
    uint8_t Reserved101[3];
    uint8_t LaneClockSource[16];    /* by station lane; ZENTREL_LANE_CLOCK_... */
    uint8_t Reserved120[2];
    uint16_t DpcControl;            /* PCIe DPC Control register */
    uint8_t DpcStatus;              /* PCIe DPC Status register, low byte */
    uint8_t Reserved125;
    uint16_t DpcErrorSourceId;
    uint8_t Reserved128[4];
    uint8_t Gen3EqStatus;           /* bit 0 complete, bits 1-3 phase 1-3 success */
    uint8_t Gen4EqStatus;
    uint8_t Gen5EqStatus;
    uint8_t Reserved135[17];
    uint32_t LaneReversal;
    uint32_t LinkPowerState;
    uint32_t RxEvalCount;           /* receive data quality evaluations in recovery equalization */
} ZENTREL_SWITCH_PORT_ENTRY;

ZENTREL_ASSERT_SIZE(ZENTREL_PORT_DOWNSTREAM_INFO, 20);
ZENTREL_ASSERT_SIZE(ZENTREL_PORT_HOST_INFO, 20);
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PORT_ENTRY, 164);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, PortType, 0x00);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, PortNumber, 0x04);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Valid, 0x08);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Gid, 0x0C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, MaxReadRequestSize, 0x10);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, MaxPayloadSize, 0x14);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, MaxPayloadSizeSupported, 0x18);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, NegotiatedLinkSpeed, 0x1C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, MaxLinkSpeed, 0x20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, NegotiatedLinkWidth, 0x24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, MaxLinkWidth, 0x28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, ClockMode, 0x2C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.SecondaryBus, 0x34);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.SubordinateBus, 0x35);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.HostPort, 0x38);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.SlotNumber, 0x3C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.DeviceAttached, 0x40);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.DeviceVendorId, 0x44);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Downstream.DeviceDeviceId, 0x46);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Role.Host.AssignedPorts, 0x34);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DeviceSubClass, 0x4A);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DeviceClassCode, 0x4C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, SubsystemVendorId, 0x50);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, SubsystemId, 0x52);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DeviceLinkSpeed, 0x58);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DeviceMaxLinkSpeed, 0x59);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, ActiveLanes, 0x60);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, LaneRxDetect, 0x62);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Dpr, 0x64);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, LaneClockSource, 0x68);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DpcControl, 0x7A);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DpcStatus, 0x7C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, DpcErrorSourceId, 0x7E);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Gen3EqStatus, 0x84);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Gen4EqStatus, 0x85);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, Gen5EqStatus, 0x86);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, LaneReversal, 0x98);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, LinkPowerState, 0x9C);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ENTRY, RxEvalCount, 0xA0);

/* Filled by ZentrelSwitchGetPciePortProperties (every port) and by
 * ZentrelSwitchGetSinglePortPciePortProperties (one port). */
typedef struct ZENTREL_SWITCH_PORT_PROPERTIES {
    uint8_t Header[28];
    ZENTREL_SWITCH_PORT_ENTRY Ports[ZENTREL_PORT_COUNT]; /* entry i at 28 + 164 i */
    uint8_t Reserved23644[7872];
} ZENTREL_SWITCH_PORT_PROPERTIES, *PTR_ZENTREL_SWITCH_PORT_PROPERTIES;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PORT_PROPERTIES, 31516);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_PROPERTIES, Ports, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_PROPERTIES, Reserved23644, 23644);

/* Filled by ZentrelSwitchGetPciPortErrorStatistics for one port. The
 * registers have the layouts of the PCIe Device Status error bits and of
 * the Advanced Error Reporting capability. */
typedef struct ZENTREL_SWITCH_PORT_ERROR_STATISTICS {
    uint8_t StationNumber;
    uint8_t StationPort;            /* port number within the station */
    uint8_t PortNumber;
    uint8_t Reserved3;
    uint32_t GlobalId;
    uint32_t PortReceiverErrors;
    uint32_t BadTlpErrors;
    uint32_t BadDllpErrors;
    uint32_t RecoveryDiagnosticsErrors;
    uint32_t LinkDownCount;
    uint8_t Reserved28[64];
    uint32_t LinkSpeed;
    uint32_t ErrorStatus;           /* bit 0 correctable, 1 non-fatal, 2 fatal, 3 unsupported request */
    uint32_t UncorrectableStatus;
    uint32_t CorrectableStatus;
    uint32_t AdvCapControl;         /* Advanced Error Capabilities and Control */
    uint32_t UncorrectableMask;
    uint32_t CorrectableMask;
    uint32_t UncorrectableSeverity;
    uint8_t Reserved124[8];
    uint32_t FramingStatus;         /* framing error and counter status bits */
    uint16_t SerdesStatus;          /* non-zero: a serdes error */
    uint8_t Reserved138[2];
} ZENTREL_SWITCH_PORT_ERROR_STATISTICS, *PTR_ZENTREL_SWITCH_PORT_ERROR_STATISTICS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, 140);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, StationNumber, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, StationPort, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, PortNumber, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, GlobalId, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, PortReceiverErrors, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, BadTlpErrors, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, BadDllpErrors, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, RecoveryDiagnosticsErrors, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, LinkDownCount, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, LinkSpeed, 92);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, ErrorStatus, 96);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, UncorrectableStatus, 100);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, CorrectableStatus, 104);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, AdvCapControl, 108);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, UncorrectableMask, 112);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, CorrectableMask, 116);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, UncorrectableSeverity, 120);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, FramingStatus, 132);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_ERROR_STATISTICS, SerdesStatus, 136);

/* Packet RAM soft-error counters of one station: 21 u32 words. */
#define ZENTREL_PKT_RAM_STATION_VALID 0x1u
typedef struct ZENTREL_PACKET_RAM_STATION {
    uint32_t Valid;                 /* bit 0: the station's counters are valid */
    uint32_t PacketLinkList;
    uint32_t HeaderRam0[2];         /* instance 0 and 1 */
    uint32_t HeaderRam1[2];
    uint32_t PayloadRam0[2];
    uint32_t PayloadRam1[2];
    uint32_t SourceQueueLinkList;
    uint32_t DestinationQueueLinkList;
    uint32_t RegisterFile;
    uint32_t RetryBuffer;
    uint32_t DestinationQueueData;
    uint32_t Reserved15;
    uint32_t TecAlut;
    uint32_t TecDma[2];             /* RAM0 and RAM1 */
    uint32_t TecGlobalToLocal;
    uint32_t Reserved20;
} ZENTREL_PACKET_RAM_STATION;

#define ZENTREL_PKT_RAM_STATIONS 12u

/* Filled by ZentrelSwitchPacketRamSoftErrorCount. */
typedef struct ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT {
    ZENTREL_PACKET_RAM_STATION Stations[ZENTREL_PKT_RAM_STATIONS];
} ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT, *PTR_ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT;

ZENTREL_ASSERT_SIZE(ZENTREL_PACKET_RAM_STATION, 84);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, Valid, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, PacketLinkList, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, HeaderRam0, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, HeaderRam1, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, PayloadRam0, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, PayloadRam1, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, SourceQueueLinkList, 40);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, DestinationQueueLinkList, 44);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, RegisterFile, 48);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, RetryBuffer, 52);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, DestinationQueueData, 56);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, TecAlut, 64);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, TecDma, 68);
ZENTREL_ASSERT_OFFSET(ZENTREL_PACKET_RAM_STATION, TecGlobalToLocal, 76);
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT, 1008);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPciePortProperties(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_PORT_PROPERTIES Properties);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSinglePortPciePortProperties(PTR_ZENTREL_DEVICE Device, uint32_t Port,
                                                                        PTR_ZENTREL_SWITCH_PORT_PROPERTIES Properties);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPciPortErrorStatistics(PTR_ZENTREL_DEVICE Device, uint32_t Port,
                                                                  PTR_ZENTREL_SWITCH_PORT_ERROR_STATISTICS Statistics);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchResetPciPortErrorStatistics(PTR_ZENTREL_DEVICE Device, uint32_t Port);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchPacketRamSoftErrorCount(PTR_ZENTREL_DEVICE Device,
                                                                PTR_ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT Count);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchResetPacketRamSoftErrorCount(PTR_ZENTREL_DEVICE Device);

#endif
