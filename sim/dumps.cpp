// Core dumps, the trace memory and the core dump trigger conditions of the
// simulated switches.
#include <cstdio>
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

constexpr uint32_t kPortsPerStation = 16;
constexpr uint32_t kStations = kTriggerPorts / kPortsPerStation;
constexpr uint32_t kTraceEntryBytes = 16;
constexpr uint8_t kKnownTriggerBits = ZENTREL_TRIGGER_AER_NON_FATAL | ZENTREL_TRIGGER_AER_FATAL;

const char *const kModules[] = {"HALI", "FWCORE", "SES", "PMG", "OEM", "BPL", "OOB", "SPI", "SEC", "SMM"};
const char *const kSeverities[] = {"DEBUG", "INFO", "WARNING", "ERROR"};
const char *const kSectionNames[] = {"CPU registers", "Call stack", "Event log", "Port state",
                                     "Heap",          "Task list",  "Mailbox",   "Link trace"};

// A well-mixed 64-bit number for each (seed, position): the same bytes
// every time they are asked for, with nothing stored.
uint64_t Mix(uint64_t seed, uint64_t position) {
    uint64_t z = seed * 0x9E3779B97F4A7C15ull + position + 0x632BE59BD9B4E019ull;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

// Fills a buffer with text, line by line, cutting the last line at the end.
struct Sink {
    uint8_t *out;
    size_t limit;
    size_t used = 0;
    bool Full() const { return used >= limit; }
    void Put(const char *text, size_t count) {
        size_t n = count < limit - used ? count : limit - used;
        memcpy(out + used, text, n);
        used += n;
    }
    void Line(const char *text, int count) {
        if (count > 0) Put(text, static_cast<size_t>(count));
    }
};

uint64_t DecodedSize(const CoreDump &dump) {
    uint64_t total = 0;
    for (uint32_t i = 0; i < dump.sectionCount; ++i) total += dump.sections[i].size;
    return total;
}

const DumpSection *FindSection(const CoreDump &dump, uint32_t id) {
    for (uint32_t i = 0; i < dump.sectionCount; ++i)
        if (dump.sections[i].id == id) return &dump.sections[i];
    return nullptr;
}

// The raw dump: a header naming the seed and size, then memory contents.
void WriteRawDump(const CoreDump &dump, uint8_t *out, size_t count) {
    uint8_t header[16] = {'Z', 'N', 'T', 'R', 'L', 'C', 'D', 1};
    memcpy(header + 8, &dump.seed, 4);
    memcpy(header + 12, &dump.rawSize, 4);
    for (size_t i = 0; i < count; ++i)
        out[i] = i < sizeof header ? header[i] : static_cast<uint8_t>(Mix(dump.seed, i / 8) >> (i % 8 * 8));
}

// A section's decoded text: a title line, then a memory dump of 16 bytes a line.
void WriteSectionText(const CoreDump &dump, const DumpSection &section, Sink &sink) {
    size_t end = sink.used + section.size;
    Sink part = {sink.out, end < sink.limit ? end : sink.limit, sink.used};
    const char *name = kSectionNames[section.id % (sizeof kSectionNames / sizeof kSectionNames[0])];
    char line[96];
    part.Line(line, snprintf(line, sizeof line, "==== Section %u: %s (%u bytes) ====\n", section.id, name, section.size));
    uint32_t base = 0x20000000u + section.id * 0x10000u;
    for (uint32_t n = 0; !part.Full(); ++n) {
        uint64_t a = Mix(dump.seed ^ section.id, 2 * n), b = Mix(dump.seed ^ section.id, 2 * n + 1);
        part.Line(line, snprintf(line, sizeof line, "%08x: %08x %08x %08x %08x\n", base + 16 * n,
                                 static_cast<uint32_t>(a), static_cast<uint32_t>(a >> 32), static_cast<uint32_t>(b),
                                 static_cast<uint32_t>(b >> 32)));
    }
    sink.used = part.used;
}

void WriteDecodedDump(const CoreDump &dump, uint8_t *out, size_t count) {
    Sink sink = {out, count};
    for (uint32_t i = 0; i < dump.sectionCount && !sink.Full(); ++i) WriteSectionText(dump, dump.sections[i], sink);
}

// Trace entry n: time stamp in microseconds, module, severity and code, two arguments.
struct TraceEntry {
    uint32_t micros;
    uint16_t module;
    uint16_t code;
    uint32_t arg0;
    uint32_t arg1;
};

TraceEntry EntryAt(uint32_t seed, uint32_t n) {
    uint64_t r = Mix(seed, n);
    TraceEntry e;
    e.micros = 1500000u + n * 1250u + static_cast<uint32_t>(r % 1000);
    e.module = static_cast<uint16_t>((r >> 10) % (sizeof kModules / sizeof kModules[0]));
    e.code = static_cast<uint16_t>(r >> 16);
    e.arg0 = static_cast<uint32_t>(r >> 32);
    e.arg1 = static_cast<uint32_t>(Mix(seed ^ 0x5A5A5A5Au, n));
    return e;
}

void WriteRawTrace(uint32_t seed, uint8_t *out, size_t count) {
    for (size_t done = 0; done < count;) {
        TraceEntry e = EntryAt(seed, static_cast<uint32_t>(done / kTraceEntryBytes));
        uint8_t bytes[kTraceEntryBytes];
        memcpy(bytes, &e, sizeof bytes);
        size_t n = count - done < kTraceEntryBytes ? count - done : kTraceEntryBytes;
        memcpy(out + done, bytes, n);
        done += n;
    }
}

// The decoded text of the same entries, one line each.
void WriteDecodedTrace(uint32_t seed, uint8_t *out, size_t count) {
    Sink sink = {out, count};
    char line[128];
    for (uint32_t n = 0; !sink.Full(); ++n) {
        TraceEntry e = EntryAt(seed, n);
        sink.Line(line, snprintf(line, sizeof line, "[%6u.%06u] %-6s %-7s code 0x%04x args 0x%08x 0x%08x\n",
                                 e.micros / 1000000u, e.micros % 1000000u, kModules[e.module],
                                 kSeverities[e.code % 4], e.code, e.arg0, e.arg1));
    }
}

struct Defaults {
    CoreDump coreDump;
    TraceMemory trace;
    uint16_t upstreamConditions;  // port 0, both copies
    bool overwrite;
};

// The first switch holds the core dump of an earlier firmware fault, the
// upstream port triggers a dump on any AER error, and a new dump replaces
// the one held. The second holds none and triggers on nothing.
const Defaults kDefaults[] = {
    {{true, 0x5EED0001, 40960, 5, {{0, 2048}, {1, 4096}, {2, 6144}, {3, 3072}, {4, 8192}}},
     {0x7A11CE01, 8192, 12000, 0},
     ZENTREL_TRIGGER_AER_NON_FATAL | ZENTREL_TRIGGER_AER_FATAL,
     true},
    {{false, 0, 0, 0, {}}, {0x7A11CE02, 4096, 6000, 0}, 0, false},
};

void SetDumpsDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    DumpsModel &m = device.dumps;
    m.coreDump = d.coreDump;
    m.trace = d.trace;
    m.triggerRuntime = {};
    m.triggerRuntime.conditions[0] = d.upstreamConditions;
    m.triggerRuntime.overwrite = d.overwrite;
    m.triggerPersistent = m.triggerRuntime;
    m.triggerQueryResult = 0;
}

// [{"id": n, "size": n}, ...]: the sections, replacing those held.
bool ReadSections(const Json &list, CoreDump &dump, Problem *error) {
    if (!list.is_array() || list.size() > kMaxDumpSections) {
        *error = "must be a list of at most " + std::to_string(kMaxDumpSections) + " sections";
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        uint32_t id = 0, size = 0;
        Field fields[] = {{"id", &id, 0xFF}, {"size", &size, kMaxDumpPartBytes}};
        if (!ReadFields(list[i], fields, 2, error)) return error->At(i);
        for (size_t j = 0; j < i; ++j)
            if (dump.sections[j].id == id) {
                *error = "section id " + std::to_string(id) + " is given twice";
                return error->At(i);
            }
        dump.sections[i] = {static_cast<uint8_t>(id), size};
    }
    dump.sectionCount = static_cast<uint32_t>(list.size());
    return true;
}

// {"present": 0/1, "seed": n, "rawSize": n, "sections": [...]}
bool ReadCoreDump(const Json &value, CoreDump &dump, Problem *error) {
    uint32_t present = dump.present ? 1 : 0;
    Field fields[] = {{"present", &present, 1}, {"seed", &dump.seed, UINT32_MAX}, {"rawSize", &dump.rawSize, kMaxDumpPartBytes}};
    if (!ReadFields(value, fields, 3, error, {"sections"})) return false;
    dump.present = present != 0;
    if (const Json *sections = Member(value, "sections"))
        if (!ReadSections(*sections, dump, error)) return error->In("sections");
    return true;
}

Json WriteCoreDump(const CoreDump &dump) {
    Json sections = Json::array();
    for (uint32_t i = 0; i < dump.sectionCount; ++i)
        sections.push_back({{"id", dump.sections[i].id}, {"size", dump.sections[i].size}});
    return {{"present", dump.present ? 1 : 0}, {"seed", dump.seed}, {"rawSize", dump.rawSize}, {"sections", sections}};
}

bool ReadTrace(const Json &value, TraceMemory &trace, Problem *error) {
    Field fields[] = {{"seed", &trace.seed, UINT32_MAX},
                      {"rawSize", &trace.rawSize, UINT32_MAX},
                      {"decodedSize", &trace.decodedSize, UINT32_MAX},
                      {"growth", &trace.growth, UINT32_MAX}};
    return ReadFields(value, fields, 4, error);
}

// {"overwrite": 0/1, "conditions": [bits of port 0, of port 1, ...]}
bool ReadTriggers(const Json &value, TriggerSettings &settings, Problem *error) {
    uint32_t overwrite = settings.overwrite ? 1 : 0;
    Field fields[] = {{"overwrite", &overwrite, 1}};
    if (!ReadFields(value, fields, 1, error, {"conditions"})) return false;
    settings.overwrite = overwrite != 0;
    const Json *list = Member(value, "conditions");
    if (list == nullptr) return true;
    if (!list->is_array() || list->size() > kTriggerPorts) {
        *error = "must be a list of at most 144 bit maps, one a port";
        return error->In("conditions");
    }
    for (size_t i = 0; i < list->size(); ++i)
        if (!Store((*list)[i], &settings.conditions[i], error, kKnownTriggerBits))
            return error->At(i), error->In("conditions");
    return true;
}

Json WriteTriggers(const TriggerSettings &settings) {
    return {{"overwrite", settings.overwrite ? 1 : 0}, {"conditions", settings.conditions}};
}

int ApplyDumpsKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    DumpsModel &m = device.dumps;
    if (key == "coreDump") return Took(ReadCoreDump(value, m.coreDump, error));
    if (key == "trace") return Took(ReadTrace(value, m.trace, error));
    if (key == "dumpTriggers") {
        if (!ReadTriggers(value, m.triggerRuntime, error)) return -1;
        m.triggerPersistent = m.triggerRuntime;
        return 1;
    }
    if (key == "dumpTriggersRuntime") return Took(ReadTriggers(value, m.triggerRuntime, error));
    if (key == "dumpTriggersPersistent") return Took(ReadTriggers(value, m.triggerPersistent, error));
    if (key == "triggerQueryResult") return Took(Store(value, &m.triggerQueryResult, error));
    return 0;
}

// The core dump and the persistent trigger settings live in flash; the
// runtime trigger settings and the trace memory do not.
void SaveDumps(const Device &device, Json *flash, Json *runtime) {
    const DumpsModel &m = device.dumps;
    (*flash)["coreDump"] = WriteCoreDump(m.coreDump);
    (*flash)["dumpTriggersPersistent"] = WriteTriggers(m.triggerPersistent);
    (*runtime)["dumpTriggersRuntime"] = WriteTriggers(m.triggerRuntime);
    (*runtime)["trace"] = {{"seed", m.trace.seed}, {"rawSize", m.trace.rawSize},
                           {"decodedSize", m.trace.decodedSize}, {"growth", m.trace.growth}};
}

void PowerCycleDumps(Device &device) {
    device.dumps.triggerRuntime = device.dumps.triggerPersistent;
}

// Both trace reads: the size with a null buffer (after which a growing
// trace grows), otherwise as much of the trace as the buffer holds.
ZENTREL_STATUS ReadTraceMemory(Call &call, uint8_t *buffer, uint32_t *length, bool decoded) {
    if (!call.Proceed()) return call.Result();
    if (length == nullptr) return call.Return(kStatusInvalidParameter);
    TraceMemory &trace = call.Target().dumps.trace;
    uint32_t &size = decoded ? trace.decodedSize : trace.rawSize;
    if (buffer == nullptr) {
        *length = size;
        size = size > UINT32_MAX - trace.growth ? UINT32_MAX : size + trace.growth;
        return call.Return(ZENTREL_STATUS_SUCCESS);
    }
    bool partial = *length < size;
    uint32_t count = partial ? *length : size;
    if (decoded)
        WriteDecodedTrace(trace.seed, buffer, count);
    else
        WriteRawTrace(trace.seed, buffer, count);
    *length = count;
    return call.Return(partial ? ZENTREL_STATUS_TRACE_GREW : ZENTREL_STATUS_SUCCESS);
}

}  // namespace

extern const ModelPart kDumpsPart = {
    "dumps", SetDumpsDefaults, ApplyDumpsKey, SaveDumps, PowerCycleDumps, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

// Type 0 is taken as the RAW dump. A buffer smaller than the dump gets as
// much as it holds.
ZENTREL_STATUS simlib::ZentrelGetCoreDump(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer, uint32_t *Length,
                                              uint16_t CoreDumpType) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Buffer == nullptr || Length == nullptr || CoreDumpType > ZENTREL_COREDUMP_DECODED)
        return call.Return(sim::kStatusInvalidParameter);
    const sim::CoreDump &dump = call.Target().dumps.coreDump;
    if (!dump.present) return call.Return(sim::kStatusNoCoreDump);
    bool decoded = CoreDumpType == ZENTREL_COREDUMP_DECODED;
    uint64_t size = decoded ? sim::DecodedSize(dump) : dump.rawSize;
    uint32_t count = size < *Length ? static_cast<uint32_t>(size) : *Length;
    if (decoded)
        sim::WriteDecodedDump(dump, Buffer, count);
    else
        sim::WriteRawDump(dump, Buffer, count);
    *Length = count;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchIsCoredumpValid(PTR_ZENTREL_DEVICE Device, uint32_t CoreDumpType,
                                                        uint32_t *Valid, uint32_t *Size) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Valid == nullptr || Size == nullptr || CoreDumpType > ZENTREL_COREDUMP_DECODED)
        return call.Return(sim::kStatusInvalidParameter);
    const sim::CoreDump &dump = call.Target().dumps.coreDump;
    *Valid = dump.present ? 1 : 0;
    uint64_t size = CoreDumpType == ZENTREL_COREDUMP_DECODED ? sim::DecodedSize(dump) : dump.rawSize;
    *Size = dump.present ? static_cast<uint32_t>(size) : 0;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The answer is about the type asked for (0 included); it fills as many
// section entries as the response size leaves room for.
ZENTREL_STATUS simlib::ZentrelSwitchGetCoredumpInfo(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_COREDUMP_INFO_REQ Request,
                                                        PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || (Request->Flags & ZENTREL_COREDUMP_INFO_REQUESTED) == 0 ||
        Request->CoreDumpType > ZENTREL_COREDUMP_DECODED || Request->ResponseSize < sizeof *Response)
        return call.Return(sim::kStatusInvalidParameter);
    const sim::CoreDump &dump = call.Target().dumps.coreDump;
    uint8_t *bytes = reinterpret_cast<uint8_t *>(Response);
    memset(bytes, 0, Request->ResponseSize);
    Response->CoreDumpType = Request->CoreDumpType;
    if (dump.present) {
        Response->CoreDumpValid = 1;
        bool validate = (Request->Flags & ZENTREL_COREDUMP_INFO_VALIDATE_SECTION) != 0;
        Response->SectionValid = validate && sim::FindSection(dump, Request->SectionId) != nullptr ? 1 : 0;
        Response->BinarySize = dump.rawSize;
        Response->DecodedSize = static_cast<uint32_t>(sim::DecodedSize(dump));
        Response->SectionCount = dump.sectionCount;
        uint32_t room = (Request->ResponseSize - sizeof *Response) / sizeof(ZENTREL_SWITCH_COREDUMP_SECTION);
        Response->EntriesFilled = dump.sectionCount < room ? dump.sectionCount : room;
        for (uint32_t i = 0; i < Response->EntriesFilled; ++i) {
            ZENTREL_SWITCH_COREDUMP_SECTION entry = {};
            entry.Id = dump.sections[i].id;
            entry.Size = dump.sections[i].size;
            memcpy(bytes + sizeof *Response + i * sizeof entry, &entry, sizeof entry);
        }
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetDecodedCoreDumpBySection(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                                    uint32_t *Length, uint8_t SectionId) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Length == nullptr || (Buffer == nullptr && *Length != 0)) return call.Return(sim::kStatusInvalidParameter);
    const sim::CoreDump &dump = call.Target().dumps.coreDump;
    if (!dump.present) return call.Return(sim::kStatusNoCoreDump);
    const sim::DumpSection *section = sim::FindSection(dump, SectionId);
    if (section == nullptr) return call.Return(sim::kStatusInvalidParameter);
    // Only this section's text: a dump of just it.
    sim::CoreDump one = dump;
    one.sectionCount = 1;
    one.sections[0] = *section;
    uint32_t count = section->size < *Length ? section->size : *Length;
    sim::WriteDecodedDump(one, Buffer, count);
    *Length = count;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Erasing when no dump is held succeeds as well.
ZENTREL_STATUS simlib::ZentrelEraseCoreDump(PTR_ZENTREL_DEVICE Device) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    call.Target().dumps.coreDump = {};
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelGetTraceBuffer(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer, uint32_t *Length) {
    Call call(__func__);
    call.Dev(Device);
    return sim::ReadTraceMemory(call, Buffer, Length, false);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetDecodedTraceBuffer(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                              uint32_t *Length) {
    Call call(__func__);
    call.Dev(Device);
    return sim::ReadTraceMemory(call, Buffer, Length, true);
}

// Ports only; port 255 sets every port. The overwrite operations ignore
// the port and the bit map.
ZENTREL_STATUS simlib::ZentrelSwitchSetTriggerCondForCoreDump(PTR_ZENTREL_DEVICE Device,
                                                                  PTR_ZENTREL_SWITCH_SET_TRIGGER_COND_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const ZENTREL_SWITCH_SET_TRIGGER_COND_REQ &r = *Request;
    bool allPorts = r.Port == ZENTREL_TRIGGER_ALL_PORTS;
    if (r.Operation > ZENTREL_TRIGGER_CLEAR_OVERWRITE || r.ModuleType != ZENTREL_TRIGGER_MODULE_PORT ||
        (r.Port >= sim::kTriggerPorts && !allPorts) || (r.ConditionBitmap & ~sim::kKnownTriggerBits) != 0 ||
        r.SettingsType > ZENTREL_TRIGGER_PERSISTENT)
        return call.Return(sim::kStatusInvalidParameter);
    sim::DumpsModel &m = call.Target().dumps;
    for (sim::TriggerSettings *copy : {&m.triggerRuntime, &m.triggerPersistent}) {
        if (copy == &m.triggerPersistent && r.SettingsType != ZENTREL_TRIGGER_PERSISTENT) continue;
        if (r.Operation == ZENTREL_TRIGGER_SET_CONDITIONS) {
            for (uint32_t port = 0; port < sim::kTriggerPorts; ++port)
                if (allPorts || port == r.Port) copy->conditions[port] = r.ConditionBitmap;
        } else {
            copy->overwrite = r.Operation == ZENTREL_TRIGGER_SET_OVERWRITE;
        }
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A station or the switch answers with the conditions of any of its ports.
ZENTREL_STATUS simlib::ZentrelSwitchGetTriggerCondForCoreDump(PTR_ZENTREL_DEVICE Device,
                                                                  PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_REQ Request,
                                                                  PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_RESP Response) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Response == nullptr || Request->Operation > ZENTREL_TRIGGER_GET_OVERWRITE ||
        Request->QueryType > ZENTREL_TRIGGER_PERSISTENT)
        return call.Return(sim::kStatusInvalidParameter);
    uint32_t first = 0, count = 0;
    switch (Request->ModuleType) {
    case ZENTREL_TRIGGER_MODULE_PORT:
        first = Request->Number;
        count = 1;
        if (first >= sim::kTriggerPorts) return call.Return(sim::kStatusInvalidParameter);
        break;
    case ZENTREL_TRIGGER_MODULE_STATION:
        if (Request->Number >= sim::kStations) return call.Return(sim::kStatusInvalidParameter);
        first = Request->Number * sim::kPortsPerStation;
        count = sim::kPortsPerStation;
        break;
    case ZENTREL_TRIGGER_MODULE_SWITCH:
        count = sim::kTriggerPorts;
        break;
    default:
        return call.Return(sim::kStatusInvalidParameter);
    }
    const sim::DumpsModel &m = call.Target().dumps;
    const sim::TriggerSettings &copy =
        Request->QueryType == ZENTREL_TRIGGER_PERSISTENT ? m.triggerPersistent : m.triggerRuntime;
    uint16_t bitmap = 0;
    if (Request->Operation == ZENTREL_TRIGGER_GET_OVERWRITE)
        bitmap = copy.overwrite ? 1 : 0;
    else
        for (uint32_t port = first; port < first + count; ++port) bitmap |= copy.conditions[port];
    memset(Response, 0, sizeof *Response);
    Response->Result = m.triggerQueryResult;
    Response->ConditionBitmap = m.triggerQueryResult == 0 ? bitmap : 0;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
