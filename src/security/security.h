// Security information: SPDM state and certificate slots, secure boot state.
#ifndef ZENTRELLIBTEST_SECURITY_H
#define ZENTRELLIBTEST_SECURITY_H

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GetSpdmInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetSpdmSlotInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SpdmExportCsr(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SpdmImportCertificate(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SpdmReadCertificate(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SpdmInvalidateSlot(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetSpdmSecureInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetSecureBootInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

#endif
