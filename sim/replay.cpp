// Replay of a recording made with the recording library: each call is
// answered with what the recorded library answered to the same call.
// Calls are matched per function and device, in the order recorded, so
// that the threads of a parallel test may interleave differently.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <map>
#include <mutex>

#include "recording.h"
#include "sim.h"

namespace sim {

namespace {

const char kReplayVariable[] = "ZENTREL_SIM_REPLAY";
// The longest excerpt of a call a message shows.
constexpr size_t kShown = 160;

struct Replayer {
    std::once_flag once;
    bool usable = false;
    std::string path;
    std::vector<zrec::Entry> entries;
    std::map<std::string, std::deque<size_t>> pending;  // by function and device
    std::mutex mutex;
};
Replayer gReplay;

std::string Key(const std::string &function, const std::string &device) { return function + " " + device; }

bool Refuse(size_t line, const std::string &problem) {
    fprintf(stderr, "zentrel-sim: recording %s: line %zu: %s\n", gReplay.path.c_str(), line, problem.c_str());
    return false;
}

bool Load() {
    std::ifstream in(gReplay.path, std::ios::binary);
    if (!in) {
        fprintf(stderr, "zentrel-sim: recording %s cannot be read\n", gReplay.path.c_str());
        return false;
    }
    std::string text;
    size_t line = 0;
    while (std::getline(in, text)) {
        ++line;
        if (in.eof()) return Refuse(line, "truncated (no end of line)");
        if (line == 1) {
            if (text != zrec::kHeader) return Refuse(line, std::string("not a recording: expected \"") + zrec::kHeader + "\"");
            continue;
        }
        if (text.empty() || text[0] == '#') continue;
        zrec::Entry entry;
        std::string problem;
        if (!zrec::ParseLine(text, &entry, &problem)) return Refuse(line, problem);
        entry.line = line;
        gReplay.pending[Key(entry.function->name, entry.device)].push_back(gReplay.entries.size());
        gReplay.entries.push_back(std::move(entry));
    }
    if (line == 0) return Refuse(1, "empty");
    return true;
}

void Open() {
    gReplay.path = getenv(kReplayVariable);
    // The recording holds what the recorded library put there, from the start.
    memset(&switchMfgInfo_temp, 0, sizeof switchMfgInfo_temp);
    gReplay.usable = Load();
}

std::string Shown(const std::string &text) {
    return text.size() <= kShown ? text : text.substr(0, kShown) + "...";
}

// The first argument of two calls' texts that differs, as "got, expected".
std::string FirstDifference(const std::string &got, const std::string &expected) {
    size_t start = 0;
    while (start < got.size() && start < expected.size() && got[start] == expected[start]) ++start;
    size_t from = start == 0 ? std::string::npos : got.rfind(' ', start - 1);
    from = from == std::string::npos ? got.find('(') : from;
    auto token = [from](const std::string &text) {
        size_t end = text.find(' ', from + 1);
        if (end == std::string::npos) end = text.size() - 1;
        return Shown(text.substr(from + 1, end - from - 1));
    };
    return token(got) + ", expected " + token(expected);
}

// Writes one recorded out-value where the call's argument of that name points.
void Apply(const std::string &name, const std::vector<uint8_t> &bytes, zrec::Arg *args, size_t count) {
    if (name == zrec::kMfgObjectName) {
        memcpy(&switchMfgInfo_temp, bytes.data(), sizeof switchMfgInfo_temp);
        return;
    }
    if (name.compare(0, strlen(zrec::kFilePrefix), zrec::kFilePrefix) == 0) {
        std::string path;
        zrec::DecodeText(name.substr(strlen(zrec::kFilePrefix)), &path);
        if (!WriteFileBytes(path.c_str(), bytes))
            fprintf(stderr, "zentrel-sim: replay: cannot write %s\n", path.c_str());
        return;
    }
    for (size_t i = 0; i < count; ++i)
        if (name == args[i].name && args[i].present) {
            zrec::StoreHeldBytes(args[i], bytes);
            return;
        }
}

}  // namespace

bool Replaying() {
    static const bool replaying = getenv(kReplayVariable) != nullptr && *getenv(kReplayVariable) != '\0';
    return replaying;
}

ZENTREL_STATUS Replay(const char *function, zrec::Arg *args, size_t count) {
    std::call_once(gReplay.once, Open);
    if (!gReplay.usable) return kStatusFailure;
    std::string call = zrec::EncodeCall(function, args, count);
    std::string device;
    for (size_t i = 0; i < count; ++i)
        if (args[i].kind == zrec::Kind::Device) {
            char text[16];
            snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(args[i].value));
            device = args[i].present ? text : "null";
        }
    std::lock_guard<std::mutex> guard(gReplay.mutex);
    std::deque<size_t> &pending = gReplay.pending[Key(function, device)];
    if (pending.empty()) {
        fprintf(stderr, "zentrel-sim: replay: %s is not in the recording: it holds no further %s call%s%s\n",
                Shown(call).c_str(), function, device.empty() ? "" : " for device ", device.c_str());
        return kStatusNotRecorded;
    }
    // A call on a switch is the next one recorded on that switch. Threads
    // that each work on a switch of their own also make calls without a
    // device argument (the device information by handle): such a call is
    // the first recorded one that equals it.
    auto next = pending.begin();
    if (device.empty())
        while (next != pending.end() && gReplay.entries[*next].call != call) ++next;
    if (next == pending.end() || gReplay.entries[*next].call != call) {
        const zrec::Entry &expected = gReplay.entries[pending.front()];
        fprintf(stderr, "zentrel-sim: replay: %s is not in the recording: line %zu expects %s (%s)\n",
                Shown(call).c_str(), expected.line, Shown(expected.call).c_str(),
                FirstDifference(call, expected.call).c_str());
        return kStatusNotRecorded;
    }
    const zrec::Entry &entry = gReplay.entries[*next];
    pending.erase(next);
    std::vector<uint8_t> bytes;
    for (const auto &out : entry.outs) {
        zrec::DecodeHex(out.second.substr(1), &bytes);
        Apply(out.first, bytes, args, count);
    }
    return entry.status;
}

}  // namespace sim
