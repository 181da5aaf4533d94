// Firmware images and PLDM packages, read whole from a file and handed to
// the library, which writes them to the switch.
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "images.h"

pthread_mutex_t gFirmwareFileMutex = PTHREAD_MUTEX_INITIALIZER;

namespace {

constexpr size_t kPldmPathSize = 1024;

// The download options, kept from one call to the next: "-f" names the
// image file; "-h" takes a word that nothing uses.
struct DownloadOption {
    const char *name;
    const char *value;
};
DownloadOption gDownloadOptions[] = {{"-f", nullptr}, {"-h", nullptr}};

// For each word, the names are compared in order; a name that matches takes
// the following word as its value, and that word is compared with the
// remaining names.
void ScanOptions(const char *const *words) {
    if (words == nullptr) return;
    for (size_t i = 0; words[i] != nullptr; ++i) {
        size_t at = i;
        for (DownloadOption &option : gDownloadOptions) {
            const char *word = WordAt(words, at);
            if (word == nullptr) break;
            if (strcmp(word, option.name) == 0) {
                option.value = WordAt(words, at + 1);
                ++at;
            }
        }
    }
}

const char *PickPath(const char *path) {
    return gDownloadOptions[0].value != nullptr ? gDownloadOptions[0].value : path;
}

}  // namespace

void ForgetDownloadOptions() {
    for (DownloadOption &option : gDownloadOptions) option.value = nullptr;
}

uint32_t DownloadFirmware(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info) {
    if (info->ProductType != ZENTREL_PRODUCT_TYPE_SWITCH) {
        printf("No valid product available, product %d\n", static_cast<int>(info->ProductNumber));
        return 0;
    }
    ScanOptions(words);
    const char *path = PickPath(nullptr);
    uint8_t *image = nullptr;
    uint32_t length = 0;
    if (ReadWholeFile(path, &image, &length) != 0) {
        printf("Firmware file read error.\n");
        return 1;
    }
    printf("\n \n Firmware download process started, going to take 3 to 5 minutes \n");
    ZENTREL_STATUS status = ZentrelSwitchDownloadFirmware(device, 0, 0, 0, image, length);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Switch firmware download error.\n");
        FreeBuffer(image);
        return 1;
    }
    // The image is kept after a successful download: the operator resets
    // the card and the process ends soon after.
    printf("Successfully download the firmware image, please reset the card \n");
    return 0;
}

uint32_t DownloadPldmFirmware(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info) {
    if (info->ProductType != ZENTREL_PRODUCT_TYPE_SWITCH) return 0;
    char typed[kPldmPathSize] = {};
    const char *path = nullptr;
    if (WordAt(words, 0) != nullptr) {
        // The scan cannot fail, so its usage line is never printed.
        ScanOptions(words);
        path = PickPath(nullptr);
    } else {
        printf("Input PLDM firmware image file name : \n");
        ScanWord(typed, sizeof typed);
        path = typed;
    }
    uint8_t *image = nullptr;
    uint32_t length = 0;
    if (ReadWholeFile(path, &image, &length) != 0) {
        printf("Firmware file read error.\n");
        return 1;
    }
    printf("\n \n PLDM Firmware download process started...\n");
    ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ request;
    memset(&request, 0, sizeof request);
    request.Image = image;
    request.ImageLength = length;
    ZENTREL_STATUS status = ZentrelSwitchDownloadPldmFirmware(device, &request, image, length);
    FreeBuffer(image);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Switch firmware download error.\n");
        return 1;
    }
    printf("Successfully download the PLDM firmware image, please reset the card \n");
    return 0;
}

uint32_t DownloadFixedFirmware(PTR_ZENTREL_DEVICE device) {
    pthread_mutex_lock(&gFirmwareFileMutex);
    uint8_t *image = nullptr;
    uint32_t length = 0;
    if (ReadWholeFile("switchFw.bin", &image, &length) != 0) {
        printf("Firmware file read error.\n");
        // Left locked on purpose: the other firmware threads of the
        // parallel test then wait for ever instead of trying the file.
        return 1;
    }
    printf("\n \n Firmware download process started...\n");
    pthread_mutex_unlock(&gFirmwareFileMutex);
    ZENTREL_STATUS status = ZentrelSwitchDownloadFirmware(device, 0, 0, 0, image, length);
    FreeBuffer(image);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Switch firmware download error.\n");
        return 1;
    }
    printf("Successfully downloaded the firmware image, please reset the card. \n");
    return 0;
}
