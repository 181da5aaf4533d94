// Number parsing, file and buffer helpers shared by every command handler.
#ifndef ZENTRELLIBTEST_HELPERS_H
#define ZENTRELLIBTEST_HELPERS_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <pthread.h>

// Each parser always stores the converted value, and returns 0 when the
// whole text was consumed, otherwise 1 after printing its message.
// Out-of-range values saturate to the 32-bit range of the controller.
int ParseDecimal(const char *text, int32_t *value);
int ParseUnsignedDecimal(const char *text, uint32_t *value);
int ParseHex(const char *text, int32_t *value);
int ParseUnsignedHex(const char *text, uint32_t *value);

// Opens a path for binary reading when it names a regular file; null for a
// null path, a missing or unreadable file, a directory, a FIFO or a device.
FILE *OpenRegularFile(const char *path);
int GetFileLength(FILE *stream, uint32_t *length);
int ReadExact(FILE *stream, void *buffer, uint32_t count);
// On success the caller owns *buffer and releases it with FreeBuffer.
// On failure *buffer may still hold a released address: do not free it.
int ReadWholeFile(const char *path, uint8_t **buffer, uint32_t *length);
int WriteBufferToFile(FILE *stream, const void *buffer, uint32_t count);
void *AllocZeroed(size_t size);
void FreeBuffer(void *buffer);
int DumpHex(FILE *stream, const uint8_t *bytes, int32_t count);
// Both write out what was printed before they wait.
void SleepUs(uint64_t microseconds);
void SleepMs(uint32_t milliseconds);

// A text field of a record, which need not be terminated, copied into a
// zeroed buffer so that it prints as at most its width.
template <size_t Width>
struct FieldText {
    char text[Width + 1] = {};
    explicit FieldText(const char (&field)[Width]) { memcpy(text, field, Width); }
};

// True when the word list exists, has a first word, and that word is "-h".
bool WantsUsage(const char *const *words);
// True when the word list has no first word, or that word is "-h".
bool WantsUsageOrMissing(const char *const *words);
// The word at position index, or null when the list ends before it.
const char *WordAt(const char *const *words, size_t index);
// A text for "%s": what the C library prints for an absent text.
const char *Shown(const char *text);

// Holds a mutex for a scope. A POSIX mutex rather than std::mutex, whose
// error path would tie the utility to the C++ library at run time.
class MutexGuard {
public:
    explicit MutexGuard(pthread_mutex_t *mutex) : mutex_(mutex) { pthread_mutex_lock(mutex_); }
    ~MutexGuard() { pthread_mutex_unlock(mutex_); }
    MutexGuard(const MutexGuard &) = delete;
    MutexGuard &operator=(const MutexGuard &) = delete;

private:
    pthread_mutex_t *mutex_;
};

#endif
