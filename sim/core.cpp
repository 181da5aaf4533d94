// State, scenario file, call accounting and trace of the simulated library.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cctype>
#include <cstring>
#include <thread>

#include "recording.h"
#include "sim.h"

namespace sim {

namespace {

const char kScenarioVariable[] = "ZENTREL_SIM_SCENARIO";
const char kTraceVariable[] = "ZENTREL_SIM_TRACE";
constexpr size_t kDefaultDeviceCount = 2;
constexpr size_t kMaxDevices = 64;
// The most bytes of a buffer a trace line shows.
constexpr size_t kTracedBufferBytes = 64;
// The longest a scenario may delay one call, all its injections together.
constexpr uint32_t kMaxLatencyMs = 600000;

State gState;
std::mutex gTraceMutex;
FILE *gTrace = nullptr;

void Complain(const char *path, const std::string &problem) {
    fprintf(stderr, "zentrel-sim: scenario file %s: %s\n", path, problem.c_str());
}

// A scenario naming any function the simulator does not export is refused
// instead of silently doing nothing.
bool IsKnownFunction(const std::string &name) { return zrec::FindFunction(name.c_str()) != nullptr; }

bool ReadInjection(const Json &entry, Injection *out, Problem *error) {
    if (!entry.is_object()) {
        *error = "must be an object, not " + Excerpt(entry);
        return false;
    }
    for (auto it = entry.begin(); it != entry.end(); ++it) {
        const std::string &key = it.key();
        if (key == "function") {
            if (!it->is_string() || !IsKnownFunction(it->get<std::string>())) {
                *error = "must name a library function, not " + Excerpt(*it);
                return error->In(key);
            }
            out->function = it->get<std::string>();
        } else if (key == "status") {
            if (!Store(*it, &out->status, error)) return error->In(key);
            out->hasStatus = true;
        } else if (key == "onCall") {
            if (!Store(*it, &out->onCall, error)) return error->In(key);
            if (out->onCall == 0) {
                *error = "counts from 1";
                return error->In(key);
            }
        } else if (key == "latencyMs") {
            if (!Store(*it, &out->latencyMs, error, kMaxLatencyMs)) return error->In(key);
        } else {
            *error = "unknown key " + Quote(key);
            return false;
        }
    }
    if (out->function.empty()) {
        *error = "needs \"function\"";
        return false;
    }
    return true;
}

// A list of injections; all of them together may delay one call by at most
// kMaxLatencyMs.
bool ReadInjections(const Json &list, Problem *error) {
    if (!list.is_array()) {
        *error = "must be a list, not " + Excerpt(list);
        return false;
    }
    uint64_t totalLatency = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        Injection injection;
        if (!ReadInjection(list[i], &injection, error)) return error->At(i);
        totalLatency += injection.latencyMs;
        if (totalLatency > kMaxLatencyMs) {
            *error = "the latencies add up to more than " + std::to_string(kMaxLatencyMs) + " ms";
            return error->At(i);
        }
        gState.injections.push_back(injection);
    }
    return true;
}

bool ApplyScenario(const Json &doc, Problem *error) {
    if (!doc.is_object()) {
        *error = "the top level must be an object";
        return false;
    }
    size_t count = kDefaultDeviceCount;
    if (const Json *v = Member(doc, "deviceCount")) {
        if (!Store(*v, &count, error, kMaxDevices)) return error->In("deviceCount");
    }
    gState.devices.resize(count);
    for (size_t i = 0; i < count; ++i)
        for (const ModelPart *const *part = kModelParts; *part != nullptr; ++part) (*part)->setDefaults(gState.devices[i], i);
    for (auto it = doc.begin(); it != doc.end(); ++it) {
        const std::string &key = it.key();
        if (key == "deviceCount" || key == "comment") continue;
        if (key == "devices") {
            if (!it->is_array() || it->size() > count) {
                *error = "must be a list of at most deviceCount (" + std::to_string(count) + ") entries";
                return error->In(key);
            }
            for (size_t i = 0; i < it->size(); ++i)
                if (!ApplyDeviceKeys(gState.devices[i], (*it)[i], error)) return error->At(i), error->In(key);
        } else if (key == "inject") {
            if (!ReadInjections(*it, error)) return error->In(key);
        } else if (key == "library") {
            if (!ApplyLibraryKeys(*it, error)) return error->In(key);
        } else {
            *error = "unknown key " + Quote(key);
            return false;
        }
    }
    return true;
}

// Builds the model once, from the defaults and the scenario file if one is named.
void Load() {
    if (gState.loaded) return;
    gState.loaded = true;
    const char *path = getenv(kScenarioVariable);
    Json doc = Json::object();
    std::string why;
    if (path != nullptr && *path != '\0' && !ReadJsonFile(path, &doc, &why)) {
        Complain(path, why);
        gState.unusable = true;
        return;
    }
    Problem error;
    if (!ApplyScenario(doc, &error)) {
        Complain(path, error.Text());
        gState.unusable = true;
        gState.devices.clear();
        gState.injections.clear();
        return;
    }
    for (size_t i = 0; i < gState.devices.size(); ++i) gState.found.push_back(i);
}

uint64_t CountCall(const char *function) {
    for (auto &entry : gState.callCounts)
        if (entry.first == function) return ++entry.second;
    gState.callCounts.emplace_back(function, 1);
    return 1;
}

}  // namespace

// One row a part of the model, one line each (a new part adds one line).
const ModelPart *const kModelParts[] = {
    &kFrontendPart,
    &kSettingsPart,
    &kStatusPart,
    &kImagesPart,
    &kSecurityPart,
    &kPortsPart,
    &kDumpsPart,
    &kTopologyPart,
    &kLinkPart,
    &kPhyPart,
    &kDebugTokenPart,
    &kDesignedAPart,
    &kDesignedBPart,
    nullptr,
};

bool ApplyDeviceKeys(Device &device, const Json &keys, Problem *error) {
    if (!keys.is_object()) {
        *error = "must be an object, not " + Excerpt(keys);
        return false;
    }
    for (auto it = keys.begin(); it != keys.end(); ++it) {
        int r = 0;
        for (const ModelPart *const *part = kModelParts; r == 0 && *part != nullptr; ++part)
            r = (*part)->applyKey(device, it.key(), *it, error);
        if (r < 0) return error->In(it.key());
        if (r == 0) {
            *error = "unknown device key " + Quote(it.key());
            return false;
        }
    }
    return true;
}

bool ApplyLibraryKeys(const Json &keys, Problem *error) {
    if (!keys.is_object()) {
        *error = "must be an object, not " + Excerpt(keys);
        return false;
    }
    for (auto it = keys.begin(); it != keys.end(); ++it) {
        int r = 0;
        for (const ModelPart *const *part = kModelParts; r == 0 && *part != nullptr; ++part)
            if ((*part)->applyLibraryKey != nullptr) r = (*part)->applyLibraryKey(it.key(), *it, error);
        if (r < 0) return error->In(it.key());
        if (r == 0) {
            *error = "unknown library key " + Quote(it.key());
            return false;
        }
    }
    return true;
}

State &Call::Model() { return gState; }

Call &Call::Dev(PTR_ZENTREL_DEVICE device) {
    hasDevice_ = true;
    if (device == nullptr)
        nullDevice_ = true;
    else
        memcpy(&handle_, device, sizeof handle_);
    return *this;
}

bool Tracing() {
    const char *path = getenv(kTraceVariable);
    return path != nullptr && *path != '\0';
}

// Bytes in memory order, four to a group, so that u32 fields stand apart;
// anything longer (most often a buffer) shows its first kTracedBufferBytes.
std::string TraceArguments(const zrec::Arg *args, size_t count) {
    std::string out;
    for (size_t i = 0; i < count; ++i) {
        const zrec::Arg &a = args[i];
        std::string value;
        switch (a.kind) {
        case zrec::Kind::Out:
        case zrec::Kind::OutFilled:
            if (a.present) continue;  // filled by the library: only a null one is shown
            value = "null";
            break;
        case zrec::Kind::Device:
            if (!a.present) {
                value = "null";
                break;
            }
            [[fallthrough]];
        case zrec::Kind::Scalar: {
            char text[24];
            snprintf(text, sizeof text, a.kind == zrec::Kind::Device || a.hex ? "0x%llx" : "%llu",
                     static_cast<unsigned long long>(a.value));
            value = text;
            break;
        }
        case zrec::Kind::In:
        case zrec::Kind::InOut: {
            if (!a.present) {
                value = "null";
                break;
            }
            // A record as recordings hold it: the same on the 32-bit
            // controller and on a 64-bit machine.
            std::vector<uint8_t> bytes = zrec::HeldBytes(a);
            std::string hex;
            zrec::AppendHex(hex, bytes.data(), bytes.size() < kTracedBufferBytes ? bytes.size() : kTracedBufferBytes);
            value = "[";
            for (size_t j = 0; j < hex.size(); j += 8) value += (j > 0 ? " " : "") + hex.substr(j, 8);
            if (bytes.size() > kTracedBufferBytes) value += " ... " + std::to_string(bytes.size()) + " bytes";
            value += ']';
            break;
        }
        case zrec::Kind::Text:
        case zrec::Kind::FileOut:
        case zrec::Kind::DirOut:
            if (a.kind == zrec::Kind::FileOut && strcmp(a.name, "file") == 0) continue;  // written by the library itself
            value = a.bytes == nullptr ? "null" : "\"" + std::string(static_cast<const char *>(a.bytes), strnlen(static_cast<const char *>(a.bytes), a.size == 0 ? 4096 : a.size)) + "\"";
            break;
        }
        if (!out.empty()) out += ", ";
        std::string name = a.name;
        name[0] = static_cast<char>(tolower(static_cast<unsigned char>(name[0])));
        out += name + "=" + value;
    }
    return out;
}

void WriteTrace(const char *function, const std::string &arguments, ZENTREL_STATUS status) {
    char result[32];
    snprintf(result, sizeof result, ") = 0x%x\n", status);
    std::string line = std::string(function) + "(" + arguments + result;
    std::lock_guard<std::mutex> guard(gTraceMutex);
    if (gTrace == nullptr) {
        gTrace = fopen(getenv(kTraceVariable), "a");
        if (gTrace == nullptr) return;
    }
    fputs(line.c_str(), gTrace);
    fflush(gTrace);
}

bool Call::Proceed(bool needsInit) {
    lock_ = std::unique_lock<std::mutex>(gState.mutex);
    Load();
    uint64_t number = CountCall(function_);
    uint64_t latency = 0;
    bool injected = false;
    for (const Injection &injection : gState.injections) {
        if (injection.function != function_) continue;
        if (injection.onCall != 0 && injection.onCall != number) continue;
        latency += injection.latencyMs;
        if (injection.hasStatus) {
            injected = true;
            status_ = injection.status;
        }
    }
    if (latency > 0) {
        lock_.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(latency));
        lock_.lock();
    }
    if (injected) return false;
    if (gState.unusable) {
        status_ = kStatusFailure;
        return false;
    }
    if (needsInit && !gState.initialized) {
        status_ = kStatusNotInitialized;
        return false;
    }
    if (hasDevice_) {
        if (nullDevice_) {
            status_ = kStatusInvalidParameter;
            return false;
        }
        for (Device &device : gState.devices)
            if (device.info.Handle == handle_) target_ = &device;
        if (target_ == nullptr) {
            status_ = kStatusNoSuchDevice;
            return false;
        }
        LogCall(target_->designedB, function_, number);
    }
    return true;
}

ZENTREL_STATUS Call::Return(ZENTREL_STATUS status) {
    status_ = status;
    return status_;
}

void ResetModel() {
    std::lock_guard<std::mutex> guard(gState.mutex);
    gState.loaded = false;
    gState.unusable = false;
    gState.initialized = false;
    gState.devices.clear();
    gState.found.clear();
    gState.injections.clear();
    gState.callCounts.clear();
    ResetLibParameters();
}

}  // namespace sim
