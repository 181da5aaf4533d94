// What the topology commands share: the generation gate and their rules.
#include <cstdio>

#include "frontend/discovery.h"
#include "topology.h"

ZENTREL_STATUS ReadSelectedDeviceInfo(ZENTREL_DEVICE_INFO *info) {
    memset(info, 0, sizeof *info);
    return ZentrelGetDeviceInfo(gSelectedDeviceHandle, ZENTREL_DEVICE_INFO_LENGTH, info);
}

bool RunsNewerCommands(const ZENTREL_DEVICE_INFO &info) {
    return info.DeviceGeneration == 2 || info.DeviceGeneration == 3;
}

void PrintRule(int count) {
    for (int i = 0; i < count; ++i) putchar('*');
    putchar('\n');
}
