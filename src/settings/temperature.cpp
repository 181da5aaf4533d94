#include <cstdio>

#include "frontend/helpers.h"
#include "settings.h"

uint32_t GetTemperature(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -temp\n");
        return 0;
    }
    uint32_t temperature = 0;
    ZENTREL_STATUS status = ZentrelGetTemperature(device, &temperature);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Switch Temperature Failed %x \n", status);
        return 1;
    }
    printf("Switch Temperature = %d C degree \n", static_cast<int>(temperature));
    return 0;
}
