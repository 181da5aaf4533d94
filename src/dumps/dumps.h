// Core dumps, firmware trace and core dump trigger conditions.
#ifndef ZENTRELLIBTEST_DUMPS_H
#define ZENTRELLIBTEST_DUMPS_H

#include <cstddef>
#include <cstdint>

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t CaptureCoreDump(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t EraseCoreDump(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetDecodedTrace(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
// Menu-only handlers.
uint32_t GetCoreDumpInfo(PTR_ZENTREL_DEVICE device);
uint32_t GetCoreDumpSection(PTR_ZENTREL_DEVICE device);
uint32_t SetCoreDumpTrigger(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetCoreDumpTrigger(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Shared by the dump and trace handlers.
namespace dumps {

// Dump and trace files are named into a buffer of this size.
constexpr size_t kFileNameSize = 256;

// The number in the names of dump files: the address of the handler's own
// variable, which differs between runs and between threads running the
// handler at once, so that their files never collide.
uint32_t AddressNumber(const void *variable);

// A zeroed buffer for a size the library reported; null when the size is
// beyond what the controller could ever hold, as when allocation fails.
void *AllocReported(uint64_t size);

// Creates the file and writes count bytes to it; prints "Buffer saved to
// the file.." and then collected (a line), or "File creation failed!!".
void SaveToFile(const char *name, const void *buffer, uint32_t count, const char *collected);

}  // namespace dumps

#endif
