// -GetDSAllDevInfo: every device found below every downstream port.
#include <cstdio>

#include "frontend/helpers.h"
#include "topology.h"

uint16_t DownstreamListLength(const ZENTREL_DS_DEVICE_COUNT &c) {
    return ZENTREL_DS_LIST_LENGTH(c.TotalPorts, c.TotalDevices, c.PortsWithDevices);
}

namespace {

void PrintRecord(uint16_t portId, const ZENTREL_DS_DEVICE_RECORD &r) {
    printf("0x%-4x  0x%-4x   0x%-2x         0x%x     0x%-4x    0x%-4x    0x%-4x     0x%-4x   0x%-5x      %-2d          "
           "%-3d        %-2d             %-2d             %-3d             %-2d           %d             %d\n",
           portId, r.Gid, r.ParentGid, r.Flags, r.VendorId, r.DeviceId, r.SubsystemVendorId, r.SubsystemId,
           r.ClassCode, r.AssignedToHost, r.PciRevision, r.HostPortNumber, r.HostPortDomain, r.HostPortSlot,
           r.HostTreeRequesterId, r.LinkSpeed >> 1, r.MaxLinkSpeed >> 1);
}

}  // namespace

// The list buffer is sized from the counts, cut to 16 bits as the library
// expects; the walk never reads past it.
uint32_t GetDownstreamDevices(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage : zentrelLibTest -i 0 -GetDSAllDevInfo \n");
        return 0;
    }
    auto *countBuffer = static_cast<uint8_t *>(AllocZeroed(ZENTREL_DS_COUNT_BUFFER_LENGTH));
    if (countBuffer == nullptr) {
        printf("Unable to allocate buffer for the downstream device count\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetDSAllDeviceInfo(device, ZENTREL_DS_SELECT_COUNT, countBuffer);
    ZENTREL_DS_DEVICE_COUNT counts;
    memcpy(&counts, countBuffer, sizeof counts);
    FreeBuffer(countBuffer);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Total DownStream Port Count =%d Total DownStream Port with devices =%d Total Number of devices connected "
           "%d\n",
           static_cast<int>(counts.TotalPorts), static_cast<int>(counts.PortsWithDevices),
           static_cast<int>(counts.TotalDevices));
    uint16_t length = DownstreamListLength(counts);
    auto *list = static_cast<uint8_t *>(AllocZeroed(length));
    if (list == nullptr) {
        printf("Unable to allocate buffer for the downstream device list\n");
        return 1;
    }
    status = ZentrelSwitchGetDSAllDeviceInfo(device, ZENTREL_DS_SELECT_ALL, list);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        FreeBuffer(list);
        return 1;
    }
    printf("DSPotId  GID GID_DsParent   Flags    VenId     DevId    SubVenId   SubDevId   Class   AssignToHost   "
           "PciRev   HostPortNo   HostPortDomain   HostPortSlot   HostTreeRID   LinkSpeed   MaxLinkSpeed \n");
    printf("-------  --- ------------   -----   -------   -------   --------   --------  -------  ------------   "
           "------   ----------   --------------   ------------   -----------   ---------   ------------ \n");
    WalkDownstreamList(list, length, PrintRecord);
    FreeBuffer(list);
    return 0;
}
