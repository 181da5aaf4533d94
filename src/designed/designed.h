// Commands whose records this project designed (see include/zentrel_designed.h).
#ifndef ZENTRELLIBTEST_DESIGNED_H
#define ZENTRELLIBTEST_DESIGNED_H

#include <cstdint>

#include "frontend/commands.h"

// --- history buffers, performance monitoring, address traps,
//     host-physical-address ranges, equalization control ---

// Command handlers (table rows and menu options).
uint32_t ManageHistoryBuffers(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetupPerfMonitoring(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Menu-only handlers: they prompt for everything and return 0 or 1.
uint32_t AddressTrapMenu(PTR_ZENTREL_DEVICE device);
uint32_t HostPhysicalAddressRangesMenu(PTR_ZENTREL_DEVICE device);
uint32_t SetEqualizationCtrlMenu(PTR_ZENTREL_DEVICE device);
uint32_t ShowEqualizationCtrlMenu(PTR_ZENTREL_DEVICE device);

// Prints the prompt (no newline) and reads one answer, "%d" or "%x"; an
// answer that is not a number gives 0.
int32_t AskSigned(const char *prompt);
uint32_t AskHex(const char *prompt);

#endif
