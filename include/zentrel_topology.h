/*
 * Ports and topology: port attributes by host address, the devices below
 * the downstream ports, vDSP binding, port CSR access, port control, PCI
 * capabilities, switch properties and the MPI management page.
 */
#ifndef ZENTREL_TOPOLOGY_H
#define ZENTREL_TOPOLOGY_H

#include "zentrel_types.h"

/* A host-side bus/device/function: bus in bits 15..8, device in 7..3,
 * function in 2..0. */
#define ZENTREL_BDF(bus, device, function) \
    ((uint16_t)((((bus) & 0xFFu) << 8) | (((device) << 3) & 0xFFu) | ((function) & 7u)))

/* ---- Port attributes ---- */

/* Request kinds (RequestKind). */
#define ZENTREL_PORT_ATTR_BY_SEGMENT 1u
#define ZENTREL_PORT_ATTR_BY_SLOT 2u
#define ZENTREL_PORT_ATTR_ALL 3u
/* Port types of an attribute entry; other types are not listed. */
#define ZENTREL_PORT_ATTR_DOWNSTREAM 0u
#define ZENTREL_PORT_ATTR_UPSTREAM 3u
/* The library's statuses with a meaning of their own. */
#define ZENTREL_STATUS_PORT_ATTR_TOO_MANY 0xB000011u /* the answer did not fit; TotalPorts says how many */
#define ZENTREL_STATUS_FEATURE_UNSUPPORTED 0x301u

typedef struct ZENTREL_SWITCH_GET_PORT_ATTR_REQ {
    uint8_t RequestKind;   /* ZENTREL_PORT_ATTR_... */
    uint8_t Reserved1;
    uint16_t SegmentOrSlot; /* segment (kind 1) or chassis physical slot (kind 2) */
    uint16_t HostBdf;
    uint8_t NumPorts;      /* entries the response has room for */
    uint8_t Reserved7[5];
} ZENTREL_SWITCH_GET_PORT_ATTR_REQ, *PTR_ZENTREL_SWITCH_GET_PORT_ATTR_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_PORT_ATTR_REQ, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PORT_ATTR_REQ, SegmentOrSlot, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PORT_ATTR_REQ, HostBdf, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PORT_ATTR_REQ, NumPorts, 6);

/* One port of the answer. From byte 26 on, the downstream and upstream
 * views share their bytes; the port type says which applies. */
typedef struct ZENTREL_PORT_ATTR_ENTRY {
    uint8_t Reserved0[2];
    uint8_t SegmentValid; /* bit 0 */
    uint8_t Segment;
    uint8_t PortNumber;
    uint8_t Station;
    uint8_t StationPort;
    uint8_t PortType;     /* ZENTREL_PORT_ATTR_... */
    uint8_t Reserved8[18];
    union {
        struct {
            uint16_t HostBdf;
            uint8_t Reserved28;
            uint8_t HostBdfValid; /* bit 0 */
            uint16_t SlotNumber;
        } Downstream;
        struct {
            uint8_t Reserved26[2];
            uint16_t HostBdf;
            uint8_t HostBdfValid; /* bit 0 */
            uint8_t Reserved31;
        } Upstream;
    } Role;
} ZENTREL_PORT_ATTR_ENTRY;

ZENTREL_ASSERT_SIZE(ZENTREL_PORT_ATTR_ENTRY, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, SegmentValid, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, PortType, 7);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, Role.Downstream.HostBdf, 26);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, Role.Downstream.HostBdfValid, 29);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, Role.Downstream.SlotNumber, 30);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, Role.Upstream.HostBdf, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_ATTR_ENTRY, Role.Upstream.HostBdfValid, 30);

/* The response: this head, NumPorts entries of the request, 4 spare bytes. */
typedef struct ZENTREL_SWITCH_GET_PORT_ATTR_RESP {
    uint16_t NumEntries;
    uint16_t TotalPorts;
    uint8_t Reserved4[4];
} ZENTREL_SWITCH_GET_PORT_ATTR_RESP, *PTR_ZENTREL_SWITCH_GET_PORT_ATTR_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_PORT_ATTR_RESP, 8);
#define ZENTREL_PORT_ATTR_RESP_LENGTH(ports) (8u + 32u * (ports) + 4u)

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPortAttr(PTR_ZENTREL_DEVICE Device,
                                                    PTR_ZENTREL_SWITCH_GET_PORT_ATTR_REQ Request,
                                                    PTR_ZENTREL_SWITCH_GET_PORT_ATTR_RESP Response);

/* ---- Downstream devices ---- */

/* Selectors: the counts, or the whole list. */
#define ZENTREL_DS_SELECT_COUNT 1u
#define ZENTREL_DS_SELECT_ALL 0xFFFFu
/* The count answer goes into a buffer of this size. */
#define ZENTREL_DS_COUNT_BUFFER_LENGTH 6928u
/* The list buffer: ((ports + devices - ports with devices) * 48 + 528)
 * bytes, cut to 16 bits; the library fills no more than that. */
#define ZENTREL_DS_LIST_LENGTH(ports, devices, portsWithDevices) \
    ((uint16_t)(((ports) + (devices) - (portsWithDevices)) * 48u + 528u))
/* The list did not fit that size; the blocks that fit are filled. */
#define ZENTREL_STATUS_DS_LIST_TOO_SMALL 0xB000012u

typedef struct ZENTREL_DS_DEVICE_COUNT {
    uint32_t TotalPorts;
    uint32_t PortsWithDevices;
    uint32_t TotalDevices;
} ZENTREL_DS_DEVICE_COUNT;

ZENTREL_ASSERT_SIZE(ZENTREL_DS_DEVICE_COUNT, 12);

/* The list: a 16-byte head, then the port blocks one after the other. */
typedef struct ZENTREL_DS_LIST_HEAD {
    uint32_t NumBlocks;
    uint8_t Reserved4[12];
} ZENTREL_DS_LIST_HEAD;

/* A port block: this head, then NumDevices device records; the next block
 * starts BlockSize bytes after this one. */
typedef struct ZENTREL_DS_PORT_BLOCK {
    uint16_t BlockSize;
    uint8_t Valid; /* 0: skip the block */
    uint8_t Reserved3[3];
    uint16_t PortId;
    uint8_t Reserved8[2];
    uint16_t NumDevices;
} ZENTREL_DS_PORT_BLOCK;

typedef struct ZENTREL_DS_DEVICE_RECORD {
    uint32_t Gid;
    uint32_t ParentGid;    /* the device it sits below */
    uint32_t Flags;
    uint16_t VendorId;
    uint16_t DeviceId;
    uint16_t SubsystemVendorId;
    uint16_t SubsystemId;
    uint32_t ClassCode;
    uint8_t AssignedToHost;
    uint8_t PciRevision;
    uint8_t HostPortNumber;
    uint8_t HostPortDomain;
    uint16_t HostPortSlot;
    uint16_t HostTreeRequesterId;
    uint8_t LinkSpeed;     /* generation << 1 */
    uint8_t MaxLinkSpeed;  /* generation << 1 */
    uint8_t Reserved34[2];
} ZENTREL_DS_DEVICE_RECORD;

ZENTREL_ASSERT_SIZE(ZENTREL_DS_LIST_HEAD, 16);
ZENTREL_ASSERT_SIZE(ZENTREL_DS_PORT_BLOCK, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_PORT_BLOCK, Valid, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_PORT_BLOCK, PortId, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_PORT_BLOCK, NumDevices, 10);
ZENTREL_ASSERT_SIZE(ZENTREL_DS_DEVICE_RECORD, 36);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, VendorId, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, ClassCode, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, AssignedToHost, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, HostPortSlot, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, HostTreeRequesterId, 30);
ZENTREL_ASSERT_OFFSET(ZENTREL_DS_DEVICE_RECORD, LinkSpeed, 32);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetDSAllDeviceInfo(PTR_ZENTREL_DEVICE Device, uint32_t Selector,
                                                           void *Buffer);

/* ---- vDSP binding ---- */

/* A port descriptor: switch number in bits 0..6 of byte 0, port in byte 3. */
#define ZENTREL_PORT_DESCRIPTOR(switchNumber, port) \
    ((uint32_t)((switchNumber) & 0x7Fu) | ((uint32_t)((port) & 0xFFu) << 24))
#define ZENTREL_DESCRIPTOR_SWITCH(descriptor) ((descriptor) & 0x7Fu)
#define ZENTREL_DESCRIPTOR_PORT(descriptor) ((descriptor) >> 24)

/* Assignment rules. */
#define ZENTREL_ASSIGN_RUNTIME 1u    /* runtime only */
#define ZENTREL_ASSIGN_PERSISTENT 2u /* the configuration page only */
#define ZENTREL_ASSIGN_BOTH 3u

#define ZENTREL_VDSP_NO_PORT 255u
#define ZENTREL_VDSP_ENTRIES 255u

typedef struct ZENTREL_VDSP_ENTRY {
    uint8_t Valid;
    uint8_t VdspId;
    uint8_t PhysicalPort; /* ZENTREL_VDSP_NO_PORT: none */
    uint8_t Reserved3;
    uint16_t SwitchId;
} ZENTREL_VDSP_ENTRY;

typedef struct ZENTREL_SWITCH_HOST_PORT_VDSP_INFO {
    uint8_t Reserved0[4];
    uint8_t NumEntries;
    uint8_t Reserved5;
    ZENTREL_VDSP_ENTRY Entries[ZENTREL_VDSP_ENTRIES];
    uint8_t Reserved1536[4];
} ZENTREL_SWITCH_HOST_PORT_VDSP_INFO, *PTR_ZENTREL_SWITCH_HOST_PORT_VDSP_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_VDSP_ENTRY, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_VDSP_ENTRY, SwitchId, 4);
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HOST_PORT_VDSP_INFO, 1540);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HOST_PORT_VDSP_INFO, NumEntries, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HOST_PORT_VDSP_INFO, Entries, 6);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchPortDsVDspBind(PTR_ZENTREL_DEVICE Device, uint32_t DsPort, uint32_t HostPort,
                                                       uint32_t AssignRule, uint16_t VdspId);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchPortDsVDspUnbind(PTR_ZENTREL_DEVICE Device, uint32_t HostPort,
                                                         uint32_t AssignRule, uint16_t VdspId);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetHostPortVDSPInfo(PTR_ZENTREL_DEVICE Device, uint32_t HostPort,
                                                            PTR_ZENTREL_SWITCH_HOST_PORT_VDSP_INFO Info);

/* ---- Port CSR access, port control, PCI capabilities ---- */

/* The data word is the first 4 bytes of the data area: the library reads
 * or writes DataLength bytes from offset 12, so a caller that asks for more
 * than 4 bytes provides the room behind the record. */
typedef struct ZENTREL_SWITCH_PORT_CSR_ACCESS {
    uint8_t PortNum;
    uint8_t IsExtendedCap;
    uint8_t Reserved2;
    uint8_t DataLength;
    uint16_t Offset;
    uint8_t Reserved6[2];
    uint32_t PcieCapId;
    uint32_t Data;
} ZENTREL_SWITCH_PORT_CSR_ACCESS, *PTR_ZENTREL_SWITCH_PORT_CSR_ACCESS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PORT_CSR_ACCESS, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_CSR_ACCESS, DataLength, 3);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_CSR_ACCESS, Offset, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_CSR_ACCESS, PcieCapId, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data, 12);

typedef struct ZENTREL_SWITCH_PCI_CAPABILITIES {
    uint8_t HotPlug;
    uint8_t Aer;
    uint8_t Reserved2;
    uint8_t Msi;
    uint8_t MsiX;
    uint8_t VirtualChannel;
    uint8_t Reserved6[2];
} ZENTREL_SWITCH_PCI_CAPABILITIES, *PTR_ZENTREL_SWITCH_PCI_CAPABILITIES;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PCI_CAPABILITIES, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCI_CAPABILITIES, VirtualChannel, 5);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchReadPortCSR(PTR_ZENTREL_DEVICE Device,
                                                    PTR_ZENTREL_SWITCH_PORT_CSR_ACCESS Access);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchWritePortCSR(PTR_ZENTREL_DEVICE Device,
                                                     PTR_ZENTREL_SWITCH_PORT_CSR_ACCESS Access);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchControlPortEnbl(PTR_ZENTREL_DEVICE Device, uint32_t Port);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchControlPortDsbl(PTR_ZENTREL_DEVICE Device, uint32_t Port);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPciCapabilities(PTR_ZENTREL_DEVICE Device, uint8_t Port,
                                                           PTR_ZENTREL_SWITCH_PCI_CAPABILITIES Capabilities);

/* ---- Switch properties and MPI management page ---- */

/* Validity bits (ValidFlags). */
#define ZENTREL_PROP_VENDOR_ID 0x01u
#define ZENTREL_PROP_DEVICE_ID 0x02u
#define ZENTREL_PROP_SUBSYSTEM_VENDOR_ID 0x04u
#define ZENTREL_PROP_SUBSYSTEM_ID 0x08u
#define ZENTREL_PROP_INSTANCE_ID 0x10u
#define ZENTREL_PROP_OEM_FAMILY_ID 0x20u

typedef struct ZENTREL_SWITCH_GET_PROP_RESP {
    uint16_t NumHistoryBuffers;
    uint8_t ValidFlags[4]; /* u32, at an odd place */
    uint8_t Reserved6[8];
    uint16_t VendorId;
    uint16_t DeviceId;
    uint16_t SubsystemVendorId;
    uint16_t SubsystemId;
    uint16_t InstanceId;
    uint16_t OemFamilyId;
    uint8_t Reserved26[162];
} ZENTREL_SWITCH_GET_PROP_RESP, *PTR_ZENTREL_SWITCH_GET_PROP_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_PROP_RESP, 188);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PROP_RESP, ValidFlags, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PROP_RESP, VendorId, 14);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_PROP_RESP, OemFamilyId, 24);

/* Set and get options; buffer 0 is the firmware download buffer. */
#define ZENTREL_MPI_BUFFER_ACCESS 0u
#define ZENTREL_MPI_CONTROL_SETTING 1u
#define ZENTREL_MPI_FW_DOWNLOAD_BUFFER 0u
/* Access flags: bit 0 read disabled, bit 1 write disabled. */
#define ZENTREL_MPI_ACCESS_LAST 3u
/* Update settings: bit 0 the current session, bit 1 future sessions. */
#define ZENTREL_MPI_UPDATE_CURRENT 1u
#define ZENTREL_MPI_UPDATE_FUTURE 2u

typedef struct ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ {
    uint8_t HostPort;
    uint8_t SetOption;
    uint16_t BufferId;
    uint8_t AccessFlags;
    uint8_t UpdateSettings; /* bits 0..1 */
    uint8_t Reserved6[2];
} ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ, *PTR_ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ;

typedef struct ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ {
    uint8_t HostPort;
    uint8_t GetOption;
    uint16_t BufferId;
} ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ, *PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ;

typedef struct ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP {
    uint8_t HostPort;
    uint8_t GetOption;
    uint16_t BufferId;
    uint8_t Value; /* access flags (option 0) or the control setting (option 1) */
    uint8_t Reserved5[3];
} ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP, *PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ, BufferId, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ, AccessFlags, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ, UpdateSettings, 5);
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ, 4);
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP, Value, 4);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetProperties(PTR_ZENTREL_DEVICE Device,
                                                      PTR_ZENTREL_SWITCH_GET_PROP_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetMpiMgmtPage(PTR_ZENTREL_DEVICE Device,
                                                       PTR_ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetMpiMgmtPage(PTR_ZENTREL_DEVICE Device,
                                                       PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ Request,
                                                       PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP Response);

#endif
