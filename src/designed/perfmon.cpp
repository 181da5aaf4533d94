// Performance monitoring set-up: which ports the performance counters
// count, and clearing a port's counters.
#include <cstdio>
#include <cstring>

#include "designed.h"
#include "frontend/helpers.h"

namespace {

const char *const kDone[] = {"", "enabled", "disabled", "counters cleared"};

bool ValidOperation(int32_t operation) {
    if (operation >= static_cast<int32_t>(ZENTREL_PERF_MON_ENABLE) &&
        operation <= static_cast<int32_t>(ZENTREL_PERF_MON_CLEAR))
        return true;
    printf(" Invalid option %d, valid options are 1/2/3\n", operation);
    return false;
}

}  // namespace

uint32_t SetupPerfMonitoring(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t port = 0, operation = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -SetPerfMon <port>(-1 for all ports) <op>(1-Enable/2-Disable/3-Clear)\n");
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &port) != 0) {
            printf("Failed to get Port number.\n");
            return 1;
        }
        if (ParseDecimal(WordAt(words, 1), &operation) != 0) {
            printf("Failed to get operation.\n");
            return 1;
        }
    } else {
        port = AskSigned("Input the Port number (-1 for all ports):");
        operation = AskSigned("Input the operation (1 - Enable, 2 - Disable, 3 - Clear counters):");
    }
    if (port < -1 || port >= static_cast<int32_t>(ZENTREL_PERF_MON_ALL_PORTS)) {
        printf("Invalid Port number %d\n", port);
        return 1;
    }
    if (!ValidOperation(operation)) return 1;
    ZENTREL_SWITCH_PERF_MON_REQ request;
    ZENTREL_SWITCH_PERF_MON_RESP response;
    memset(&request, 0, sizeof request);
    memset(&response, 0, sizeof response);
    request.Port = port < 0 ? ZENTREL_PERF_MON_ALL_PORTS : static_cast<uint16_t>(port);
    request.Operation = static_cast<uint8_t>(operation);
    ZENTREL_STATUS status = ZentrelSwitchSetupPerfMonitoring(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchSetupPerfMonitoring failed with status %x\n", status);
        return 1;
    }
    if (port < 0)
        printf("Performance monitoring of all ports %s\n", kDone[operation]);
    else
        printf("Performance monitoring of port %d %s\n", port, kDone[operation]);
    printf("Ports monitored : %u\n", response.MonitoredPorts);
    return 0;
}
