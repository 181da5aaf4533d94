// Link-down condition of a port: hold its link down now, or at its next
// fatal error, until the condition is cleared.
#include <cstdio>

#include "designed.h"
#include "frontend/helpers.h"

namespace {

const char *const kConditionNames[ZENTREL_LINK_DOWN_COND_LAST + 1] = {
    "None",
    "Link down now",
    "Link down on fatal error",
};

}  // namespace

uint32_t SetLinkDownCondition(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -setlinkdowncondition <Port> <Condition>\n");
        printf("Port      : port number, 0 to 143\n");
        printf("Condition : 0 - none (clear, the link trains again), 1 - link down now, "
               "2 - link down on fatal error\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ request = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    uint32_t condition = 0;
    if (words == nullptr) {
        printf("Link down conditions :\n");
        for (uint32_t c = 0; c <= ZENTREL_LINK_DOWN_COND_LAST; ++c) printf("           %u - %s\n", c, kConditionNames[c]);
    }
    if (!ReadLinkArgument(words, 1, "Enter Link Down Condition : ", ZENTREL_LINK_DOWN_COND_LAST, &condition)) return 1;
    request.Condition = static_cast<uint8_t>(condition);
    ZENTREL_STATUS status = ZentrelSwitchSetLinkDownCondition(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchSetLinkDownCondition failed with status %x\n", status);
        return 1;
    }
    printf("Link down condition of port %d set to: %s\n", request.Port, kConditionNames[condition]);
    return 0;
}

uint32_t GetLinkDownCondition(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -getlinkdowncondition <Port>\n");
        printf("Port      : port number, 0 to 143\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ request = {};
    ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP response = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    ZENTREL_STATUS status = ZentrelSwitchGetLinkDownConditionStatus(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetLinkDownConditionStatus failed with status %x\n", status);
        return 1;
    }
    printf("Link Down Condition of Port %d\n", request.Port);
    printf("    Condition     : %s\n",
           response.Condition <= ZENTREL_LINK_DOWN_COND_LAST ? kConditionNames[response.Condition] : "Unknown");
    printf("    Triggered     : %s\n", response.Triggered != 0 ? "Yes" : "No");
    printf("    LinkDownCount : %u\n", response.LinkDownCount);
    return 0;
}
