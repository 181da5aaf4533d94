// Internals of the simulated switch library.
#ifndef ZENTREL_SIM_H
#define ZENTREL_SIM_H

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "settings_model.h"
#include "status_model.h"
#include "zentrel.h"

namespace sim {

// Statuses the simulator answers with on its own (an injected status can be
// any value). A vendor library has its own codes; the utility only prints them.
enum : ZENTREL_STATUS {
    kStatusFailure = 0x1,          // the scenario file could not be used
    kStatusInvalidParameter = 0x2, // null record, wrong length, index out of range
    kStatusNoSuchDevice = 0x3,     // the device argument names no simulated switch
    kStatusNotInitialized = 0x4,   // called before ZentrelInitialize
};

// One simulated switch.
struct Device {
    ZENTREL_DEVICE_INFO info;  // what ZentrelGetDeviceInfo hands out
    uint32_t smbusAddress;
    uint32_t smbusBus;
    uint8_t pcieBus, pcieDevice, pcieFunction;
    SettingsModel settings;
    StatusModel status;
};

struct Injection {
    std::string function;
    bool hasStatus = false;
    ZENTREL_STATUS status = 0;
    uint64_t onCall = 0;  // 1-based; 0 = every call
    uint32_t latencyMs = 0;
};

struct State {
    std::mutex mutex;
    bool loaded = false;
    bool unusable = false;  // the scenario file was bad
    bool initialized = false;
    std::vector<Device> devices;
    std::vector<size_t> found;  // indices into devices, in discovery order
    std::vector<Injection> injections;
    std::vector<std::pair<std::string, uint64_t>> callCounts;
};

using Json = nlohmann::json;

// Reads one number of a scenario: a JSON integer, or a text in decimal or
// with a 0x prefix in hex. False, with *error set, when it is neither or
// does not fit max.
bool ReadNumber(const Json &value, uint64_t max, uint64_t *out, std::string *error);

// The functions each part of the model exports, each list ending with null;
// a scenario may inject into these only.
extern const char *const kFrontendFunctions[];
extern const char *const kSettingsFunctions[];
extern const char *const kStatusFunctions[];

// The default fleet and the scenario keys of each part of the model.
// Each Apply...Key returns 1 when it took the key, 0 when the key is not
// its own, -1 with *error set when the value is bad.
void SetFrontendDefaults(Device &device, size_t index);
int ApplyFrontendKey(Device &device, const std::string &key, const Json &value, std::string *error);
void SetSettingsDefaults(Device &device, size_t index);
int ApplySettingsKey(Device &device, const std::string &key, const Json &value, std::string *error);
void SetStatusDefaults(Device &device, size_t index);
int ApplyStatusKey(Device &device, const std::string &key, const Json &value, std::string *error);

// One library call: counts it, applies the scenario's latency and injected
// status, decides whether the model runs, and traces it with its arguments
// and request bytes when it ends.
class Call {
public:
    explicit Call(const char *function);
    ~Call();
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    Call &Arg(const char *name, uint64_t value);     // decimal
    Call &HexArg(const char *name, uint64_t value);  // 0x...
    Call &Text(const char *name, const char *text);
    Call &Bytes(const char *name, const void *bytes, size_t count);
    // The device argument; the model acts on the switch whose handle it holds.
    Call &Dev(PTR_ZENTREL_DEVICE device);

    // True when the model should run: the library is usable and initialised
    // (unless needsInit is false), no status was injected, and the device
    // argument, if any, names a simulated switch. Holds the model's lock
    // from here until the call ends.
    bool Proceed(bool needsInit = true);
    State &Model() { return *state_; }
    Device &Target() { return *target_; }
    ZENTREL_STATUS Return(ZENTREL_STATUS status);
    ZENTREL_STATUS Result() const { return status_; }

private:
    const char *function_;
    std::string args_;
    bool hasDevice_ = false;
    uint32_t handle_ = 0;
    bool nullDevice_ = false;
    State *state_;
    Device *target_ = nullptr;
    std::unique_lock<std::mutex> lock_;
    ZENTREL_STATUS status_ = 0;
};

// A call that only copies one value of the addressed switch, as read(device)
// gives it, into the caller's record.
template <typename T, typename Read>
ZENTREL_STATUS ReadFromDevice(const char *function, PTR_ZENTREL_DEVICE device, T *out, Read read) {
    Call call(function);
    call.Dev(device);
    if (!call.Proceed()) return call.Result();
    if (out == nullptr) return call.Return(kStatusInvalidParameter);
    *out = read(call.Target());
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

}  // namespace sim

#endif
