#include <cstdio>

#include "dumps.h"
#include "frontend/helpers.h"

namespace dumps {

namespace {

// No trace memory or core dump section comes near this; a larger size is
// a library fault, answered as an allocation failure.
constexpr uint64_t kMaxReportedBytes = 256u << 20;

}  // namespace

uint32_t AddressNumber(const void *variable) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(variable));
}

void *AllocReported(uint64_t size) {
    if (size > kMaxReportedBytes) return nullptr;
    return AllocZeroed(static_cast<size_t>(size));
}

void SaveToFile(const char *name, const void *buffer, uint32_t count, const char *collected) {
    FILE *file = fopen(name, "wb");
    if (file == nullptr) {
        printf("File creation failed!!\n");
        return;
    }
    WriteBufferToFile(file, buffer, count);
    fclose(file);
    printf("Buffer saved to the file..\n");
    printf("%s\n", collected);
}

}  // namespace dumps
