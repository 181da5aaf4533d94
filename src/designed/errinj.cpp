// Error injection: faults injected on a port show in its error counters
// and AER status bits; the switch keeps a list of what was injected.
#include <cstdio>

#include "designed.h"
#include "frontend/helpers.h"

namespace {

const char *const kErrorTypeNames[ZENTREL_ERR_INJ_LAST + 1] = {
    "Clear the injected errors",
    "Receiver Error",
    "Bad TLP",
    "Bad DLLP",
    "Replay Timer Timeout",
    "Poisoned TLP",
    "Completion Timeout",
    "Malformed TLP",
    "ECRC Error",
    "Unsupported Request",
};

const char *ErrorTypeName(uint32_t type) {
    return type <= ZENTREL_ERR_INJ_LAST ? kErrorTypeNames[type] : "Unknown";
}

void PrintErrorTypes() {
    for (uint32_t type = 1; type <= ZENTREL_ERR_INJ_LAST; ++type)
        printf("           %u - %s\n", type, kErrorTypeNames[type]);
    printf("           0 - %s\n", kErrorTypeNames[0]);
}

}  // namespace

uint32_t GetErrInjection(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -GetErrInj <Port>\n");
        printf("Port     : port number, 0 to 143\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ request = {};
    ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP response = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    ZENTREL_STATUS status = ZentrelSwitchGetErrInjectionInfo(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetErrInjectionInfo failed with status %x\n", status);
        return 1;
    }
    printf("Error Injection Information of Port %d\n", request.Port);
    printf("Supported Error Types : 0x%x\n", response.SupportedTypes);
    // The count comes from the switch: never read past the entries.
    uint32_t count = response.EntryCount;
    if (count > ZENTREL_ERR_INJ_MAX_ENTRIES) count = ZENTREL_ERR_INJ_MAX_ENTRIES;
    printf("Injected Errors : %u\n", count);
    for (uint32_t i = 0; i < count; ++i)
        printf("    %-24s : %d\n", ErrorTypeName(response.Entries[i].ErrorType), response.Entries[i].Count);
    return 0;
}

uint32_t SetErrInjection(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (words != nullptr && WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -SetErrInj <Port> <ErrType> [Count]\n");
        printf("Port     : port number, 0 to 143\n");
        printf("ErrType  : error to inject\n");
        PrintErrorTypes();
        printf("Count    : errors to inject, 1 to 65535 (default 1)\n");
        return WantsUsage(words) ? 0 : 1;
    }
    ZENTREL_SWITCH_SET_ERR_INJECTION_REQ request = {};
    if (!ReadLinkPort(words, &request.Port)) return 1;
    if (words == nullptr) {
        printf("Error types :\n");
        PrintErrorTypes();
    }
    uint32_t type = 0;
    if (!ReadLinkArgument(words, 1, "Enter Error Type : ", ZENTREL_ERR_INJ_LAST, &type)) return 1;
    request.ErrorType = static_cast<uint8_t>(type);
    uint32_t count = 1;
    if (type != ZENTREL_ERR_INJ_CLEAR && (words == nullptr || WordAt(words, 2) != nullptr)) {
        if (!ReadLinkArgument(words, 2, "Enter Error Count : ", 0xFFFF, &count)) return 1;
        if (count == 0) {
            printf("Invalid value 0, valid values are 1 to 65535\n");
            return 1;
        }
    }
    request.Count = static_cast<uint16_t>(count);
    if (type == ZENTREL_ERR_INJ_CLEAR) request.Count = 0;
    ZENTREL_STATUS status = ZentrelSwitchSetErrInjection(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchSetErrInjection failed with status %x\n", status);
        return 1;
    }
    if (type == ZENTREL_ERR_INJ_CLEAR)
        printf("Cleared the injected errors of port %d\n", request.Port);
    else
        printf("Injected %d %s error(s) on port %d\n", request.Count, kErrorTypeNames[type], request.Port);
    return 0;
}
