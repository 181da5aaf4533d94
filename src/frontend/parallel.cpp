// Menu 94: one thread per discovered switch runs the informational
// commands, the firmware download of "switchFw.bin", or both, on all the
// switches at the same time.
#include "parallel.h"

#include <cstdio>
#include <cstring>
#include <pthread.h>

#include "discovery.h"
#include "dumps/dumps.h"
#include "helpers.h"
#include "images/images.h"
#include "input.h"
#include "output.h"
#include "ports/ports.h"
#include "security/security.h"
#include "settings/settings.h"
#include "status/status.h"

namespace {

// The index of the next switch a thread takes; reset by every test.
uint32_t gNextDeviceIndex = 0;
// Makes taking an index and reading that switch's information one step, so
// that every thread gets a switch of its own.
pthread_mutex_t gDeviceClaimMutex = PTHREAD_MUTEX_INITIALIZER;

const char *const kInformationalLines[] = {
    "1. Switch Temperature",
    "2. Port Counters",
    "3. Port Properties",
    "4. GPIO Information",
    "5. System Error Status Information",
    "6. Manufacturing Information",
    "7. Decoded Firmware Trace",
    "8. Coredump",
};

void PrintInformationalLines(const char *last) {
    for (const char *line : kInformationalLines) printf("%s\n", line);
    printf("%s\n", last);
}

// Takes the next switch and reads its information into the thread's own
// record, which is then the device context of everything the thread runs.
void ClaimDevice(ZENTREL_DEVICE_INFO *info) {
    memset(info, 0, sizeof *info);
    pthread_mutex_lock(&gDeviceClaimMutex);
    uint32_t index = gNextDeviceIndex++;
    // The status is not checked: a failed read leaves the record zeroed,
    // and the commands then report what the library says of that handle.
    ZentrelGetDeviceInfo(index, ZENTREL_DEVICE_INFO_LENGTH, info);
    pthread_mutex_unlock(&gDeviceClaimMutex);
}

// Each command runs with no command-line words, so those that need an
// answer prompt for it (the core dump asks for its type).
void RunInformational(ZENTREL_DEVICE_INFO *info) {
    PTR_ZENTREL_DEVICE device = info;
    GetTemperature(device, nullptr, info);
    GetPortErrors(device, nullptr, info);
    ReadAllPortProperties(device);
    GetSysErrStatus(device);
    GetGpioSpareState(device);
    GetMfgInfo(device);
    GetSpdmInfo(device, nullptr, info);
    GetDecodedTrace(device, nullptr, info);
    CaptureCoreDump(device, nullptr, info);
}

// The thread bodies; their argument (the thread's ordinal) is not used.
// Each writes out what is pending as it ends: the main thread only waits
// in a join, and a thread left waiting for the firmware file would
// otherwise keep the last messages of the others from the operator.
[[noreturn]] void EndThread() {
    FlushOutput();
    pthread_exit(nullptr);
}

void *InformationalBody(void *) {
    ZENTREL_DEVICE_INFO info;
    ClaimDevice(&info);
    RunInformational(&info);
    EndThread();
}

void *FirmwareBody(void *) {
    ZENTREL_DEVICE_INFO info;
    ClaimDevice(&info);
    DownloadFixedFirmware(&info);
    EndThread();
}

void *AllBody(void *) {
    ZENTREL_DEVICE_INFO info;
    ClaimDevice(&info);
    RunInformational(&info);
    DownloadFixedFirmware(&info);
    EndThread();
}

}  // namespace

uint32_t TestParallelApis(PTR_ZENTREL_DEVICE) {
    const uint32_t count = gDevicesFound;
    // Never released, as the test has always done (leak listed in
    // tests/lsan.supp). One pthread_t a switch: 4 bytes on the controller.
    auto *threads = static_cast<pthread_t *>(AllocZeroed(sizeof(pthread_t) * count));
    if (threads == nullptr) {
        printf("Failed to allocate memory for threads\n");
        return 1;
    }
    gNextDeviceIndex = 0;
    printf("Total number of devices:%d\n", static_cast<int>(count));
    printf("Informational APIs Test\n");
    printf("-----------------------\n");
    PrintInformationalLines("9. SPDM Information\n");
    printf("Firmware Download Test\n");
    printf("-------------------\n");
    printf("1. Firmware download\n");
    printf("Note: File switchFw.bin should be present for firmware download test.\n\n");
    printf("Select one of the below option:\n");
    printf("1 - Run all APIs in parallel\n");
    printf("2 - Run only Informational APIs in parallel\n");
    printf("3 - Run Switch FW Download API in parallel\n");
    FlushInput();
    int32_t choice = 0;
    ScanDecimal(&choice);
    void *(*body)(void *) = nullptr;
    switch (choice) {
    case 1:
        printf("This test will read information for all of the discovered switches and perform fw download in "
               "parallel.\n");
        PrintInformationalLines("9. SPDM Information");
        printf("10. Firmware download\n");
        body = AllBody;
        break;
    case 2:
        printf("This test will read below information for all of the discovered switches in parallel.\n");
        PrintInformationalLines("9. SPDM Information\n");
        body = InformationalBody;
        break;
    case 3:
        printf("This test will perform firmware download for all of the discovered switches in parallel.\n");
        printf("1. Firmware download\n");
        printf("Note: File switchFw.bin should be present for this test.\n\n");
        body = FirmwareBody;
        break;
    default:
        return 0;
    }
    printf("Press 1 to continue else 0 to exit the test:\n");
    FlushInput();
    int32_t confirm = 0;
    ScanDecimal(&confirm);
    if (confirm != 1) {
        printf("Parallel API test aborted.");
        return 0;
    }
    if (count == 0) return 0;
    for (uint32_t ordinal = 0; ordinal < count; ++ordinal) {
        // Handed to the thread, which does not use it; never released
        // (leak listed in tests/lsan.supp).
        auto *argument = static_cast<uint32_t *>(AllocZeroed(sizeof(uint32_t)));
        if (argument == nullptr) {
            printf("Failed to allocate memory for thread_id\n");
            return 1;
        }
        *argument = ordinal;
        if (pthread_create(&threads[ordinal], nullptr, body, argument) != 0) {
            // The threads already started are left running, not joined.
            printf("Error creating thread %d\n", static_cast<int>(ordinal));
            return static_cast<uint32_t>(confirm);
        }
    }
    // A firmware thread that could not read "switchFw.bin" ends with the
    // file lock held (see DownloadFixedFirmware): every other firmware
    // thread then waits for it for ever, and so does this join.
    for (uint32_t ordinal = 0; ordinal < count; ++ordinal) {
        if (pthread_join(threads[ordinal], nullptr) != 0) {
            printf("Error joining thread %d\n", static_cast<int>(ordinal));
            return static_cast<uint32_t>(confirm);
        }
    }
    return 0;
}
