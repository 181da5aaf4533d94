// The firmware's trace buffer, raw and decoded, saved into files.
#include <cstdio>

#include "dumps.h"
#include "frontend/helpers.h"

namespace {

typedef ZENTREL_STATUS (*TraceRead)(PTR_ZENTREL_DEVICE device, uint8_t *buffer, uint32_t *length);

constexpr char kCollected[] = "Trace buffer data collected..";

// Serialises naming, creating and writing the numbered decoded-trace file,
// and releasing its buffer, between threads reading the trace at once. It
// is taken only where the numbered file is written, so it is released only
// by the thread holding it.
pthread_mutex_t gDecodedTraceFileMutex = PTHREAD_MUTEX_INITIALIZER;

// Reads the trace in two calls, the size first, and saves what was read.
// A complete decoded trace goes to a file numbered by `variable`
// (`numbered`); a partial one, or the raw trace, to the fixed name.
uint32_t ReadTrace(PTR_ZENTREL_DEVICE device, TraceRead read, const char *fixedName, bool numbered,
                   const void *variable) {
    uint32_t length = 0;
    ZENTREL_STATUS status = read(device, nullptr, &length);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Get Trace logs failed with libStatus %x\n", status);
        return 1;
    }
    uint8_t *buffer = static_cast<uint8_t *>(dumps::AllocReported(length));
    if (buffer == nullptr) {
        printf("Unable to allocate buffer to get Expander Trace!!!\n\n");
        return 1;
    }
    const uint32_t size = length;
    printf("\n\n\nUploading Trace Buffer.. Going to take 1 to 2 minutes \n");
    status = read(device, buffer, &length);
    // The library never delivers more than the buffer holds; a faulty one is not believed.
    uint32_t count = length < size ? length : size;
    if (status == ZENTREL_STATUS_TRACE_GREW) {
        printf("\n\n\nValid Trace Buffer data collected \n");
        printf("\n\n\n Memory Size has increased, unable to decode full buffer\n");
        dumps::SaveToFile(fixedName, buffer, count, kCollected);
    } else if (status == ZENTREL_STATUS_SUCCESS) {
        printf("\n\n\nValid Trace Buffer data collected \n");
        if (!numbered) {
            dumps::SaveToFile(fixedName, buffer, count, kCollected);
        } else {
            MutexGuard guard(&gDecodedTraceFileMutex);
            char name[dumps::kFileNameSize];
            snprintf(name, sizeof name, "tracedecodedbuffer_%x.txt", dumps::AddressNumber(variable));
            dumps::SaveToFile(name, buffer, count, kCollected);
            FreeBuffer(buffer);
            return 0;
        }
    } else {
        printf("Get Switch Trace logs failed with libStatus %x\n", status);
    }
    FreeBuffer(buffer);
    return 0;
}

}  // namespace

uint32_t GetTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -gettrace\n");
        return 0;
    }
    return ReadTrace(device, ZentrelGetTraceBuffer, "tracebuffer.txt", false, &device);
}

uint32_t GetDecodedTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -getdecodedtrace\n");
        return 0;
    }
    return ReadTrace(device, ZentrelSwitchGetDecodedTraceBuffer, "tracedecodedbuffer.txt", true, &device);
}
