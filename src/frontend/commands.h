// The one-shot command table, its dispatcher, and the handler contract.
//
// A handler receives the device context (passed unchanged to every library
// call), the words after its command name ending with a null entry (null or
// empty when called from the menu) and the device information record. It
// prints its own messages and returns a small result; only kContinue lets
// the dispatcher go on with the rest of the command line.
#ifndef ZENTRELLIBTEST_COMMANDS_H
#define ZENTRELLIBTEST_COMMANDS_H

#include <cstdint>

#include "zentrel.h"

typedef uint32_t (*CommandHandler)(PTR_ZENTREL_DEVICE device, const char *const *words,
                                   PTR_ZENTREL_DEVICE_INFO info);

struct CommandRow {
    const char *name;     // the option word, compared exactly; null ends the table
    CommandHandler handler;
    uint32_t extraWords;  // words after the name skipped when the handler returns kContinue
};

constexpr uint32_t kContinue = 7;

extern const CommandRow kCommandTable[];

int DispatchCommand(uint32_t wordCount, char **words, uint32_t *position);

uint32_t PrintUsage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

#endif
