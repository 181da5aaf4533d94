// The state file: what the simulated switches remember from one run of the
// utility to the next, as a real switch would.
//
// ZentrelInitialize reads it (when it exists) over the fleet the defaults
// and the scenario built; ZentrelExit writes back what the run changed. So
// the file holds what runs have changed; anything else comes from the
// defaults and the scenario. Several utilities may share one file at once:
// the writer takes an advisory lock on a lock file beside it, reads the file
// again under the lock, and applies only what its own run changed, member by
// member, before it replaces the file atomically (a temporary file in the
// same directory, then rename). So two runs that change different settings
// both keep their change, and nobody waits for another run to end.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sim.h"

namespace sim {

namespace {

const char kStateVariable[] = "ZENTREL_SIM_STATE";
constexpr uint64_t kStateVersion = 1;

// The model as this run loaded it, in the state file's form: what the run's
// own changes are measured against when it writes the file back.
Json gLoadedState = Json::object();
bool gHaveStatePath = false;
// The file asked for a power cycle, and this run carried it out.
bool gPowerCycled = false;

const char *StatePath() {
    const char *path = getenv(kStateVariable);
    return path != nullptr && *path != '\0' ? path : nullptr;
}

void Complain(const char *path, const std::string &problem) {
    fprintf(stderr, "zentrel-sim: state file %s: %s\n", path, problem.c_str());
}

std::string HandleKey(uint32_t handle) {
    char text[16];
    snprintf(text, sizeof text, "0x%x", handle);
    return text;
}

Device *FindDevice(std::vector<Device> &devices, uint32_t handle) {
    for (Device &device : devices)
        if (device.info.Handle == handle) return &device;
    return nullptr;
}

// {"flash": {...}, "runtime": {...}} of one switch. A switch the fleet does
// not have (the scenario changed) is checked against a default switch and
// otherwise left in the file as it is.
bool ApplySwitch(Device *device, const Json &entry, bool powerCycled, Problem *error) {
    Device scratch{};
    if (device == nullptr) {
        for (const ModelPart *const *part = kModelParts; *part != nullptr; ++part) (*part)->setDefaults(scratch, 0);
        device = &scratch;
    }
    if (!entry.is_object()) {
        *error = "must be an object, not " + Excerpt(entry);
        return false;
    }
    for (auto it = entry.begin(); it != entry.end(); ++it) {
        if (it.key() != "flash" && it.key() != "runtime") {
            *error = "unknown key " + Quote(it.key()) + " (a switch has \"flash\" and \"runtime\")";
            return false;
        }
    }
    // Flash first: a runtime copy that is not in the file starts from it.
    if (const Json *flash = Member(entry, "flash"))
        if (!ApplyDeviceKeys(*device, *flash, error)) return error->In("flash");
    if (const Json *runtime = Member(entry, "runtime")) {
        Device ignored = *device;
        // A power cycle loses the runtime settings; they are still checked.
        if (!ApplyDeviceKeys(powerCycled ? ignored : *device, *runtime, error)) return error->In("runtime");
    }
    if (powerCycled)
        for (const ModelPart *const *part = kModelParts; *part != nullptr; ++part)
            if ((*part)->powerCycle != nullptr) (*part)->powerCycle(*device);
    return true;
}

bool ApplyDevices(std::vector<Device> &devices, const Json &map, bool powerCycled, Problem *error) {
    if (!map.is_object()) {
        *error = "must map switch handles to their state, not " + Excerpt(map);
        return false;
    }
    for (auto it = map.begin(); it != map.end(); ++it) {
        uint64_t handle = 0;
        if (!ReadNumber(Json(it.key()), UINT32_MAX, &handle, error) ||
            it.key() != HandleKey(static_cast<uint32_t>(handle))) {
            *error = "a switch is named by its handle in lower-case hex, such as \"0x100\"";
            return error->In(it.key());
        }
        if (!ApplySwitch(FindDevice(devices, static_cast<uint32_t>(handle)), *it, powerCycled, error))
            return error->In(it.key());
    }
    return true;
}

// Applies a state file's content to the devices and the library.
bool ApplyState(const Json &doc, std::vector<Device> &devices, Problem *error, bool *powerCycledOut = nullptr) {
    if (!doc.is_object()) {
        *error = "the top level must be an object";
        return false;
    }
    const Json *version = Member(doc, "version");
    if (version == nullptr) {
        *error = "has no \"version\"";
        return false;
    }
    uint64_t v = 0;
    if (!ReadNumber(*version, UINT64_MAX, &v, error)) return error->In("version");
    if (v != kStateVersion) {
        *error = "version " + std::to_string(v) + " is not the version " + std::to_string(kStateVersion) +
                 " this simulator reads" + (v > kStateVersion ? " (written by a newer one)" : "");
        return false;
    }
    bool powerCycled = false;
    if (const Json *cycle = Member(doc, "powerCycle")) {
        if (!cycle->is_boolean()) {
            *error = "must be true or false, not " + Excerpt(*cycle);
            return error->In("powerCycle");
        }
        powerCycled = cycle->get<bool>();
    }
    if (powerCycledOut != nullptr) *powerCycledOut = powerCycled;
    for (auto it = doc.begin(); it != doc.end(); ++it) {
        const std::string &key = it.key();
        if (key == "version" || key == "powerCycle" || key == "comment") continue;
        if (key == "library") {
            if (!ApplyLibraryKeys(*it, error)) return error->In(key);
        } else if (key == "devices") {
            if (!ApplyDevices(devices, *it, powerCycled, error)) return error->In(key);
        } else {
            *error = "unknown key " + Quote(key);
            return false;
        }
    }
    return true;
}

// What the model holds now, in the state file's form. Switches the file
// holds that this fleet does not have are not part of it, so a run leaves
// them in the file as they are.
Json CurrentState(const std::vector<Device> &devices) {
    Json doc = {{"version", kStateVersion}};
    Json library = Json::object();
    Json map = Json::object();
    for (const Device &device : devices) {
        Json flash = Json::object(), runtime = Json::object();
        for (const ModelPart *const *part = kModelParts; *part != nullptr; ++part)
            if ((*part)->save != nullptr) (*part)->save(device, &flash, &runtime);
        map[HandleKey(device.info.Handle)] = {{"flash", flash}, {"runtime", runtime}};
    }
    for (const ModelPart *const *part = kModelParts; *part != nullptr; ++part)
        if ((*part)->saveLibrary != nullptr) {
            Json values = Json::object();
            (*part)->saveLibrary(&values);
            library.update(values);
        }
    doc["library"] = library;
    doc["devices"] = map;
    return doc;
}

// Applies to *target what changed from before to after: objects member by
// member, lists of one length entry by entry, anything else whole.
void MergeChanges(Json *target, const Json &before, const Json &after) {
    if (after.is_object() && target->is_null()) *target = Json::object();  // the file lacked it
    if (after.is_object() && target->is_object()) {
        for (auto it = after.begin(); it != after.end(); ++it) {
            const Json *old = Member(before, it.key().c_str());
            if (old != nullptr && *old == *it) continue;
            Json &into = (*target)[it.key()];
            MergeChanges(&into, old != nullptr ? *old : Json(), *it);
        }
        if (before.is_object())
            for (auto it = before.begin(); it != before.end(); ++it)
                if (!after.contains(it.key())) target->erase(it.key());
        return;
    }
    if (after.is_array() && target->is_array() && before.is_array() && after.size() == target->size() &&
        after.size() == before.size()) {
        for (size_t i = 0; i < after.size(); ++i)
            if (before[i] != after[i]) MergeChanges(&(*target)[i], before[i], after[i]);
        return;
    }
    *target = after;
}

bool IsFlat(const Json &value) {
    if (!value.is_structured()) return true;
    for (const Json &child : value)
        if (child.is_structured()) return false;
    return true;
}

// JSON for people: a list or object holding only numbers and texts stands
// on one line, everything else one member a line.
void Format(const Json &value, size_t indent, std::string *out) {
    if (IsFlat(value)) {
        *out += value.dump(-1, ' ', false, Json::error_handler_t::replace);
        return;
    }
    bool object = value.is_object();
    *out += object ? "{\n" : "[\n";
    size_t n = 0;
    for (auto it = value.begin(); it != value.end(); ++it) {
        out->append(indent + 2, ' ');
        if (object) *out += Json(it.key()).dump(-1, ' ', false, Json::error_handler_t::replace) + ": ";
        Format(*it, indent + 2, out);
        *out += ++n < value.size() ? ",\n" : "\n";
    }
    out->append(indent, ' ');
    *out += object ? "}" : "]";
}

bool WriteAll(int fd, const std::string &text) {
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

// Replaces the file with the text: a temporary file beside it, then rename.
bool Replace(const char *path, const std::string &text, std::string *why) {
    std::string temporary = std::string(path) + ".tmp." + std::to_string(getpid());
    int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        *why = std::string("cannot write ") + temporary + ": " + strerror(errno);
        return false;
    }
    bool ok = WriteAll(fd, text) && fsync(fd) == 0;
    int saved = errno;
    ok = close(fd) == 0 && ok;
    if (ok && rename(temporary.c_str(), path) == 0) return true;
    *why = std::string("cannot write ") + temporary + ": " + strerror(ok ? errno : saved);
    unlink(temporary.c_str());
    return false;
}

}  // namespace

bool LoadStateFile(std::vector<Device> &devices) {
    const char *path = StatePath();
    gHaveStatePath = path != nullptr;
    gPowerCycled = false;
    if (path == nullptr) return true;
    struct stat st;
    if (!(stat(path, &st) != 0 && errno == ENOENT)) {  // no file: a fresh fleet
        Json doc;
        std::string why;
        if (!ReadJsonFile(path, &doc, &why)) {
            Complain(path, why);
            return false;
        }
        Problem error;
        if (!ApplyState(doc, devices, &error, &gPowerCycled)) {
            Complain(path, error.Text());
            return false;
        }
    }
    gLoadedState = CurrentState(devices);
    // After a power cycle every runtime value counts as this run's, so that
    // the file holds what the switches started with, not what they lost.
    if (gPowerCycled)
        for (Json &entry : gLoadedState["devices"]) entry.erase("runtime");
    return true;
}

void SaveStateFile(const std::vector<Device> &devices) {
    const char *path = StatePath();
    if (!gHaveStatePath || path == nullptr) return;
    Json current = CurrentState(devices);
    std::string lockPath = std::string(path) + ".lock";
    int lock = open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (lock < 0) {
        Complain(path, std::string("not saved: cannot create ") + lockPath + ": " + strerror(errno));
        return;
    }
    while (flock(lock, LOCK_EX) != 0 && errno == EINTR) {
    }
    // Another run may have written the file since this one read it.
    Json disk = Json::object();
    std::string why;
    struct stat st;
    bool exists = !(stat(path, &st) != 0 && errno == ENOENT);
    if (exists && !ReadJsonFile(path, &disk, &why)) {
        Complain(path, "not saved: it " + why + " now");
    } else {
        Problem error;
        std::vector<Device> check = devices;
        if (exists && !ApplyState(disk, check, &error)) {
            Complain(path, "not saved: it has been changed into one with a problem: " + error.Text());
        } else {
            MergeChanges(&disk, gLoadedState, current);
            disk["version"] = kStateVersion;
            if (gPowerCycled) disk.erase("powerCycle");
            std::string text;
            Format(disk, 0, &text);
            if (!Replace(path, text + "\n", &why)) Complain(path, "not saved: " + why);
        }
    }
    close(lock);  // releases the lock
}

}  // namespace sim
