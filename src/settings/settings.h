// Library and device settings: temperature, versions, manufacturing and
// wafer information, switch time, library, OOB and time-out parameters.
#ifndef ZENTRELLIBTEST_SETTINGS_H
#define ZENTRELLIBTEST_SETTINGS_H

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GetTemperature(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetVersions(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetWaferInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetSwitchTime(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Menu-only handlers: they always prompt and return the Library status.
uint32_t GetMfgInfo(PTR_ZENTREL_DEVICE device);
uint32_t SetLibParameters(PTR_ZENTREL_DEVICE device);
uint32_t GetLibParameters(PTR_ZENTREL_DEVICE device);
uint32_t SetOobParameters(PTR_ZENTREL_DEVICE device);
uint32_t GetOobParameters(PTR_ZENTREL_DEVICE device);
uint32_t SetAsyncCommandTimeout(PTR_ZENTREL_DEVICE device);

#endif
