// The arguments shared by the link-level commands.
#include <cstdio>

#include "designed.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

bool ReadLinkArgument(const char *const *words, size_t index, const char *prompt, uint32_t max, uint32_t *value) {
    int32_t number = 0;
    if (words != nullptr) {
        if (ParseDecimal(WordAt(words, index), &number) != 0) return false;
    } else {
        printf("%s", prompt);
        FlushInput();
        ScanDecimal(&number);
    }
    if (number < 0 || static_cast<uint32_t>(number) > max) {
        printf("Invalid value %d, valid values are 0 to %u\n", number, max);
        return false;
    }
    *value = static_cast<uint32_t>(number);
    return true;
}

bool ReadLinkPort(const char *const *words, uint8_t *port) {
    uint32_t value = 0;
    if (!ReadLinkArgument(words, 0, "Enter Port Number : ", ZENTREL_PORT_COUNT - 1, &value)) return false;
    *port = static_cast<uint8_t>(value);
    return true;
}
