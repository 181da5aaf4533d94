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

// The buffer the C library fills for standard output; 4096 bytes, as it
// would choose for a pipe or a file.
constexpr size_t kBufferSize = 4096;
char gBuffer[kBufferSize];

// Set while a thread writes the buffer out. That thread has the ending
// signals blocked; a handler running in another thread waits for it. A
// lock-free atomic rather than volatile sig_atomic_t: the handler may run
// in another thread than the one printing.
std::atomic<bool> gDraining{false};
static_assert(std::atomic<bool>::is_always_lock_free);
bool gLineByLine = false;
FILE *gStream = nullptr;
// The C library calls WriteOut with the stream locked, one thread at a
// time; this lock (always taken inside the stream lock, so it never waits)
// only makes that order visible to ThreadSanitizer, which does not see the
// C library's own stream lock.
pthread_mutex_t gWriteOutMutex = PTHREAD_MUTEX_INITIALIZER;

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

// The stream's write function: the C library calls it, with the stream
// locked, to write out its buffer (or, for a large piece, the caller's
// bytes directly after the buffer). The ending signals stay blocked until
// the stream shows the written bytes as gone, so that a signal handler
// never writes them a second time: the pending count is set to zero here,
// before the C library does the same.
ssize_t WriteOut(void *, const char *bytes, size_t count) {
    sigset_t ending, previous;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGQUIT);
    pthread_sigmask(SIG_BLOCK, &ending, &previous);
    pthread_mutex_lock(&gWriteOutMutex);
    gDraining = true;
    WriteAll(bytes, count);
    if (bytes == gStream->_IO_write_base) gStream->_IO_write_ptr = gStream->_IO_write_base;
    gDraining = false;
    pthread_mutex_unlock(&gWriteOutMutex);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return static_cast<ssize_t>(count);
}

// Before the handlers registered earlier, such as a leak checker that may
// end the process itself, and before the library unloads.
void FlushAtExit() {
    FlushOutput();
}

}  // namespace

void StartBufferedOutput() {
    gLineByLine = isatty(STDOUT_FILENO) != 0;
    cookie_io_functions_t functions = {nullptr, WriteOut, nullptr, nullptr};
    FILE *stream = fopencookie(nullptr, "w", functions);
    if (stream == nullptr || setvbuf(stream, gBuffer, gLineByLine ? _IOLBF : _IOFBF, kBufferSize) != 0) {
        // Unbuffered output still keeps every promise, only slower.
        if (stream != nullptr) fclose(stream);
        setvbuf(stdout, nullptr, _IONBF, 0);
        return;
    }
    fflush(stdout);
    gStream = stream;
    stdout = stream;
    atexit(FlushAtExit);
}

void FlushOutput() {
    fflush(stdout);
}

void WritePendingOutput() {
    if (gStream == nullptr) return;  // unbuffered: nothing is pending
    // Another thread writing the buffer out finishes first (for at most a
    // fifth of a second, in case its write is stuck on a stopped terminal).
    timespec start, now;
    clock_gettime(CLOCK_MONOTONIC, &start);
    while (gDraining) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        if ((now.tv_sec - start.tv_sec) * 1000000000L + (now.tv_nsec - start.tv_nsec) > 200000000L) return;
    }
    // The C library moves the write pointer only after it has copied the
    // bytes in, so everything before it is complete.
    const char *base = gStream->_IO_write_base;
    const char *end = gStream->_IO_write_ptr;
    if (base != nullptr && end > base) {
        WriteAll(base, static_cast<size_t>(end - base));
        // Written: an exit path that still flushes the stream (a sanitizer's
        // own _exit does) must not write it a second time.
        gStream->_IO_write_ptr = gStream->_IO_write_base;
    }
}
