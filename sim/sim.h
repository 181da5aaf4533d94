// Internals of the simulated switch library.
#ifndef ZENTREL_SIM_H
#define ZENTREL_SIM_H

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "images_model.h"
#include "link_model.h"
#include "phy_model.h"
#include "ports_model.h"
#include "dumps_model.h"
#include "debugtoken_model.h"
#include "designed_a_model.h"
#include "designed_b_model.h"
#include "reader.h"
#include "security_model.h"
#include "settings_model.h"
#include "status_model.h"
#include "topology_model.h"
#include "zentrel.h"
#include "interface.h"

// The model of each library function; the exported function of the same
// name (sim/exports.cpp) calls it, or replays the call from a recording.
namespace simlib {
#define ZENTREL_FUNCTION(name, ...) ZENTREL_STATUS name(ZI_PARAMS(__VA_ARGS__));
#include "zentrel_interface.def"
#undef ZENTREL_FUNCTION
}  // namespace simlib

namespace sim {

// Statuses the simulator answers with on its own (an injected status can be
// any value). A vendor library has its own codes; the utility only prints them.
enum : ZENTREL_STATUS {
    kStatusFailure = 0x1,          // the scenario or state file could not be used
    kStatusInvalidParameter = 0x2, // null record, wrong length, index out of range
    kStatusNoSuchDevice = 0x3,     // the device argument names no simulated switch
    kStatusNotInitialized = 0x4,   // called before ZentrelInitialize
    kStatusNotRecorded = 0x5,      // replay: the recording holds no such call next
};

// One simulated switch.
struct Device {
    ZENTREL_DEVICE_INFO info;  // what ZentrelGetDeviceInfo hands out
    uint32_t smbusAddress;
    uint32_t smbusBus;
    uint8_t pcieBus, pcieDevice, pcieFunction;
    SettingsModel settings;
    StatusModel status;
    ImagesModel images;
    SecurityModel security;
    PortsModel ports;
    DumpsModel dumps;
    TopologyModel topology;
    LinkModel link;
    PhyModel phy;
    DebugTokenModel debugToken;
    DesignedAModel designedA;
    DesignedBModel designedB;
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
    bool unusable = false;  // the scenario or state file was bad
    bool initialized = false;
    std::vector<Device> devices;
    std::vector<size_t> found;  // indices into devices, in discovery order
    std::vector<Injection> injections;
    std::vector<std::pair<std::string, uint64_t>> callCounts;
};

// One part of the model (the front end, settings, status, ...). Each part
// has a row in kModelParts; the scenario reader, the state file and the
// injection checks go through that table, so a new part adds one row.
struct ModelPart {
    const char *name;
    // The part's values of switch `index` of the default fleet.
    void (*setDefaults)(Device &device, size_t index);
    // One device key of a scenario or of the state file: 1 when it took
    // the key, 0 when the key is not its own, -1 with the problem set.
    int (*applyKey)(Device &device, const std::string &key, const Json &value, Problem *error);
    // Writes everything calls can change, as device keys applyKey reads
    // back: what the switch keeps in flash or its configuration page into
    // *flash, what a power cycle loses into *runtime. Null: nothing changes.
    void (*save)(const Device &device, Json *flash, Json *runtime);
    // After a power cycle (the runtime keys were not loaded): runtime
    // copies take their flash values. Null: nothing to do.
    void (*powerCycle)(Device &device);
    // The same for values of the library rather than of a switch, under the
    // top-level "library" key. Null: the part has none.
    int (*applyLibraryKey)(const std::string &key, const Json &value, Problem *error);
    void (*saveLibrary)(Json *library);
};

extern const ModelPart kFrontendPart, kSettingsPart, kStatusPart, kImagesPart, kSecurityPart, kPortsPart, kDumpsPart;
extern const ModelPart kTopologyPart;
extern const ModelPart kLinkPart;
extern const ModelPart kPhyPart;
extern const ModelPart kDebugTokenPart;
extern const ModelPart kDesignedAPart;
extern const ModelPart kDesignedBPart;
// Every part, in the order their defaults and keys apply; ends with null.
extern const ModelPart *const kModelParts[];

// The keys of one switch, or of the library, of a scenario or state file,
// each handed to the part that owns it. False, with the problem set, at the
// first bad or unknown key.
bool ApplyDeviceKeys(Device &device, const Json &keys, Problem *error);
bool ApplyLibraryKeys(const Json &keys, Problem *error);

// The state file named by ZENTREL_SIM_STATE, if any: read over the fleet
// as the library is initialised (false, after a message on standard error,
// when it cannot be used), written back as the library exits.
bool LoadStateFile(std::vector<Device> &devices);
void SaveStateFile(const std::vector<Device> &devices);

// Forgets the whole model, as unloading the library would: the next call
// builds it again from the defaults and the scenario. For programs that run
// many inputs against the model in one process (the fuzzers).
void ResetModel();
// The library's own parameters back to their defaults (part of ResetModel).
void ResetLibParameters();

// One library call: counts it, applies the scenario's latency and injected
// status, and decides whether the model runs. Its trace line is written by
// the exported function (WriteTrace), from its arguments as the interface
// list describes them.
class Call {
public:
    explicit Call(const char *function) : function_(function) {}
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    // The device argument; the model acts on the switch whose handle it holds.
    Call &Dev(PTR_ZENTREL_DEVICE device);

    // True when the model should run: the library is usable and initialised
    // (unless needsInit is false), no status was injected, and the device
    // argument, if any, names a simulated switch. Holds the model's lock
    // from here until the call ends.
    bool Proceed(bool needsInit = true);
    State &Model();
    Device &Target() { return *target_; }
    ZENTREL_STATUS Return(ZENTREL_STATUS status);
    ZENTREL_STATUS Result() const { return status_; }

private:
    const char *function_;
    bool hasDevice_ = false;
    uint32_t handle_ = 0;
    bool nullDevice_ = false;
    Device *target_ = nullptr;
    std::unique_lock<std::mutex> lock_;
    ZENTREL_STATUS status_ = 0;
};

// The trace (ZENTREL_SIM_TRACE): one call's arguments as the library saw
// them when called, and then its line with the status it returned.
std::string TraceArguments(const zrec::Arg *args, size_t count);
void WriteTrace(const char *function, const std::string &arguments, ZENTREL_STATUS status);
bool Tracing();

// Replay of a recording (ZENTREL_SIM_REPLAY): whether one is named, and
// one call answered from it instead of the model.
bool Replaying();
ZENTREL_STATUS Replay(const char *function, zrec::Arg *args, size_t count);

// Files the library reads or writes for its caller, by the name it was given.
// ReadFileBytes: false when the file is not a readable regular file or is
// larger than max bytes.
bool ReadFileBytes(const char *path, size_t max, std::vector<uint8_t> *bytes);
bool WriteFileBytes(const char *path, const std::vector<uint8_t> &bytes);
bool IsRegularFile(const char *path);

// A repeatable stream of believable bytes (keys, digests, signatures) for
// one switch and purpose.
class Filler {
public:
    explicit Filler(uint32_t seed) : state_(seed * 2654435761u + 0x9E3779B9u) {}
    uint32_t Word();
    void Bytes(uint8_t *out, size_t count);

private:
    uint32_t state_;
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
