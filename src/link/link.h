// Link diagnostics: LTSSM state names, LTSSM polling, trace and monitor,
// raw switch memory access, and the port performance counters.
#ifndef ZENTRELLIBTEST_LINK_H
#define ZENTRELLIBTEST_LINK_H

#include <cstddef>
#include <cstdint>

#include "frontend/commands.h"

// The longest LTSSM state name with its trailing blank and NUL.
constexpr size_t kLtssmNameSize = 25;

// Copies the name of the low 12 bits of stateCode, which ends in one blank,
// with its NUL into nameBuffer (at least kLtssmNameSize bytes); codes
// without a name give "Unknown State ". Returns 0.
uint32_t LtssmStateName(uint32_t stateCode, char *nameBuffer);

// Command handlers (table rows and menu options).
uint32_t LtssmPoll(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t LtssmTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t LtssmMonitorSetup(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t LtssmMonitorQuery(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t PortPerformanceTest(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Menu-only handlers.
uint32_t LtssmPollMenu(PTR_ZENTREL_DEVICE device);
uint32_t SwitchMemoryReadMenu(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SwitchMemoryWriteMenu(PTR_ZENTREL_DEVICE device);

// The counter tables of one performance record and, with its statistic
// flag, the statistics raw and friendly. Returns 0.
uint32_t PrintPortPerformance(PTR_ZENTREL_DEVICE device, const ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE *record);

// "1.50 KiB": whole units and truncated hundredths, the hundredths not
// zero-padded. Returns 0.
uint32_t FormatByteSize(uint64_t bytes, char *buffer, size_t size);

#endif
