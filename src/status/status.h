// Switch health and status: status registers, GPIO, health configuration
// and the tag scoreboard time-out.
#ifndef ZENTRELLIBTEST_STATUS_H
#define ZENTRELLIBTEST_STATUS_H

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GetCcrStatus(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetPowerOnSense(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GpioControl(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetHealthConfig(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetHealthConfig(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetTagSbTimeout(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetTagSbTimeout(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Menu-only handlers: they return the Library status.
uint32_t GetSysErrStatus(PTR_ZENTREL_DEVICE device);
uint32_t GetGpioSpareState(PTR_ZENTREL_DEVICE device);

#endif
