// State, scenario file, call accounting and trace of the simulated library.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "sim.h"

namespace sim {

namespace {

const char kScenarioVariable[] = "ZENTREL_SIM_SCENARIO";
const char kTraceVariable[] = "ZENTREL_SIM_TRACE";
constexpr size_t kDefaultDeviceCount = 2;
constexpr size_t kMaxDevices = 64;

State gState;
std::mutex gTraceMutex;
FILE *gTrace = nullptr;

// Finds out where and why a text is not JSON, without exceptions.
class SyntaxError : public nlohmann::json_sax<Json> {
public:
    std::string message = "is not valid JSON";
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t &) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &error) override {
        message = std::string("is not valid JSON: ") + error.what();
        return false;
    }
};

void Complain(const char *path, const std::string &problem) {
    fprintf(stderr, "zentrel-sim: scenario file %s: %s\n", path, problem.c_str());
}

// A scenario naming any function the simulator does not export is refused
// instead of silently doing nothing.
bool IsKnownFunction(const std::string &name) {
    for (const char *const *list : {kFrontendFunctions, kSettingsFunctions, kStatusFunctions})
        for (const char *const *f = list; *f != nullptr; ++f)
            if (name == *f) return true;
    return false;
}

bool Named(const std::string &key, std::string *error) {
    *error = "\"" + key + "\": " + *error;
    return false;
}

bool ReadInjection(const Json &entry, Injection *out, std::string *error) {
    if (!entry.is_object()) {
        *error = "each entry of \"inject\" must be an object";
        return false;
    }
    for (auto it = entry.begin(); it != entry.end(); ++it) {
        const std::string &key = it.key();
        uint64_t v = 0;
        if (key == "function") {
            if (!it->is_string() || !IsKnownFunction(it->get<std::string>())) {
                *error = "\"function\" must name a library function, not " + it->dump();
                return false;
            }
            out->function = it->get<std::string>();
        } else if (key == "status") {
            if (!ReadNumber(*it, UINT32_MAX, &v, error)) return Named(key, error);
            out->hasStatus = true;
            out->status = static_cast<ZENTREL_STATUS>(v);
        } else if (key == "onCall") {
            if (!ReadNumber(*it, UINT64_MAX, &v, error)) return Named(key, error);
            if (v == 0) {
                *error = "\"onCall\" counts from 1";
                return false;
            }
            out->onCall = v;
        } else if (key == "latencyMs") {
            if (!ReadNumber(*it, 600000, &v, error)) return Named(key, error);
            out->latencyMs = static_cast<uint32_t>(v);
        } else {
            *error = "unknown key \"" + key + "\" in an \"inject\" entry";
            return false;
        }
    }
    if (out->function.empty()) {
        *error = "an \"inject\" entry needs \"function\"";
        return false;
    }
    return true;
}

bool ApplyDevice(Device &device, const Json &entry, std::string *error) {
    if (!entry.is_object()) {
        *error = "each entry of \"devices\" must be an object";
        return false;
    }
    for (auto it = entry.begin(); it != entry.end(); ++it) {
        int r = ApplyFrontendKey(device, it.key(), *it, error);
        if (r == 0) r = ApplySettingsKey(device, it.key(), *it, error);
        if (r == 0) r = ApplyStatusKey(device, it.key(), *it, error);
        if (r < 0) {
            *error = "device key \"" + it.key() + "\": " + *error;
            return false;
        }
        if (r == 0) {
            *error = "unknown device key \"" + it.key() + "\"";
            return false;
        }
    }
    return true;
}

bool ApplyScenario(const Json &doc, std::string *error) {
    if (!doc.is_object()) {
        *error = "the top level must be an object";
        return false;
    }
    size_t count = kDefaultDeviceCount;
    if (doc.contains("deviceCount")) {
        uint64_t v = 0;
        if (!ReadNumber(doc["deviceCount"], kMaxDevices, &v, error)) {
            *error = "\"deviceCount\": " + *error;
            return false;
        }
        count = v;
    }
    gState.devices.resize(count);
    for (size_t i = 0; i < count; ++i) {
        SetFrontendDefaults(gState.devices[i], i);
        SetSettingsDefaults(gState.devices[i], i);
        SetStatusDefaults(gState.devices[i], i);
    }
    for (auto it = doc.begin(); it != doc.end(); ++it) {
        const std::string &key = it.key();
        if (key == "deviceCount" || key == "comment") continue;
        if (key == "devices") {
            if (!it->is_array() || it->size() > count) {
                *error = "\"devices\" must be a list of at most deviceCount (" + std::to_string(count) + ") entries";
                return false;
            }
            for (size_t i = 0; i < it->size(); ++i) {
                if (!ApplyDevice(gState.devices[i], (*it)[i], error)) {
                    *error = "devices[" + std::to_string(i) + "]: " + *error;
                    return false;
                }
            }
        } else if (key == "inject") {
            if (!it->is_array()) {
                *error = "\"inject\" must be a list";
                return false;
            }
            for (size_t i = 0; i < it->size(); ++i) {
                Injection injection;
                if (!ReadInjection((*it)[i], &injection, error)) {
                    *error = "inject[" + std::to_string(i) + "]: " + *error;
                    return false;
                }
                gState.injections.push_back(injection);
            }
        } else {
            *error = "unknown key \"" + key + "\"";
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
    if (path == nullptr || *path == '\0') {
        ApplyScenario(Json::object(), nullptr);
        gState.found.clear();
        for (size_t i = 0; i < gState.devices.size(); ++i) gState.found.push_back(i);
        return;
    }
    std::ifstream in(path);
    std::string error;
    if (!in) {
        Complain(path, "cannot be opened");
        gState.unusable = true;
        return;
    }
    std::stringstream text;
    text << in.rdbuf();
    Json doc = Json::parse(text.str(), nullptr, false, true);
    if (doc.is_discarded()) {
        SyntaxError syntax;
        Json::sax_parse(text.str(), &syntax, nlohmann::detail::input_format_t::json, true, true);
        Complain(path, syntax.message);
        gState.unusable = true;
        return;
    }
    if (!ApplyScenario(doc, &error)) {
        Complain(path, error);
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

void WriteTrace(const std::string &line) {
    std::lock_guard<std::mutex> guard(gTraceMutex);
    if (gTrace == nullptr) {
        const char *path = getenv(kTraceVariable);
        if (path == nullptr || *path == '\0') return;
        gTrace = fopen(path, "a");
        if (gTrace == nullptr) return;
    }
    fputs(line.c_str(), gTrace);
    fflush(gTrace);
}

void Append(std::string &args, const char *name, const std::string &value) {
    if (!args.empty()) args += ", ";
    args += name;
    args += '=';
    args += value;
}

}  // namespace

bool ReadNumber(const Json &value, uint64_t max, uint64_t *out, std::string *error) {
    uint64_t v = 0;
    if (value.is_number_unsigned()) {
        v = value.get<uint64_t>();
    } else if (value.is_number_integer()) {
        *error = "a negative number is not allowed here";
        return false;
    } else if (value.is_string()) {
        const std::string text = value.get<std::string>();
        const char *s = text.c_str();
        bool hex = text.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
        char *end = nullptr;
        if (text.empty() || text[0] == '-' || text[0] == ' ') {
            *error = "\"" + text + "\" is not a number";
            return false;
        }
        v = strtoull(hex ? s + 2 : s, &end, hex ? 16 : 10);
        if (*end != '\0') {
            *error = "\"" + text + "\" is not a number";
            return false;
        }
    } else {
        *error = value.dump() + " is not a number";
        return false;
    }
    if (v > max) {
        *error = std::to_string(v) + " is larger than " + std::to_string(max);
        return false;
    }
    *out = v;
    return true;
}

Call::Call(const char *function) : function_(function), state_(&gState) {}

Call::~Call() {
    std::string line = function_;
    line += '(';
    line += args_;
    char result[32];
    snprintf(result, sizeof result, ") = 0x%x\n", status_);
    line += result;
    if (lock_.owns_lock()) lock_.unlock();
    WriteTrace(line);
}

Call &Call::Arg(const char *name, uint64_t value) {
    Append(args_, name, std::to_string(value));
    return *this;
}

Call &Call::HexArg(const char *name, uint64_t value) {
    char text[24];
    snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    Append(args_, name, text);
    return *this;
}

Call &Call::Text(const char *name, const char *text) {
    Append(args_, name, text == nullptr ? std::string("null") : "\"" + std::string(text) + "\"");
    return *this;
}

// Bytes in memory order, four to a group, so that u32 fields stand apart.
Call &Call::Bytes(const char *name, const void *bytes, size_t count) {
    if (bytes == nullptr) {
        Append(args_, name, "null");
        return *this;
    }
    std::string hex = "[";
    const uint8_t *p = static_cast<const uint8_t *>(bytes);
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 && i % 4 == 0) hex += ' ';
        char byte[3];
        snprintf(byte, sizeof byte, "%02x", p[i]);
        hex += byte;
    }
    hex += ']';
    Append(args_, name, hex);
    return *this;
}

Call &Call::Dev(PTR_ZENTREL_DEVICE device) {
    hasDevice_ = true;
    if (device == nullptr) {
        nullDevice_ = true;
        Append(args_, "device", "null");
    } else {
        memcpy(&handle_, device, sizeof handle_);
        HexArg("device", handle_);
    }
    return *this;
}

bool Call::Proceed(bool needsInit) {
    lock_ = std::unique_lock<std::mutex>(gState.mutex);
    Load();
    uint64_t number = CountCall(function_);
    uint32_t latency = 0;
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
    }
    return true;
}

ZENTREL_STATUS Call::Return(ZENTREL_STATUS status) {
    status_ = status;
    return status_;
}

}  // namespace sim
