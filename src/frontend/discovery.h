// Finding, listing and selecting switches.
#ifndef ZENTRELLIBTEST_DISCOVERY_H
#define ZENTRELLIBTEST_DISCOVERY_H

#include <cstdint>

#include "zentrel.h"

// The switch every command acts on, kept for the whole process; 0xFF until
// a device is chosen.
extern uint32_t gSelectedDeviceHandle;
// How many devices the last address discovery found.
extern uint32_t gDevicesFound;
// The index the operator picked at the index prompt.
extern uint32_t gSelectedDeviceIndex;

int ListDevices(const char *addressText, const char *smbusText);
int DiscoverByAddress(int dispatchFlag, const char *addressText, const char *smbusText,
                      const char *busText, const char *deviceText, const char *functionText);
int SelectDevice(uint32_t deviceCount);
int PrintSwitchDetails(const ZENTREL_DEVICE_INFO *info);

// The bytes of a version word, most significant first.
inline unsigned VersionByte(uint32_t version, int index) {
    return (version >> (24 - 8 * index)) & 0xFFu;
}

#endif
