#include "harness.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "frontend/commands.h"
#include "frontend/discovery.h"
#include "images/images.h"
#include "sim.h"

namespace {

// Waits of the code under test return at once; the fuzzer's own threads
// (which never set this) still sleep.
thread_local bool tFastWaits = false;
std::string gScratch;
std::vector<uint8_t> gInput;
bool gLibrary = false;

void EmptyScratch() {
    DIR *dir = opendir(".");
    if (dir == nullptr) return;
    while (dirent *entry = readdir(dir)) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) continue;
        if (unlink(entry->d_name) != 0) rmdir(entry->d_name);
    }
    closedir(dir);
}

}  // namespace

// The utility waits with usleep, the simulator's injected latency with
// nanosleep (through std::this_thread::sleep_for).
extern "C" int usleep(useconds_t microseconds) {
    if (tFastWaits) return 0;
    using Real = int (*)(useconds_t);
    static Real real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "usleep"));
    return real(microseconds);
}

extern "C" int nanosleep(const struct timespec *request, struct timespec *remaining) {
    if (tFastWaits) return 0;
    using Real = int (*)(const struct timespec *, struct timespec *);
    static Real real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "nanosleep"));
    return real(request, remaining);
}

namespace fuzz {

void Setup() {
    static bool done = false;
    if (done) return;
    done = true;
    const char *base = getenv("ZENTREL_FUZZ_SCRATCH");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/zentrel-fuzz.XXXXXX";
    std::vector<char> path(pattern.begin(), pattern.end());
    path.push_back('\0');
    if (mkdtemp(path.data()) == nullptr || chdir(path.data()) != 0) {
        perror("zentrel fuzz: scratch directory");
        abort();
    }
    gScratch = path.data();
    int null = open("/dev/null", O_RDWR);
    if (null >= 0) {
        dup2(null, STDIN_FILENO);
        close(null);
    }
    FILE *sink = fopen("/dev/null", "w");
    if (sink != nullptr) stdout = sink;
    unsetenv("ZENTREL_SIM_SCENARIO");
    unsetenv("ZENTREL_SIM_STATE");
    unsetenv("ZENTREL_SIM_TRACE");
    // The directory goes when the fuzzer ends normally.
    atexit([] {
        if (chdir(gScratch.c_str()) == 0) EmptyScratch();
        if (chdir("/") == 0) rmdir(gScratch.c_str());
    });
}

void Begin(const uint8_t *input, size_t size, bool library) {
    Setup();
    gLibrary = library;
    // fmemopen refuses an empty buffer; one byte of room, none of content.
    gInput.assign(input, input + size);
    gInput.push_back(0);
    stdin = fmemopen(gInput.data(), size == 0 ? 1 : size, "r");
    if (stdin != nullptr && size == 0) fgetc(stdin);
    if (stdin == nullptr) abort();
    tFastWaits = true;
    if (!library) return;
    Fresh();
    ZentrelInitialize();
}

void Fresh() {
    EmptyScratch();
    sim::ResetModel();
    ForgetDownloadOptions();
    gSelectedDeviceHandle = 0xFF;
    gDevicesFound = 0;
    gSelectedDeviceIndex = 0;
}

// Some commands leave their file open, as the tool has always done (the
// process ends soon after); here the process runs on, so what an input left
// open in the scratch directory is closed as its process would have been.
static void CloseStrayFiles() {
    DIR *fds = opendir("/proc/self/fd");
    if (fds == nullptr) return;
    std::vector<int> stray;
    while (dirent *entry = readdir(fds)) {
        char link[64], target[4096];
        snprintf(link, sizeof link, "/proc/self/fd/%s", entry->d_name);
        ssize_t n = readlink(link, target, sizeof target - 1);
        if (n <= 0) continue;
        target[n] = '\0';
        if (strncmp(target, gScratch.c_str(), gScratch.size()) == 0) stray.push_back(atoi(entry->d_name));
    }
    closedir(fds);
    for (int fd : stray) close(fd);
}

void End() {
    if (gLibrary) ZentrelExit();
    CloseStrayFiles();
    tFastWaits = false;
    fclose(stdin);
    stdin = nullptr;
}

std::vector<std::string> Words(const uint8_t *data, size_t size) {
    std::vector<std::string> words;
    std::string word;
    for (size_t i = 0; i < size; ++i) {
        char c = static_cast<char>(data[i]);
        if (c == '\n') {
            words.push_back(word);
            word.clear();
        } else {
            word += c == '/' || c == '\0' ? '_' : c;
        }
    }
    if (!word.empty()) words.push_back(word);
    return words;
}

std::vector<char *> Argv(std::vector<std::string> &words) {
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    return argv;
}

void Dispatch(std::initializer_list<const char *> list) {
    std::vector<std::string> words(list.begin(), list.end());
    std::vector<char *> argv = Argv(words);
    uint32_t position = 0;
    DispatchCommand(static_cast<uint32_t>(words.size()), argv.data(), &position);
}

void WriteFile(const char *name, const uint8_t *data, size_t size) {
    FILE *file = fopen(name, "wb");
    if (file == nullptr) abort();
    if (size > 0 && fwrite(data, 1, size, file) != size) abort();
    fclose(file);
}

}  // namespace fuzz
