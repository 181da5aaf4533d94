// Files the simulated library reads and writes for its caller, and the
// filler of believable key and signature bytes.
#include <sys/stat.h>

#include <cstdio>

#include "sim.h"

namespace sim {

bool ReadFileBytes(const char *path, size_t max, std::vector<uint8_t> *bytes) {
    struct stat info;
    if (path == nullptr || stat(path, &info) != 0 || !S_ISREG(info.st_mode) || static_cast<uint64_t>(info.st_size) > max)
        return false;
    FILE *f = fopen(path, "rb");
    if (f == nullptr) return false;
    std::vector<uint8_t> data(static_cast<size_t>(info.st_size));
    bool ok = fread(data.data(), 1, data.size(), f) == data.size() && fgetc(f) == EOF;
    fclose(f);
    if (ok) *bytes = std::move(data);
    return ok;
}

bool WriteFileBytes(const char *path, const std::vector<uint8_t> &bytes) {
    if (path == nullptr) return false;
    FILE *f = fopen(path, "wb");
    if (f == nullptr) return false;
    bool ok = fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return fclose(f) == 0 && ok;
}

bool IsRegularFile(const char *path) {
    struct stat info;
    return path != nullptr && stat(path, &info) == 0 && S_ISREG(info.st_mode);
}

uint32_t Filler::Word() {
    // xorshift32: repeatable, and never stuck at zero.
    uint32_t x = state_ != 0 ? state_ : 0x6D2B79F5u;
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    state_ = x;
    return x;
}

void Filler::Bytes(uint8_t *out, size_t count) {
    for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>(Word() >> 24);
}

}  // namespace sim
