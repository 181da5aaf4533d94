// Library and device settings: temperature, versions, manufacturing and
// wafer information, switch time, library, OOB and time-out parameters.
#ifndef ZENTRELLIBTEST_SETTINGS_H
#define ZENTRELLIBTEST_SETTINGS_H

#include "frontend/commands.h"

uint32_t GetTemperature(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

#endif
