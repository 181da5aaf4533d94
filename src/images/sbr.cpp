// The switch's SBR regions: their versions, and the choice among the
// SBR/MFG configurations the switch holds.
#include <cstdio>
#include <cstring>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "images.h"

uint32_t GetSbrVersion(PTR_ZENTREL_DEVICE) {
    // Not freed: kept as the tool has always done; one small record per call.
    auto *versions = static_cast<PTR_ZENTREL_SWITCH_SBR_VERSION>(AllocZeroed(sizeof(ZENTREL_SWITCH_SBR_VERSION)));
    if (versions == nullptr) {
        printf("Unable to allocate buffer for SBR version\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetSBRVersion(&gSelectedDeviceHandle, versions);
    if (status != ZENTREL_STATUS_SUCCESS) printf("Libstatus:%x\n", status);
    printf("Default SBR Version:%8x\n", versions->Version);
    printf("Device specific SBR Version:%8x\n", versions->DeviceVersion);
    return status;
}

// The operator's 1 (set) is operation 0 and 2 (get) operation 1.
uint32_t ConfigureSbrMfg(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage : zentrelLibTest -i 0 -sbrmfgcfg \n");
        return 0;
    }
    uint32_t method = 0, selected = 0, supported = 0;
    ZENTREL_SWITCH_SBR_MFG_CFG_REQ request;
    memset(&request, 0, sizeof request);
    // Always asked, also in one-shot mode.
    printf("Enter 1 to set the switch SBR/MFG config. Enter 2 to get the switch SBR/MFG config : ");
    int32_t answer = 0;
    ScanDecimal(&answer);
    if (answer != 1 && answer != 2) {
        printf(" Invalid option %d, valid options are 1/2\n", answer);
        return 1;
    }
    if (answer == 2) {
        request.Operation = ZENTREL_SBR_MFG_CFG_GET;
        request.SelectionMethod = &method;
        request.Selected = &selected;
        request.Supported = &supported;
        ZENTREL_STATUS status = ZentrelSwitchSBRMFGConfiguration(device, &request);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf(" failed with status %x\n", status);
            return 1;
        }
        printf("Selected Configuration                    : %d\n", static_cast<int>(selected));
        printf("Selection Method                          : %d\n", static_cast<int>(method));
        printf("Number of SBR/MFG configuration supported : %d\n", static_cast<int>(supported));
        return 0;
    }
    request.Operation = ZENTREL_SBR_MFG_CFG_SET;
    printf("Enter number of SBR/MFG configuration to change : ");
    int32_t number = 0;
    ScanDecimal(&number);
    // Negative numbers count as too large.
    if (static_cast<uint32_t>(number) > ZENTREL_SBR_MFG_CFG_LAST) {
        printf(" Invalid option %d, valid options are 0-5\n", number);
        return 1;
    }
    request.Configuration = static_cast<uint8_t>(number);
    request.Selected = &selected;
    ZENTREL_STATUS status = ZentrelSwitchSBRMFGConfiguration(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Selected Configuration : %d\n", static_cast<int>(selected));
    return 0;
}
