// Port performance counters: the TLP and DLLP counters of every port,
// sampled through the library, with the firmware's statistics.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "link.h"

namespace {

constexpr uint32_t kGenerationLow = 2, kGenerationHigh = 3;
constexpr size_t kSizeText = 100;

const char kCounterHeader[] =
    "Port                PH        PDW        NPH        NPDW        CplH        CplDW      DLLP\n";
const char kStatisticHeader1[] =
    "Port                Link        Total        Total        Payload        Payload        Payload\n";
const char kStatisticHeader2[] =
    "Port                Util        Data         Rate         Total          Rate           Avg/TLP\n";
const char kAllocFailed[] = "Unable to allocate buffer to perform port performance test\n";

void PrintCounters(const uint32_t (&counters)[ZENTREL_PERF_COUNTER_COUNT]) {
    for (uint32_t value : counters) printf("%11x", value);
}

void PrintCounters(const uint64_t (&counters)[ZENTREL_PERF_COUNTER_COUNT]) {
    for (uint64_t value : counters) printf("%16llx", static_cast<unsigned long long>(value));
}

// One counter table: the previous or the current counters of every valid port.
template <typename Entry, typename Counters>
void PrintCounterTable(const char *title, const Entry *entries, Counters ingress, Counters egress) {
    printf("%s\n", title);
    puts(kCounterHeader);
    for (uint32_t port = 0; port < ZENTREL_PERF_PORT_COUNT; ++port) {
        const Entry &e = entries[port];
        if (e.Valid == 0) continue;
        printf("%3d Ing    ", static_cast<int>(port));
        PrintCounters(e.*ingress);
        printf("\n");
        printf("%3d Eg     ", static_cast<int>(port));
        PrintCounters(e.*egress);
        puts("\n");
    }
}

void PrintRawStatistic(const ZENTREL_PORT_PERF_STATISTIC &s) {
    const uint64_t values[] = {s.LinkUtilization, s.TotalData, s.TotalRate, s.PayloadTotal, s.PayloadRate,
                               s.PayloadAverage};
    for (uint64_t value : values) printf("%12llu  ", static_cast<unsigned long long>(value));
}

void PrintFriendlyStatistic(const ZENTREL_PORT_PERF_STATISTIC &s) {
    char text[kSizeText];
    printf("%9llu.%llu%%  ", static_cast<unsigned long long>(s.LinkUtilization / 100),
           static_cast<unsigned long long>(s.LinkUtilization % 100));
    FormatByteSize(s.TotalData, text, sizeof text);
    printf("%10s  ", text);
    FormatByteSize(s.TotalRate, text, sizeof text);
    printf("%10s/S  ", text);
    FormatByteSize(s.PayloadTotal, text, sizeof text);
    printf("%10s  ", text);
    FormatByteSize(s.PayloadRate, text, sizeof text);
    printf("%10s/S  ", text);
    FormatByteSize(s.PayloadAverage, text, sizeof text);
    printf("%10s  ", text);
}

template <typename Entry>
void PrintStatisticTable(const char *title, const Entry *entries, void (*print)(const ZENTREL_PORT_PERF_STATISTIC &)) {
    printf("%s\n", title);
    printf("%s", kStatisticHeader1);
    printf("%s", kStatisticHeader2);
    for (uint32_t port = 0; port < ZENTREL_PERF_PORT_COUNT; ++port) {
        const Entry &e = entries[port];
        if (e.Valid == 0) continue;
        printf("%3d Ing    ", static_cast<int>(port));
        print(e.IngressStatistic);
        printf("\n");
        printf("%3d Eg     ", static_cast<int>(port));
        print(e.EgressStatistic);
        printf("\n\n");
    }
}

template <typename Entry>
void PrintTables(const Entry *entries, bool statistics) {
    PrintCounterTable("Pre-counter", entries, &Entry::PreIngress, &Entry::PreEgress);
    PrintCounterTable("Current counter", entries, &Entry::Ingress, &Entry::Egress);
    if (!statistics) return;
    PrintStatisticTable("Statistic", entries, PrintRawStatistic);
    PrintStatisticTable("Statistic Friendly Display", entries, PrintFriendlyStatistic);
}

// The answers of either mode; the single port and 64-bit choices exist in
// the sampling mode only.
struct PerfRequest {
    int32_t loops = 0;
    int32_t delayMs = 0;
    int32_t doStatistic = 0;
    int32_t elapsedMs = 0;
    int32_t singlePort = 0;
    int32_t port = 0;
    int32_t wide = 0;
};

// The first four questions, the same in both modes.
void AskCommon(PerfRequest *r) {
    r->loops = AskSigned("Input the test loops count:");
    r->delayMs = AskSigned("Input the first read time delay (ms):");
    r->doStatistic = AskSigned("Do you want perform statistic?(1-Yes/0-No):");
    if (r->doStatistic != 0) r->elapsedMs = AskSigned("Input the statistic time interval(ms):");
}

// The first two words, the same in both modes.
bool ParseLoopAndDelay(const char *const *words, PerfRequest *r) {
    if (ParseDecimal(WordAt(words, 0), &r->loops) != 0) {
        printf("failed to get loop count\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 1), &r->delayMs) != 0) {
        printf("failed to get timeDelayMs\n");
        return false;
    }
    return true;
}

uint32_t Delay(int32_t ms) {
    return ms < 0 ? 0u : static_cast<uint32_t>(ms);
}

void Prepare(PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE record, const PerfRequest &r, uint32_t operation) {
    record->Flags = static_cast<uint16_t>((record->Flags & ~ZENTREL_PERF_FLAG_STATISTIC) |
                                          (static_cast<uint32_t>(r.doStatistic) & ZENTREL_PERF_FLAG_STATISTIC));
    record->StatisticElapsedTimeMs = static_cast<uint32_t>(r.elapsedMs);
    record->Operation = operation;
}

// Generations 2 and 3: each sample is one read, of a fresh record.
uint32_t SamplingMode(PTR_ZENTREL_DEVICE device, const char *const *words) {
    PerfRequest r;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -swperf <loop> <timeDelayMs> <doStatistic>(1-Yes/0-No) "
                   "<statisticElapsedTimeMs> <perfcounter>(1-64Bit/0-32Bit)\n");
            return 0;
        }
        if (!ParseLoopAndDelay(words, &r)) return 1;
        if (ParseDecimal(WordAt(words, 2), &r.doStatistic) != 0 || ParseDecimal(WordAt(words, 3), &r.elapsedMs) != 0 ||
            ParseDecimal(WordAt(words, 4), &r.wide) != 0) {
            printf("failed to get perfcounter 64/32\n");
            return 1;
        }
    } else {
        AskCommon(&r);
        r.singlePort = AskSigned("Display port counters for single port?(1 - Yes / 0 - No)");
        if (r.singlePort != 0) r.port = AskSigned("Input the Port number:");
        r.wide = AskSigned("64/32 bit Counter ? 1 -> 64 bit ; 0 -> 32bit:");
    }
    for (int32_t i = 0; i < r.loops; ++i) {
        SleepMs(Delay(r.delayMs));
        auto *record = static_cast<PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE>(
            AllocZeroed(sizeof(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE)));
        if (record == nullptr) {
            printf(kAllocFailed);
            return 5;
        }
        if (r.singlePort != 0) {
            record->Flags |= ZENTREL_PERF_FLAG_SINGLE_PORT;
            record->PortNumber = static_cast<uint16_t>(r.port);
        }
        Prepare(record, r, r.wide != 0 ? ZENTREL_PERF_OP_READ64 : ZENTREL_PERF_OP_READ32);
        if (ZentrelSwitchGetPciePortPerformance(device, record) != ZENTREL_STATUS_SUCCESS) {
            FreeBuffer(record);
            return 1;
        }
        PrintPortPerformance(device, record);
        // The record of a successful sample is never released: the tool
        // has always kept them (see tests/lsan.supp).
    }
    return 0;
}

// Other generations: counting starts, is read loop times (32-bit counters
// only) and stops, all in one record.
uint32_t StartStopMode(PTR_ZENTREL_DEVICE device, const char *const *words) {
    PerfRequest r;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -swperf loop timeDelayMs doStatistic(1-Yes/0-No) "
                   "<statisticElapsedTimeMs>(if doStatistic)\n");
            return 0;
        }
        if (!ParseLoopAndDelay(words, &r)) return 1;
        if (ParseDecimal(WordAt(words, 2), &r.doStatistic) != 0) {
            printf("failed to get doStatistic\n");
            return 1;
        }
        if (r.doStatistic != 0 && ParseDecimal(WordAt(words, 3), &r.elapsedMs) != 0) {
            printf("failed to get statisticElapsedTimeMs\n");
            return 1;
        }
    } else {
        AskCommon(&r);
        if (AskSigned("Display port counters for single port?(1 - Yes / 0 - No)") != 0) {
            AskSigned("Input the Port number?");
            // These switches cannot count one port: the tool has always
            // ended here, abnormally, before reaching the library.
            abort();
        }
    }
    auto *record = static_cast<PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE)));
    if (record == nullptr) {
        printf(kAllocFailed);
        return 5;
    }
    record->Operation = ZENTREL_PERF_OP_START;
    if (ZentrelSwitchGetPciePortPerformance(device, record) != ZENTREL_STATUS_SUCCESS) {
        FreeBuffer(record);
        return 1;
    }
    for (int32_t i = 0; i < r.loops; ++i) {
        SleepMs(Delay(r.delayMs));
        Prepare(record, r, ZENTREL_PERF_OP_READ32);
        ZENTREL_STATUS status = ZentrelSwitchGetPciePortPerformance(device, record);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("Get PCI-e port performance failed, libStatus=0x%x\n", status);
            FreeBuffer(record);
            return 1;
        }
        PrintPortPerformance(device, record);
    }
    record->Operation = ZENTREL_PERF_OP_STOP;
    ZentrelSwitchGetPciePortPerformance(device, record);  // its status is not looked at
    FreeBuffer(record);
    return 0;
}

}  // namespace

uint32_t FormatByteSize(uint64_t bytes, char *buffer, size_t size) {
    memset(buffer, 0, size);
    struct Unit {
        unsigned shift;
        const char *name;
    };
    static const Unit kUnits[] = {{40, "TiB"}, {30, "GiB"}, {20, "MiB"}, {10, "KiB"}};
    for (const Unit &unit : kUnits) {
        if (bytes >> unit.shift == 0) continue;
        uint64_t whole = bytes >> unit.shift;
        uint64_t hundredths = ((bytes & ((1ULL << unit.shift) - 1)) * 100) >> unit.shift;
        snprintf(buffer, size, "%llu.%llu %s", static_cast<unsigned long long>(whole),
                 static_cast<unsigned long long>(hundredths), unit.name);
        return 0;
    }
    snprintf(buffer, size, "%llu B", static_cast<unsigned long long>(bytes));
    return 0;
}

uint32_t PrintPortPerformance(PTR_ZENTREL_DEVICE, const ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE *record) {
    bool statistics = (record->Flags & ZENTREL_PERF_FLAG_STATISTIC) != 0;
    if (record->Operation == ZENTREL_PERF_OP_READ32)
        PrintTables(record->Ports32, statistics);
    else if (record->Operation == ZENTREL_PERF_OP_READ64)
        PrintTables(record->Ports64, statistics);
    return 0;
}

uint32_t PortPerformanceTest(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_DEVICE_INFO info;
    memset(&info, 0, sizeof info);
    ZENTREL_STATUS status = ZentrelGetDeviceInfo(gSelectedDeviceHandle, ZENTREL_DEVICE_INFO_LENGTH, &info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Could not get the device information\n");
        return status;
    }
    if (info.DeviceGeneration == kGenerationLow || info.DeviceGeneration == kGenerationHigh)
        return SamplingMode(device, words);
    return StartStopMode(device, words);
}
