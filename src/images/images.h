// Firmware and image transfer: firmware and PLDM downloads, the SBR
// regions, the unit specific data region and the configuration page.
#ifndef ZENTRELLIBTEST_IMAGES_H
#define ZENTRELLIBTEST_IMAGES_H

#include <pthread.h>

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t DownloadFirmware(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t DownloadPldmFirmware(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t ConfigureSbrMfg(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t DownloadUnitSpecificData(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t UploadUnitSpecificData(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t DownloadCfgPage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// The "-f" and "-h" values of -dl and -pldm are kept from one call to the
// next (they point into the command line); this forgets them, for programs
// that run many command lines in one process.
void ForgetDownloadOptions();

// Menu-only: the SBR versions of the process-wide selected switch (the
// device argument is not used). Returns the Library status.
uint32_t GetSbrVersion(PTR_ZENTREL_DEVICE device);

// Guards the reading of "switchFw.bin" by the threads of the parallel test.
extern pthread_mutex_t gFirmwareFileMutex;
// Downloads "switchFw.bin" from the current directory. After a failed read
// the mutex stays locked, so that every other thread trying it waits.
uint32_t DownloadFixedFirmware(PTR_ZENTREL_DEVICE device);

#endif
