// Flow-control credit capture of a port: start or stop a capture, and read
// the advertised credits and the lowest available ones seen.
#include <cstdio>

#include "designed.h"
#include "frontend/helpers.h"

namespace {

void PrintCredits(const char *title, const ZENTREL_CREDIT_COUNTS &c) {
    printf("%s\n", title);
    printf("    Posted Header          : %d\n", c.PostedHeader);
    printf("    Posted Data            : %d\n", c.PostedData);
    printf("    Non-Posted Header      : %d\n", c.NonPostedHeader);
    printf("    Non-Posted Data        : %d\n", c.NonPostedData);
    printf("    Completion Header      : %d\n", c.CompletionHeader);
    printf("    Completion Data        : %d\n", c.CompletionData);
}

}  // namespace

uint32_t SetCreditCapture(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -SetCredit <Port> <Enable>\n");
        printf("Port     : port number, 0 to 143\n");
        printf("Enable   : 1 - start a new credit capture, 0 - stop the capture\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ request = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    uint32_t enable = 0;
    if (!ReadLinkArgument(words, 1, "Enter 1 to start or 0 to stop the credit capture : ", 1, &enable)) return 1;
    request.Enable = static_cast<uint8_t>(enable);
    ZENTREL_STATUS status = ZentrelSwitchSetCreditCapture(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchSetCreditCapture failed with status %x\n", status);
        return 1;
    }
    printf("Credit capture %s on port %d\n", enable != 0 ? "started" : "stopped", request.Port);
    return 0;
}

uint32_t GetCreditCapture(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -GetCredit <Port>\n");
        printf("Port     : port number, 0 to 143\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ request = {};
    ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP response = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    ZENTREL_STATUS status = ZentrelSwitchGetCreditCapture(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetCreditCapture failed with status %x\n", status);
        return 1;
    }
    printf("Credit Capture of Port %d (Gen%d x%d)\n", request.Port, response.LinkSpeed, response.LinkWidth);
    printf("Capture : %s, %u samples\n", response.Capturing != 0 ? "running" : "stopped", response.SampleCount);
    PrintCredits("Advertised Credits:", response.Advertised);
    PrintCredits("Minimum Available Credits:", response.MinimumAvailable);
    return 0;
}
