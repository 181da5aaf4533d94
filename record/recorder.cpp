// The recording library: exports the interface of libzentrel.so, loads the
// real library named by ZENTREL_RECORD_LIB, forwards every call to it and
// writes each call, with what it handed back, to ZENTREL_RECORD_FILE.
#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "recording.h"

// The library's data object, kept equal to the real library's after each call.
ZENTREL_SWITCH_MFG_INFO switchMfgInfo_temp = {};

namespace zrec {
namespace {

const char kLibraryVariable[] = "ZENTREL_RECORD_LIB";
const char kFileVariable[] = "ZENTREL_RECORD_FILE";
// The answer of every call when the real library cannot be loaded.
constexpr ZENTREL_STATUS kStatusNoLibrary = 0x1;
// Files the library writes are recorded up to this size.
constexpr off_t kMaxFileBytes = 64 << 20;

std::once_flag gOpened;
void *gLibrary = nullptr;
ZENTREL_SWITCH_MFG_INFO *gRealMfgInfo = nullptr;
std::mutex gFileMutex;
// Held for the whole of each call: the library's data object is written by
// its calls, so it can only be read whole, and a change to it put down to
// the call that made it, when no other call runs meanwhile. Threads (menu
// 94) therefore reach the library one at a time while a run is recorded.
std::mutex gCallMutex;
FILE *gFile = nullptr;

void Open() {
    const char *library = getenv(kLibraryVariable);
    if (library == nullptr || *library == '\0') {
        fprintf(stderr, "zentrel-record: %s does not name the library to record\n", kLibraryVariable);
        return;
    }
    gLibrary = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (gLibrary == nullptr) {
        fprintf(stderr, "zentrel-record: cannot load %s: %s\n", library, dlerror());
        return;
    }
    if (dlsym(gLibrary, "ZentrelInitialize") == reinterpret_cast<void *>(&ZentrelInitialize)) {
        fprintf(stderr, "zentrel-record: %s is the recording library itself\n", library);
        gLibrary = nullptr;
        return;
    }
    gRealMfgInfo = static_cast<ZENTREL_SWITCH_MFG_INFO *>(dlsym(gLibrary, kMfgObjectName));
    const char *path = getenv(kFileVariable);
    if (path == nullptr || *path == '\0') {
        fprintf(stderr, "zentrel-record: %s does not name the recording to write; calls are not recorded\n",
                kFileVariable);
        return;
    }
    gFile = fopen(path, "w");
    if (gFile == nullptr) {
        fprintf(stderr, "zentrel-record: cannot write %s: %s\n", path, strerror(errno));
        return;
    }
    fprintf(gFile, "%s\n", kHeader);
    fflush(gFile);
}

// What identifies one version of a file: it is written again when it changes.
struct Stamp {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    struct timespec modified = {};
    bool operator==(const Stamp &o) const {
        return exists == o.exists && device == o.device && inode == o.inode && size == o.size &&
               modified.tv_sec == o.modified.tv_sec && modified.tv_nsec == o.modified.tv_nsec;
    }
};

Stamp StampOf(const std::string &path) {
    Stamp s;
    struct stat st;
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return s;
    s.exists = true;
    s.device = st.st_dev;
    s.inode = st.st_ino;
    s.size = st.st_size;
    s.modified = st.st_mtim;
    return s;
}

// The regular files of a directory and their stamps.
std::map<std::string, Stamp> Listing(const char *directory) {
    std::map<std::string, Stamp> files;
    DIR *dir = opendir(directory);
    if (dir == nullptr) return files;
    std::string base = directory;
    if (!base.empty() && base.back() != '/') base += '/';
    while (struct dirent *e = readdir(dir)) {
        std::string path = base + e->d_name;
        Stamp s = StampOf(path);
        if (s.exists) files[path] = s;
    }
    closedir(dir);
    return files;
}

void AppendFile(std::string &line, const std::string &path) {
    FILE *f = fopen(path.c_str(), "rb");
    if (f == nullptr) return;
    std::vector<uint8_t> bytes;
    uint8_t chunk[65536];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, f)) > 0 && bytes.size() < static_cast<size_t>(kMaxFileBytes))
        bytes.insert(bytes.end(), chunk, chunk + n);
    fclose(f);
    line += ' ';
    line += kFilePrefix;
    line += EncodeText(path.c_str());
    line += "=x";
    AppendHex(line, bytes.data(), bytes.size());
}

}  // namespace

// One call on its way through: what it was given, then what it gave back.
class Recording {
public:
    Recording(const char *function, Arg *args, size_t count) : args_(args), count_(count) {
        // Taken before the first call loads the library: what the library
        // sets as it loads is recorded with that call.
        mfgBefore_ = switchMfgInfo_temp;
        std::call_once(gOpened, Open);
        if (gFile == nullptr) return;
        line_ = EncodeCall(function, args, count);
        for (size_t i = 0; i < count; ++i) {
            const Arg &a = args[i];
            if (!a.present) continue;
            if (a.kind == Kind::FileOut) files_[static_cast<const char *>(a.bytes)] = StampOf(static_cast<const char *>(a.bytes));
            if (a.kind == Kind::DirOut) {
                std::map<std::string, Stamp> listing = Listing(static_cast<const char *>(a.bytes));
                directories_.emplace_back(static_cast<const char *>(a.bytes), listing);
            }
        }
        if (gRealMfgInfo != nullptr) realMfgBefore_ = *gRealMfgInfo;
    }

    void *Real(const char *function) const {
        if (gLibrary == nullptr) return nullptr;
        void *real = dlsym(gLibrary, function);
        if (real == nullptr) fprintf(stderr, "zentrel-record: %s has no %s\n", getenv(kLibraryVariable), function);
        return real;
    }

    ZENTREL_STATUS Finish(ZENTREL_STATUS status) {
        // A library that writes its own object rather than the program's
        // copy of it: the program sees the new value.
        if (gRealMfgInfo != nullptr && gRealMfgInfo != &switchMfgInfo_temp &&
            memcmp(gRealMfgInfo, &realMfgBefore_, sizeof realMfgBefore_) != 0)
            switchMfgInfo_temp = *gRealMfgInfo;
        if (gFile == nullptr) return status;
        char text[32];
        snprintf(text, sizeof text, " = 0x%x", status);
        line_ += text;
        for (size_t i = 0; i < count_; ++i) {
            Arg &a = args_[i];
            if (!a.present || (a.kind != Kind::Out && a.kind != Kind::InOut && a.kind != Kind::OutFilled)) continue;
            if (a.kind == Kind::OutFilled) a.size = a.filled(a);
            std::vector<uint8_t> bytes = HeldBytes(a);
            line_ += ' ';
            line_ += a.name;
            line_ += "=x";
            AppendHex(line_, bytes.data(), bytes.size());
        }
        for (const auto &file : files_)
            if (!(StampOf(file.first) == file.second) && StampOf(file.first).exists) AppendFile(line_, file.first);
        for (const auto &directory : directories_)
            for (const auto &file : Listing(directory.first.c_str())) {
                auto before = directory.second.find(file.first);
                if (before == directory.second.end() || !(before->second == file.second)) AppendFile(line_, file.first);
            }
        if (memcmp(&mfgBefore_, &switchMfgInfo_temp, sizeof mfgBefore_) != 0) {
            line_ += ' ';
            line_ += kMfgObjectName;
            line_ += "=x";
            AppendHex(line_, &switchMfgInfo_temp, sizeof switchMfgInfo_temp);
        }
        line_ += '\n';
        std::lock_guard<std::mutex> guard(gFileMutex);
        fputs(line_.c_str(), gFile);
        fflush(gFile);
        return status;
    }

private:
    std::lock_guard<std::mutex> serial_{gCallMutex};  // first: before anything is read
    Arg *args_;
    size_t count_;
    std::string line_;
    std::map<std::string, Stamp> files_;
    std::vector<std::pair<std::string, std::map<std::string, Stamp>>> directories_;
    ZENTREL_SWITCH_MFG_INFO mfgBefore_ = {};
    ZENTREL_SWITCH_MFG_INFO realMfgBefore_ = {};
};

}  // namespace zrec

#define ZENTREL_FUNCTION(name, ...)                                                                          \
    ZENTREL_API ZENTREL_STATUS name(ZI_PARAMS(__VA_ARGS__)) {                                                \
        ZI_ARGS(args, __VA_ARGS__);                                                                          \
        zrec::Recording recording(#name, args + 1, sizeof args / sizeof args[0] - 1);                        \
        auto real = reinterpret_cast<decltype(&name)>(recording.Real(#name));                                \
        return recording.Finish(real == nullptr ? zrec::kStatusNoLibrary : real(ZI_NAMES(__VA_ARGS__)));     \
    }
#include "zentrel_interface.def"
#undef ZENTREL_FUNCTION
