/*
 * Library and device settings: temperature, versions, manufacturing and
 * wafer information, switch time, library, out-of-band and time-out
 * parameters.
 */
#ifndef ZENTREL_SETTINGS_H
#define ZENTREL_SETTINGS_H

#include "zentrel_types.h"

ZENTREL_API ZENTREL_STATUS ZentrelGetTemperature(PTR_ZENTREL_DEVICE Device, uint32_t *Temperature);

#endif
