// Commands whose records this project designed (see include/zentrel_designed.h).
#ifndef ZENTRELLIBTEST_DESIGNED_H
#define ZENTRELLIBTEST_DESIGNED_H

#include <cstdint>

#include "frontend/commands.h"
#include "frontend/input.h"

// --- error injection, TLP round-trip time, credits, link-down condition ---

// Command handlers (table rows and menu options 65, 66, 86 and 90 to 93).
uint32_t GetErrInjection(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetErrInjection(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t TlpRoundTripTime(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetCreditCapture(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetCreditCapture(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetLinkDownCondition(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetLinkDownCondition(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// One numeric argument of these commands: from the word when there are
// words (the menu passes none), else asked with the prompt. False, after a
// message, when the word is not a decimal number or the value exceeds max.
bool ReadLinkArgument(const char *const *words, size_t index, const char *prompt, uint32_t max, uint32_t *value);
// The port argument (0 to 143), word 0 or "Enter Port Number : ".
bool ReadLinkPort(const char *const *words, uint8_t *port);

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


#endif
