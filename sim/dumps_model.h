// What a simulated switch keeps of its core dump, trace buffer and core
// dump trigger conditions.
#ifndef ZENTREL_SIM_DUMPS_MODEL_H
#define ZENTREL_SIM_DUMPS_MODEL_H

#include <cstdint>

#include "zentrel_dumps.h"

namespace sim {

constexpr uint32_t kTriggerPorts = 144;
constexpr uint32_t kMaxDumpSections = 64;
// A section, and the raw dump, are at most this large.
constexpr uint32_t kMaxDumpPartBytes = 16u << 20;
// Asked for a core dump the switch does not hold.
constexpr ZENTREL_STATUS kStatusNoCoreDump = 0x10;

struct DumpSection {
    uint8_t id;
    uint32_t size;  // bytes of its decoded text
};

// The core dump in flash. Its bytes are not stored: the raw dump and the
// decoded text are made from the seed, the raw size and the sections, the
// same every time they are read.
struct CoreDump {
    bool present;
    uint32_t seed;
    uint32_t rawSize;
    uint32_t sectionCount;
    DumpSection sections[kMaxDumpSections];
};

// The trace memory: raw 16-byte entries and their decoded text, made from
// the seed. A non-zero growth makes the trace grow by that many bytes each
// time its size is asked for, as a busy firmware's would.
struct TraceMemory {
    uint32_t seed;
    uint32_t rawSize;
    uint32_t decodedSize;
    uint32_t growth;
};

// One copy of the trigger settings: at runtime, or in the persistent page.
struct TriggerSettings {
    uint16_t conditions[kTriggerPorts];  // ZENTREL_TRIGGER_AER_... bits a port
    bool overwrite;                      // a new dump replaces the one held
};

struct DumpsModel {
    CoreDump coreDump;
    TraceMemory trace;
    TriggerSettings triggerRuntime;
    TriggerSettings triggerPersistent;
    uint16_t triggerQueryResult;  // the result field of every trigger query
};

}  // namespace sim

#endif
