// The library's logging parameters, the switch's out-of-band time-outs and
// the asynchronous command time-out (menu 88, 89, 100, 101 and 58).
//
// These handlers always prompt. No answer is range-checked: each value is
// cut to the width of its field. Each returns the Library status.
//
// The records and the path buffers handed to the library are never
// released: the library may keep the path pointer for as long as it logs,
// and this is how the tool has always behaved. The sanitizer run knows them
// as deliberate (tests/lsan.supp).
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "settings.h"

namespace {

constexpr uint32_t kAllocationFailed = 1;

template <typename Record>
Record *AllocRecord(const char *name) {
    auto *record = static_cast<Record *>(AllocZeroed(sizeof(Record)));
    if (record == nullptr) printf("Unable to allocate buffer for %s\n", name);
    return record;
}

}  // namespace

uint32_t SetLibParameters(PTR_ZENTREL_DEVICE) {
    auto *params = AllocRecord<ZENTREL_LIB_PARAMETERS>("library parameters");
    if (params == nullptr) return kAllocationFailed;
    int32_t levelAll = 0;
    int32_t levelSwitch = 0;
    printf("Input the Debug Log Level for ALL Module logging:");
    ScanDecimal(&levelAll);
    printf("Input the Debug Log Level only for Switch Module logging:");
    ScanDecimal(&levelSwitch);
    printf("Input the Debug Log size(In bytes):");
    ScanDecimal(&params->DebugLogSize);
    printf("Input the Debug Log count:");
    ScanDecimal(&params->DebugLogCount);
    printf("Input whether the debug log should be overwritten?:");
    ScanDecimal(&params->DebugLogOverwrite);
    char path[ZENTREL_LIB_PATH_SET_LENGTH] = {};
    printf("Input the debug log file path(NULL if console logging is needed):");
    FlushInput();
    ScanWord(path, sizeof path);

    params->DebugLogLevelAll = static_cast<uint8_t>(levelAll);
    params->DebugLogLevelSwitch = static_cast<uint8_t>(levelSwitch);
    char *kept = static_cast<char *>(AllocZeroed(ZENTREL_LIB_PATH_SET_LENGTH));
    if (kept == nullptr) {
        printf("Unable to allocate buffer for library parameters\n");
        return kAllocationFailed;
    }
    memcpy(kept, path, ZENTREL_LIB_PATH_SET_LENGTH);
    params->DebugLogFilePath = kept;

    ZENTREL_STATUS status = ZentrelSetLibParameters(params);
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("Failed to set the library Parameters.Status:0x%x", status);
    else
        printf("Set Library Parameters successful.");
    return status;
}

uint32_t GetLibParameters(PTR_ZENTREL_DEVICE) {
    auto *params = AllocRecord<ZENTREL_LIB_PARAMETERS>("library parameters");
    auto *path = static_cast<char *>(AllocZeroed(ZENTREL_LIB_PATH_GET_LENGTH));
    if (params == nullptr || path == nullptr) {
        if (path == nullptr) printf("Unable to allocate buffer for library parameters\n");
        return kAllocationFailed;
    }
    params->DebugLogFilePath = path;
    ZENTREL_STATUS status = ZentrelGetLibParameters(params);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the library Parameters.Status:0x%x", status);
    } else {
        // The library fills the buffer; keep it terminated whatever it wrote.
        path[ZENTREL_LIB_PATH_GET_LENGTH - 1] = '\0';
        printf("DebugLogLevelForAll:%d\n", params->DebugLogLevelAll);
        printf("DebugLogLevelForSwitch:%d\n", params->DebugLogLevelSwitch);
        // Null when the library logs to the console.
        if (params->DebugLogFilePath != nullptr) printf("Debug File:%s\n", params->DebugLogFilePath);
        printf("DebugLogSizeInBytes:%d\n", static_cast<int>(params->DebugLogSize));
        printf("DebugLogCount:%d\n", static_cast<int>(params->DebugLogCount));
        printf("DebugLogOverwrite:%d\n", static_cast<int>(params->DebugLogOverwrite));
    }
    return status;
}

uint32_t SetOobParameters(PTR_ZENTREL_DEVICE device) {
    auto *params = AllocRecord<ZENTREL_SWITCH_OOB_PARAMS_REQ>("OOB parameters");
    if (params == nullptr) return kAllocationFailed;
    int32_t commandTimeout = 0;
    int32_t pollInterval = 0;
    int32_t abortTimeout = 0;
    int32_t resetTimeout = 0;
    printf("Input the command response timeout in seconds:");
    ScanDecimal(&commandTimeout);
    params->CmdRespTimeout = static_cast<uint8_t>(commandTimeout);
    printf("Input the response poll interval length in milliseconds:");
    ScanDecimal(&pollInterval);
    params->RespPollInterval = static_cast<uint16_t>(pollInterval);
    printf("Input the abort response timeout in seconds:");
    ScanDecimal(&abortTimeout);
    params->AbortRespTimeout = static_cast<uint8_t>(abortTimeout);
    printf("Input the reset response timeout in seconds:");
    ScanDecimal(&resetTimeout);
    params->ResetRespTimeout = static_cast<uint8_t>(resetTimeout);

    ZENTREL_STATUS status = ZentrelSwitchSetOOBParams(device, params);
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("Failed to set the OOB Parameters.Status:0x%x", status);
    else
        printf("Set OOB Params successful.");
    return status;
}

uint32_t GetOobParameters(PTR_ZENTREL_DEVICE device) {
    auto *params = AllocRecord<ZENTREL_SWITCH_OOB_PARAMS_RESP>("OOB parameters");
    if (params == nullptr) return kAllocationFailed;
    ZENTREL_STATUS status = ZentrelSwitchGetOOBParams(device, params);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the OOB Parameters.Status:0x%x\n", status);
        return status;
    }
    printf("Communication Mode:0x%x\n", params->CommMode);
    printf("Command response timeout(Seconds):%d\n", params->CmdRespTimeout);
    printf("Abort response timeout(Seconds):%d\n", params->AbortRespTimeout);
    printf("Reset response timeout(Seconds):%d\n", params->ResetRespTimeout);
    printf("Response Poll Interval(milliseconds):%d\n", params->RespPollInterval);
    return status;
}

uint32_t SetAsyncCommandTimeout(PTR_ZENTREL_DEVICE device) {
    int32_t timeout = 0;
    printf("Input the async command timeout:");
    ScanDecimal(&timeout);
    ZENTREL_STATUS status = ZentrelSwitchSetAsyncCommandTimeout(device, static_cast<uint32_t>(timeout));
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("Failed to set the async command timeout to:%d, status:0x%x", timeout, status);
    else
        printf("Setting of Async command timeout successful");
    return status;
}
