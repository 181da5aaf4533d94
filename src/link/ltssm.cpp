// LTSSM polling through the probe registers, the firmware's LTSSM trigger
// and monitor, and raw switch memory reads and writes.
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "link.h"

namespace {

const char kReadFailed[] = "ZentrelSwitchMemoryRead failed with status %x\n";
const char kWriteFailed[] = "ZentrelSwitchMemoryWrite failed with status %x\n";
const char kDumpDirectory[] = "switchltssm/";
constexpr int32_t kDefaultPollCount = 10;
constexpr uint32_t kGenerationLow = 2, kGenerationHigh = 3;

// A negative interval or delay waits not at all rather than for ages.
uint32_t NotNegative(int32_t value) {
    return value < 0 ? 0u : static_cast<uint32_t>(value);
}

// The family of the selected switch; the main one when its information
// cannot be read.
bool IsAlternateFamily() {
    ZENTREL_DEVICE_INFO info;
    memset(&info, 0, sizeof info);
    if (ZentrelGetDeviceInfo(gSelectedDeviceHandle, ZENTREL_DEVICE_INFO_LENGTH, &info) != ZENTREL_STATUS_SUCCESS)
        return false;
    return (info.DeviceId & ZENTREL_LTSSM_ALT_ID_MASK) == ZENTREL_LTSSM_ALT_ID;
}

uint32_t ReadWord(PTR_ZENTREL_DEVICE device, uint32_t address, uint32_t *value) {
    ZENTREL_STATUS status = ZentrelSwitchMemoryRead(device, address, value, sizeof *value);
    if (status != ZENTREL_STATUS_SUCCESS) printf(kReadFailed, status);
    return status;
}

uint32_t WriteWord(PTR_ZENTREL_DEVICE device, uint32_t address, uint32_t value) {
    ZENTREL_STATUS status = ZentrelSwitchMemoryWrite(device, address, &value, sizeof value);
    if (status != ZENTREL_STATUS_SUCCESS) printf(kWriteFailed, status);
    return status;
}

void PrintSample(int32_t iteration, uint32_t state) {
    char name[kLtssmNameSize];
    LtssmStateName(state, name);
    printf("iter %d:  %s\n", static_cast<int>(iteration), name);
}

// Samples the port's state count times through its station's probe
// registers and puts the select register back afterwards. A failure inside
// the sampling leaves the select value in place.
uint32_t SampleLtssm(PTR_ZENTREL_DEVICE device, int32_t port, int32_t interval, int32_t count) {
    bool alternate = IsAlternateFamily();
    uint32_t p = static_cast<uint32_t>(port);
    uint32_t station = p >> 4;
    uint32_t select = ZENTREL_LTSSM_PROBE_REG | station << ZENTREL_LTSSM_STATION_SHIFT;
    uint32_t status = ZENTREL_LTSSM_PROBE_STATUS_REG | station << ZENTREL_LTSSM_STATION_SHIFT;
    uint32_t saved = 0, value = 0;
    if (ReadWord(device, select, &saved) != ZENTREL_STATUS_SUCCESS) return 1;
    if (!alternate) {
        uint32_t probe = (p & 0xFu) << ZENTREL_LTSSM_SELECT_PORT_SHIFT | ZENTREL_LTSSM_SELECT_ENABLE;
        if (WriteWord(device, select, probe) != ZENTREL_STATUS_SUCCESS) return 1;
        for (int32_t i = count - 1; i >= 0; --i) {
            if (ReadWord(device, select, &value) != ZENTREL_STATUS_SUCCESS) return 1;
            PrintSample(i, value & ZENTREL_LTSSM_STATE_MASK);
            SleepUs(NotNegative(interval));
        }
    } else {
        uint32_t probe = (p & 0xFu) << ZENTREL_LTSSM_ALT_SELECT_PORT_SHIFT | ZENTREL_LTSSM_ALT_SELECT_ENABLE;
        for (int32_t i = count - 1; i >= 0; --i) {
            if (WriteWord(device, select, probe) != ZENTREL_STATUS_SUCCESS) return 1;
            if (ReadWord(device, status, &value) != ZENTREL_STATUS_SUCCESS) return 1;
            PrintSample(i, value & ZENTREL_LTSSM_ALT_STATE_MASK);
            SleepUs(NotNegative(interval));
        }
    }
    ZentrelSwitchMemoryWrite(device, select, &saved, sizeof saved);  // its status is not looked at
    return 0;
}

// The monitor handlers act on switches of generation 2 and 3 only.
// Returns 1 after the message when the information cannot be read.
uint32_t ReadGeneration(uint32_t *generation) {
    ZENTREL_DEVICE_INFO info;
    memset(&info, 0, sizeof info);
    if (ZentrelGetDeviceInfo(gSelectedDeviceHandle, ZENTREL_DEVICE_INFO_LENGTH, &info) != ZENTREL_STATUS_SUCCESS) {
        printf("Could not get the device information\n");
        return 1;
    }
    *generation = info.DeviceGeneration;
    return 0;
}

bool RunsMonitor(uint32_t generation) {
    return generation == kGenerationLow || generation == kGenerationHigh;
}

// The address and byte count of a memory read or write, and a zeroed buffer
// of that many bytes; null after the message when it cannot be allocated.
// A negative count cannot be allocated on the controller; it is refused
// without trying.
uint8_t *AskMemoryRange(const char *countPrompt, uint32_t *address, int32_t *count) {
    printf("Input Memory Address: 0x");
    FlushInput();
    ScanHex(address);
    printf("%s", countPrompt);
    FlushInput();
    ScanDecimal(count);
    auto *buffer = *count < 0 ? nullptr : static_cast<uint8_t *>(AllocZeroed(static_cast<size_t>(*count)));
    if (buffer == nullptr) printf("- unable to allocate buffer\n");
    return buffer;
}

}  // namespace

uint32_t LtssmPoll(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsageOrMissing(words)) {
        printf("Usage: zentrelLibTest -i 0 -ltssm portNum interval count\n");
        return 0;
    }
    int32_t port = 0, interval = 0, count = 0;
    if (ParseDecimal(WordAt(words, 0), &port) != 0) {
        printf("failed to get port number\n");
        return 1;
    }
    if (ParseDecimal(WordAt(words, 1), &interval) != 0) {
        printf("failed to get lane number\n");  // the message of a bad interval
        return 1;
    }
    if (ParseDecimal(WordAt(words, 2), &count) != 0) {
        printf("failed to get numTimeSteps\n");
        return 1;
    }
    return SampleLtssm(device, port, interval, count);
}

uint32_t LtssmPollMenu(PTR_ZENTREL_DEVICE device) {
    int32_t port = 0, interval = 0, count = 0;
    printf("Input the pcie port number: ");
    FlushInput();
    ScanDecimal(&port);
    printf("Input polling gap between each LTSSM state polling: ");
    FlushInput();
    ScanDecimal(&interval);
    printf("Input the polling count: ");
    FlushInput();
    ScanDecimal(&count);
    return SampleLtssm(device, port, interval, count);
}

// The "seconds" of the poll count are in fact 1 ms polls. Every path after
// a successful set-up but a failed status query disarms the trigger again.
uint32_t LtssmTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t port = 0, pollCount = kDefaultPollCount, condition = ZENTREL_LTSSM_POLLING_ACTIVE;
    uint32_t triggered = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -ltssm portNum poll(seconds) TriggerCondition\n");
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &port) != 0) {
            printf("failed to get port number\n");
            return 1;
        }
        if (ParseDecimal(WordAt(words, 1), &pollCount) != 0) {
            printf("failed to get poll time (seconds)\n");
            return 1;
        }
        if (ParseDecimal(WordAt(words, 2), &condition) != 0) {
            printf("failed to get Trigger Val\n");
            return 1;
        }
    } else {
        printf("Input the pcie port number: ");
        FlushInput();
        ScanDecimal(&port);
        uint32_t hex = static_cast<uint32_t>(condition);
        printf("Input Trigger Condition(Hex): ");
        FlushInput();
        ScanHex(&hex);
        condition = static_cast<int32_t>(hex);
        printf("Input polling timer (seconds): ");
        FlushInput();
        ScanDecimal(&pollCount);
    }
    // The dump directory is relative to the working directory.
    char directory[ZENTREL_LTSSM_DUMP_PATH_LENGTH] = {};
    snprintf(directory, sizeof directory, "%s", kDumpDirectory);

    ZENTREL_SWITCH_LTSSM_TRIGGER trigger;
    memset(&trigger, 0, sizeof trigger);
    trigger.PortNumber = static_cast<uint32_t>(port);
    trigger.TriggerCondition = static_cast<uint32_t>(condition);
    printf("Checking for existing Ltssm...\n");
    ZENTREL_STATUS status = ZentrelSwitchStopAndGetLtssmTrigger(device, &trigger, directory);
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("\n\nzntrlSwitchLtssm: failed to get existing LTSSM dump %x\n\n", status);

    printf("Setting up Ltssm...\n");
    uint32_t firmwareValue = 0;
    status = ZentrelSwitchLtssmSetupTrigger(device, &trigger, &firmwareValue);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nzntrlSwitchLtssm: failed to setup LTSSM %x\n\n", status);
        return 1;
    }
    if (firmwareValue != (trigger.TriggerCondition & 0xFFFFu)) {
        trigger.TriggerCondition = firmwareValue;
        printf("\n\nDefault Trigger Condition Set...!!! zntrlSwitchLtssm: LTSSM TriggerCond = 0x%x\t FwTriggerVal = "
               "0x%x\t Status = %x\n\n",
               firmwareValue, firmwareValue, status);
    } else {
        printf("\n\nzntrlSwitchLtssm: LTSSM TriggerCond = 0x%x\t FwTriggerVal = 0x%x\t Status = %x\n\n",
               trigger.TriggerCondition, firmwareValue, status);
    }
    printf("Ltssm setup complete.\n");

    // At most pollCount + 1 queries; a negative count asks once, as 0 does.
    uint32_t pollsLeft = NotNegative(pollCount);
    while (triggered != 1) {
        SleepUs(1000);
        status = ZentrelSwitchLtssmIsTriggerred(device, trigger.PortNumber, &triggered);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("\n\nzntrlSwitchLtssm: failed to get LTSSM tirgger status %x\n\n", status);
            return 1;
        }
        if (pollsLeft-- == 0 && triggered != 1) {
            printf("LTSSM is not triggered, stopping...\n");
            status = ZentrelSwitchStopAndGetLtssmTrigger(device, &trigger, directory);
            if (status != ZENTREL_STATUS_SUCCESS) printf("\n\nzntrlSwitchLtssm: failed to get LTSSM dump %x\n\n", status);
            return 0;
        }
    }
    printf("LTSSM trigger Data collected for Trigger 0x%x\n", trigger.TriggerCondition);
    status = ZentrelSwitchStopAndGetLtssmTrigger(device, &trigger, directory);
    if (status != ZENTREL_STATUS_SUCCESS) printf("\n\nzntrlSwitchLtssm: failed to get LTSSM dump %x\n\n", status);
    return 0;
}

// The monitor stays armed after the utility ends.
uint32_t LtssmMonitorSetup(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    uint32_t generation = 0;
    if (ReadGeneration(&generation) != 0) return 1;
    if (!RunsMonitor(generation)) return 0;
    int32_t port = 0, state = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -SetSwitchLtssmMonitor PortNumber TriggerState(Hex) \n");
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &port) != 0) {
            printf("failed to get port number\n");
            return 1;
        }
        if (WordAt(words, 1) == nullptr) {
            printf("Trigger State not specified. Currently 0x%x and 0x%x are supported\n", ZENTREL_LTSSM_POLLING_ACTIVE,
                   ZENTREL_LTSSM_L0);
            return 1;
        }
        if (ParseHex(WordAt(words, 1), &state) != 0) {
            printf("failed to get Trigger Val\n");
            return 1;
        }
    } else {
        printf("Enter the port number to monitor: ");
        FlushInput();
        ScanDecimal(&port);
        printf("Enter the trigger state to monitor in Hex. Currently 0x%x and 0x%x are supported: ",
               ZENTREL_LTSSM_POLLING_ACTIVE, ZENTREL_LTSSM_L0);
        FlushInput();
        uint32_t hex = 0;
        ScanHex(&hex);
        state = static_cast<int32_t>(hex);
    }
    uint32_t trigger = static_cast<uint32_t>(state);
    if (trigger != ZENTREL_LTSSM_POLLING_ACTIVE && trigger != ZENTREL_LTSSM_L0) {
        printf("TriggerState: 0x%x unsupported. Currently 0x%x and 0x%x are supported\n", trigger,
               ZENTREL_LTSSM_POLLING_ACTIVE, ZENTREL_LTSSM_L0);
        return 9;
    }
    auto *request = static_cast<PTR_ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ)));
    if (request == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ \n");
        return 5;
    }
    request->PortNumber = static_cast<uint8_t>(port);
    request->TriggerState = static_cast<uint16_t>(trigger);
    request->Param4 = ZENTREL_LTSSM_MONITOR_PARAM4;
    request->Param8 = ZENTREL_LTSSM_MONITOR_PARAM8;
    request->Param9 = ZENTREL_LTSSM_MONITOR_PARAM9;
    printf("PtrSetupLtssmMonReq: PortNum %d TriggerState 0x%x\n", static_cast<int>(request->PortNumber),
           static_cast<unsigned>(request->TriggerState));
    ZENTREL_STATUS status = ZentrelSwitchSetupLtssmMonitor(device, request);
    printf("ZentrelSwitchSetLtssmMonitor return status : %d\n", static_cast<int>(status));
    FreeBuffer(request);
    return 0;
}

uint32_t LtssmMonitorQuery(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    uint32_t generation = 0;
    if (ReadGeneration(&generation) != 0) return 1;
    if (!RunsMonitor(generation)) return 0;
    int32_t port = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -IsLtssmTriggered PortNumber\n");
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &port) != 0) {
            printf("failed to get port number\n");
            return 1;
        }
    } else {
        printf("Enter the port number to check: ");
        FlushInput();
        ScanDecimal(&port);
    }
    uint32_t triggered = 0;
    ZENTREL_STATUS status = ZentrelSwitchLtssmIsTriggerred(device, static_cast<uint32_t>(port), &triggered);
    printf("zentrelSwitchIsLtssmTriggered return status : %d\n", static_cast<int>(status));
    printf("zentrelSwitchIsLtssmTriggered Port %d LTSSM trigger state is: %s\n", static_cast<int>(port),
           triggered != 0 ? "triggered" : "not triggered");
    return 0;
}

uint32_t SwitchMemoryReadMenu(PTR_ZENTREL_DEVICE device, const char *const *, PTR_ZENTREL_DEVICE_INFO) {
    uint32_t address = 0;
    int32_t count = 0;
    uint8_t *buffer = AskMemoryRange("Input how many bytes to read: ", &address, &count);
    if (buffer == nullptr) return 1;
    ZENTREL_STATUS status = ZentrelSwitchMemoryRead(device, address, buffer, static_cast<uint32_t>(count));
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        FreeBuffer(buffer);
        return 1;
    }
    DumpHex(stdout, buffer, count);
    FreeBuffer(buffer);
    return 0;
}

// Input that ends before every byte was typed abandons the write: the
// switch is never written with bytes the operator did not give.
uint32_t SwitchMemoryWriteMenu(PTR_ZENTREL_DEVICE device) {
    uint32_t address = 0;
    int32_t count = 0;
    uint8_t *buffer = AskMemoryRange("Input how many bytes to be written: ", &address, &count);
    if (buffer == nullptr) return 1;
    for (int32_t i = 0; i < count; ++i) {
        printf("input the %d byte to be written: 0x", static_cast<int>(i));
        FlushInput();
        if (ScanHexByte(&buffer[i]) == EOF) {
            printf("\n");
            FreeBuffer(buffer);
            return 1;
        }
    }
    DumpHex(stdout, buffer, count);
    ZENTREL_STATUS status = ZentrelSwitchMemoryWrite(device, address, buffer, static_cast<uint32_t>(count));
    FreeBuffer(buffer);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    return 0;
}
