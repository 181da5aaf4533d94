#include "output.h"

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
volatile sig_atomic_t gUsed = 0;
// Set while a thread writes the buffer out. That thread has the ending
// signals blocked; a handler running in another thread waits for it.
volatile sig_atomic_t gDraining = 0;
bool gLineByLine = false;

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

// Called with the stream locked (by the C library while printing, by
// FlushOutput otherwise).
void Drain() {
    if (gUsed == 0) return;
    sigset_t ending, previous;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGQUIT);
    pthread_sigmask(SIG_BLOCK, &ending, &previous);
    gDraining = 1;
    WriteAll(gBuffer, static_cast<size_t>(gUsed));
    gUsed = 0;
    gDraining = 0;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

ssize_t Gather(void *, const char *bytes, size_t count) {
    const char *next = bytes;
    size_t left = count;
    while (left > 0) {
        if (static_cast<size_t>(gUsed) == kBufferSize) Drain();
        size_t room = kBufferSize - static_cast<size_t>(gUsed);
        size_t part = left < room ? left : room;
        memcpy(gBuffer + gUsed, next, part);
        gUsed = static_cast<sig_atomic_t>(gUsed + part);
        next += part;
        left -= part;
    }
    if (gLineByLine && memchr(bytes, '\n', count) != nullptr) Drain();
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
    Drain();
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
    WriteAll(gBuffer, static_cast<size_t>(gUsed));
    gUsed = 0;
}
