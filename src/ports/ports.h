// Ports and topology: port properties, port error statistics with their
// Advanced Error Reporting decode, and packet RAM soft-error counters.
#ifndef ZENTRELLIBTEST_PORTS_H
#define ZENTRELLIBTEST_PORTS_H

#include <cstdio>

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GetPortProperties(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetPortErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t ResetPortErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetPacketRamErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t ResetPacketRamErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Every port's properties, without a question (the parallel test). Returns 0.
uint32_t ReadAllPortProperties(PTR_ZENTREL_DEVICE device);

// The port, downstream and host tables and the additional status of every
// valid entry. Returns 0, or the status of the device information read,
// which fails with a message and nothing else printed.
uint32_t PrintPortProperties(const ZENTREL_SWITCH_PORT_PROPERTIES *properties, FILE *stream);

#endif
