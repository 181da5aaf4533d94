// Secure-debug tokens: generating the payload and the signed token,
// installing, reading and removing a token, the parameters a token must be
// made for, and the debug ports the switch allows.
#ifndef ZENTRELLIBTEST_DEBUGTOKEN_H
#define ZENTRELLIBTEST_DEBUGTOKEN_H

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GenerateDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t EnableDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t DisableDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetDebugTokenParams(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetDebugPortCap(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// The display name of a claim key, or null for a key the table lacks.
const char *ClaimName(int32_t key);

#endif
