#include "output.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

namespace {

constexpr size_t kBufferSize = 4096;

char gBuffer[kBufferSize];
// Bytes gBuffer holds. Raised only after the bytes are copied in, so the
// signal handler never writes a byte that is not there yet.
std::atomic<size_t> gUsed{0};
// Lock-free atomics rather than volatile sig_atomic_t: the signal handler
// may run in another thread than the one printing.
static_assert(std::atomic<size_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);
// Set while a thread writes the buffer out. That thread has the ending
// signals blocked; a handler running in another thread waits for it.
std::atomic<bool> gDraining{false};
bool gLineByLine = false;
// The C library already runs Gather with the stream locked, one printf at
// a time; this lock (always taken inside the stream lock, so it never
// waits) only makes that order visible to ThreadSanitizer, which does not
// see the C library's own stream lock.
pthread_mutex_t gBufferMutex = PTHREAD_MUTEX_INITIALIZER;

void WriteAll(const char *bytes, size_t count) {
    while (count > 0) {
        ssize_t written = write(STDOUT_FILENO, bytes, count);
        if (written < 0) {
            if (errno == EINTR) continue;
            return;  // nowhere to report it: standard output is what failed
        }
        bytes += written;
        count -= static_cast<size_t>(written);
    }
}

// Called with the stream and gBufferMutex locked (by Gather while
// printing, by FlushOutput otherwise).
void Drain() {
    if (gUsed == 0) return;
    sigset_t ending, previous;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGQUIT);
    pthread_sigmask(SIG_BLOCK, &ending, &previous);
    gDraining = true;
    WriteAll(gBuffer, gUsed);
    gUsed = 0;
    gDraining = false;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

ssize_t Gather(void *, const char *bytes, size_t count) {
    pthread_mutex_lock(&gBufferMutex);
    const char *next = bytes;
    size_t left = count;
    while (left > 0) {
        if (gUsed == kBufferSize) Drain();
        size_t room = kBufferSize - gUsed;
        size_t part = left < room ? left : room;
        memcpy(gBuffer + gUsed, next, part);
        gUsed += part;
        next += part;
        left -= part;
    }
    if (gLineByLine && memchr(bytes, '\n', count) != nullptr) Drain();
    pthread_mutex_unlock(&gBufferMutex);
    return static_cast<ssize_t>(count);
}

void FlushAtExit() {
    FlushOutput();
}

}  // namespace

void StartBufferedOutput() {
    cookie_io_functions_t functions = {nullptr, Gather, nullptr, nullptr};
    FILE *stream = fopencookie(nullptr, "w", functions);
    if (stream == nullptr) {
        // Unbuffered output still keeps every promise, only slower.
        setvbuf(stdout, nullptr, _IONBF, 0);
        return;
    }
    // The stream hands every printf to Gather at once; the buffering is ours.
    setvbuf(stream, nullptr, _IONBF, 0);
    fflush(stdout);
    gLineByLine = isatty(STDOUT_FILENO) != 0;
    stdout = stream;
    atexit(FlushAtExit);
}

void FlushOutput() {
    flockfile(stdout);
    pthread_mutex_lock(&gBufferMutex);
    Drain();
    pthread_mutex_unlock(&gBufferMutex);
    funlockfile(stdout);
}

void WritePendingOutput() {
    // Another thread writing the buffer out finishes first (for at most a
    // fifth of a second, in case its write is stuck on a stopped terminal).
    timespec start, now;
    clock_gettime(CLOCK_MONOTONIC, &start);
    while (gDraining) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        if ((now.tv_sec - start.tv_sec) * 1000000000L + (now.tv_nsec - start.tv_nsec) > 200000000L) return;
    }
    WriteAll(gBuffer, gUsed);
    gUsed = 0;
}
