// Link and PHY diagnostics: lane margining and the hardware eye,
// equalization readouts, Serdes information and PRBS.
#ifndef ZENTRELLIBTEST_PHY_H
#define ZENTRELLIBTEST_PHY_H

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t LaneMarginCapabilities(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t LaneMarginRun(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t HardwareEyeScan(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t RxEqStatus(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t TxCoefficients(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SerdesInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t PrbsTest(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// The transmitter's preshoot, de-emphasis and boost in dB, from its cursor
// settings: each a ratio of the voltage levels rounded to two decimals in
// single precision, its logarithm taken in double precision. A zero level
// gives an infinity or NaN, printed as the platform prints them.
struct SerdesDb {
    float preshoot;
    float deEmphasis;
    float boost;
};
SerdesDb ComputeSerdesDb(uint8_t cp1, uint8_t cm1, uint8_t amplitude);

// The checker's accumulated bit count from its three 16-bit word counts.
double AccumulatedBitCount(const uint16_t (&wordCount)[3]);

// The lanes from start on, count of them, that have a record in a buffer
// of ZENTREL_LANE_COUNT lanes: the lanes outside it are not printed.
struct LaneRange {
    uint32_t first;
    uint32_t end;  // one past the last
};
LaneRange LanesInBuffer(int32_t start, int32_t count);

#endif
