// TLP round-trip time of a port's link: configure the sample count and
// measure.
#include <cstdio>

#include "designed.h"
#include "frontend/helpers.h"

uint32_t TlpRoundTripTime(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -trt <Port> [Samples]\n");
        printf("Port     : port number, 0 to 143\n");
        printf("Samples  : TLPs to time, 1 to 65535; 0 or none keeps the port's current count\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ request = {};
    ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP response = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    uint32_t samples = 0;
    if (words == nullptr || WordAt(words, 1) != nullptr) {
        if (!ReadLinkArgument(words, 1, "Enter Number of Samples (0 - keep current) : ", 0xFFFF, &samples)) return 1;
    }
    request.SampleCount = static_cast<uint16_t>(samples);
    ZENTREL_STATUS status = ZentrelSwitchTLPRoundTripTime(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchTLPRoundTripTime failed with status %x\n", status);
        return 1;
    }
    printf("TLP Round Trip Time of Port %d (Gen%d x%d), %d samples\n", request.Port, response.LinkSpeed,
           response.LinkWidth, response.SampleCount);
    printf("    Minimum : %u ns\n", response.MinimumNs);
    printf("    Average : %u ns\n", response.AverageNs);
    printf("    Maximum : %u ns\n", response.MaximumNs);
    return 0;
}
