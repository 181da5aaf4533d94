#include "helpers.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "output.h"

namespace {

const char kDecimalMessage[] = "Only decimal supported, please check your input index\n";
const char kHexMessage[] = "Only Hex supported, please check your input index\n";

// strtol on the 32-bit controller: saturates to the int32 range.
int32_t ToSigned32(const char *text, int base, const char **end) {
    char *stop = nullptr;
    errno = 0;
    long long v = strtoll(text, &stop, base);
    *end = stop;
    if (v > INT32_MAX) return INT32_MAX;
    if (v < INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(v);
}

// strtoul on the 32-bit controller: a negative text wraps, anything whose
// magnitude does not fit 32 bits saturates to UINT32_MAX.
uint32_t ToUnsigned32(const char *text, int base, const char **end) {
    char *stop = nullptr;
    errno = 0;
    unsigned long long v = strtoull(text, &stop, base);
    *end = stop;
    bool overflow = errno == ERANGE;
    const char *p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
    bool negative = *p == '-';
    unsigned long long magnitude = negative ? 0ULL - v : v;
    if (overflow || magnitude > UINT32_MAX) return UINT32_MAX;
    return static_cast<uint32_t>(v);
}

template <typename T, typename Convert>
int Parse(const char *text, T *value, int base, const char *message, Convert convert) {
    if (text == nullptr) {  // an absent word is not a number
        *value = 0;
        printf("%s", message);
        return 1;
    }
    const char *end = nullptr;
    *value = convert(text, base, &end);
    if (*end != '\0') {
        printf("%s", message);
        return 1;
    }
    return 0;
}

}  // namespace

int ParseDecimal(const char *text, int32_t *value) {
    return Parse(text, value, 10, kDecimalMessage, ToSigned32);
}

int ParseUnsignedDecimal(const char *text, uint32_t *value) {
    return Parse(text, value, 10, kDecimalMessage, ToUnsigned32);
}

int ParseHex(const char *text, int32_t *value) {
    return Parse(text, value, 16, kHexMessage, ToSigned32);
}

int ParseUnsignedHex(const char *text, uint32_t *value) {
    return Parse(text, value, 16, kHexMessage, ToUnsigned32);
}

int GetFileLength(FILE *stream, uint32_t *length) {
    long here = ftell(stream);
    fseek(stream, 0, SEEK_END);
    *length = static_cast<uint32_t>(ftell(stream));
    rewind(stream);
    fseek(stream, here, SEEK_SET);
    return 0;
}

int ReadExact(FILE *stream, void *buffer, uint32_t count) {
    if (stream == nullptr) return 1;
    return fread(buffer, 1, count, stream) < count ? 1 : 0;
}

FILE *OpenRegularFile(const char *path) {
    if (path == nullptr) return nullptr;
    // Non-blocking, so that opening a FIFO never waits for a writer.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return nullptr;
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return nullptr;
    }
    FILE *file = fdopen(fd, "rb");
    if (file == nullptr) close(fd);
    return file;
}

int ReadWholeFile(const char *path, uint8_t **buffer, uint32_t *length) {
    FILE *file = OpenRegularFile(path);
    if (file == nullptr) {
        printf("NULL pointer for file\n");
        return 1;
    }
    if (GetFileLength(file, length) != 0) {
        printf("file length read error\n");
        fclose(file);
        return 1;
    }
    if (*length == 0) {
        printf("file length less than 0, file length %d\n", static_cast<int>(*length));
        fclose(file);
        return 1;
    }
    *buffer = static_cast<uint8_t *>(AllocZeroed(*length));
    if (*buffer == nullptr) {
        printf("Unable to allocate buffer for file\n");
        fclose(file);
        return 1;
    }
    if (ReadExact(file, *buffer, *length) != 0) {
        printf("file read error\n");
        FreeBuffer(*buffer);
        fclose(file);
        return 1;
    }
    fclose(file);
    return 0;
}

int WriteBufferToFile(FILE *stream, const void *buffer, uint32_t count) {
    fwrite(buffer, 1, count, stream);
    return 0;
}

void *AllocZeroed(size_t size) {
    return calloc(1, size == 0 ? 1 : size);
}

void FreeBuffer(void *buffer) {
    if (buffer != nullptr) free(buffer);
}

int DumpHex(FILE *stream, const uint8_t *bytes, int32_t count) {
    if (count < 1) {
        fputc('\n', stream);
        return 0;
    }
    for (int32_t i = 0; i < count; ++i) {
        if (i % 16 == 0) fputc('\n', stream);
        fprintf(stream, "%02X  ", bytes[i]);
    }
    fputc('\n', stream);
    return count;
}

void SleepUs(uint64_t microseconds) {
    // What was printed shows while the utility waits.
    FlushOutput();
    // usleep takes at most a second at a time on some C libraries.
    while (microseconds > 0) {
        useconds_t step = microseconds > 500000 ? 500000 : static_cast<useconds_t>(microseconds);
        usleep(step);
        microseconds -= step;
    }
}

void SleepMs(uint32_t milliseconds) {
    SleepUs(1000ULL * milliseconds);
}

bool WantsUsage(const char *const *words) {
    return words != nullptr && words[0] != nullptr && strcmp(words[0], "-h") == 0;
}

bool WantsUsageOrMissing(const char *const *words) {
    const char *first = WordAt(words, 0);
    return first == nullptr || strcmp(first, "-h") == 0;
}

const char *WordAt(const char *const *words, size_t index) {
    if (words == nullptr) return nullptr;
    for (size_t i = 0; i < index; ++i)
        if (words[i] == nullptr) return nullptr;
    return words[index];
}

const char *Shown(const char *text) {
    return text != nullptr ? text : "(null)";
}
