// Host physical address ranges: the memory windows a host port routes to
// its downstream ports.
#include <cstdio>
#include <cstring>

#include "designed.h"

uint32_t HostPhysicalAddressRangesMenu(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_HPA_RANGE_REQ request;
    ZENTREL_SWITCH_HPA_RANGE_RESP response;
    memset(&request, 0, sizeof request);
    memset(&response, 0, sizeof response);
    int32_t port = AskSigned("Input the Host Port number:");
    if (port < 0 || port > UINT8_MAX) {
        printf("Invalid Host Port number %d\n", port);
        return 1;
    }
    request.HostPort = static_cast<uint8_t>(port);
    ZENTREL_STATUS status = ZentrelSwitchGetHPARangeInfoRequest(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetHPARangeInfoRequest failed with status %x\n", status);
        return 1;
    }
    uint32_t count = response.RangeCount < ZENTREL_HPA_RANGE_COUNT ? response.RangeCount : ZENTREL_HPA_RANGE_COUNT;
    printf("Host Port %u : %u address range(s)\n", response.HostPort, count);
    for (uint32_t i = 0; i < count; ++i) {
        const ZENTREL_SWITCH_HPA_RANGE &r = response.Ranges[i];
        unsigned long long base = (static_cast<unsigned long long>(r.BaseHigh) << 32) | r.BaseLow;
        unsigned long long size = (static_cast<unsigned long long>(r.SizeHigh) << 32) | r.SizeLow;
        printf("Range %2u : Port %3u  Base 0x%016llx  Size 0x%016llx  %s %s\n", i, r.Port, base, size,
               (r.Flags & ZENTREL_HPA_FLAG_64BIT) != 0 ? "64-bit" : "32-bit",
               (r.Flags & ZENTREL_HPA_FLAG_PREFETCHABLE) != 0 ? "Prefetchable" : "Non-prefetchable");
    }
    return 0;
}
