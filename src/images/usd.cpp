// The unit specific data region ("usd_dl.bin" in, "usd_ul.bin" out) and
// the manufacturing configuration page, moved between files and the switch.
#include <cstdio>
#include <cstring>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "images.h"

namespace {

constexpr size_t kCfgNameSize = 256;

}  // namespace

uint32_t DownloadUnitSpecificData(PTR_ZENTREL_DEVICE, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -downloadusd  regId <number>\n");
        printf("Unit Specific Data binary file with the name usd_dl.binshould be present in the current working "
               "directory \n");
        return 0;
    }
    // The file is never closed, as the tool has always done; the process
    // ends soon after.
    FILE *file = OpenRegularFile("usd_dl.bin");
    if (file == nullptr) {
        printf("Unable to Open Unit Specific Data binary file!\n");
        return 1;
    }
    auto *buffer = static_cast<uint8_t *>(AllocZeroed(ZENTREL_USD_REGION_MAX));
    if (buffer == nullptr) {
        printf("Unable to allocate memory, zntrlSwitchDownloadUSD test failed\n");
        return 1;
    }
    uint32_t length = 0;
    if (GetFileLength(file, &length) != 0) {
        printf("Unable to get the Unit Specific Data file length!\n");
        FreeBuffer(buffer);
        return 1;
    }
    // A file larger than the region is refused, never read past the buffer.
    if (length > ZENTREL_USD_REGION_MAX) {
        printf("Unit Specific Data file is larger than %u bytes!\n", ZENTREL_USD_REGION_MAX);
        FreeBuffer(buffer);
        return 1;
    }
    if (ReadExact(file, buffer, length) != 0) {
        printf("Unable to Read the USD Image file!\n");
        FreeBuffer(buffer);
        return 1;
    }
    // The download always goes to the process-wide selected switch.
    ZENTREL_STATUS status = ZentrelSwitchDownloadUnitSpecificData(&gSelectedDeviceHandle, buffer, length);
    FreeBuffer(buffer);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nzntrlSwitchDownloadUSD test failed with status %x\n\n", status);
        return 1;
    }
    printf("Successfully downloaded the Unit Specific Data image.\n");
    return 0;
}

uint32_t UploadUnitSpecificData(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -uploadusd regId <number> \n");
        printf("Unit Specific Data binary file with the name usd_ul.bin will be created in the current working "
               "directory \n");
        return 0;
    }
    uint32_t size = 0;
    ZENTREL_STATUS status = ZentrelSwitchUploadUnitSpecificData(device, nullptr, &size);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nZentrelSwitchUploadUnitSpecificData test failed with status %x\n\n", status);
        return 1;
    }
    if (size == 0) {
        printf("\n\nZentrelSwitchUploadUnitSpecificData test failed as region size returned is 0 \n");
        return 1;
    }
    auto *buffer = static_cast<uint8_t *>(AllocZeroed(size));
    if (buffer == nullptr) {
        printf("Unable to allocate memory, zntrlSwitchUploadUSD test failed\n");
        return 1;
    }
    status = ZentrelSwitchUploadUnitSpecificData(device, buffer, &size);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nZentrelSwitchUploadUnitSpecificData test failed with status %x\n\n", status);
        FreeBuffer(buffer);
        return 1;
    }
    printf("USD upload sucessful\n");
    FILE *file = fopen("usd_ul.bin", "wb");
    if (file == nullptr) {
        printf("File create failed!!\n");
    } else {
        WriteBufferToFile(file, buffer, size);
        fclose(file);
        printf("USD is saved to the file usd_ul.bin\n");
    }
    FreeBuffer(buffer);
    return 0;
}

// Returns the Library status itself, not 1, once the library was called.
uint32_t DownloadCfgPage(PTR_ZENTREL_DEVICE, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    char name[kCfgNameSize] = {};
    const char *first = WordAt(words, 0);
    if (first == nullptr) {
        printf("\nEnter the config file name: ");
        ScanWord(name, sizeof name);
    } else {
        // Extra words are refused before "-h" is looked at.
        if (WordAt(words, 1) != nullptr) {
            printf("\nERROR: Invalid syntax. \n");
            printf("Usage: zentrelLibTest -i 0 -downloadCfgPage <cfg.bin>\n");
            return 1;
        }
        if (strcmp(first, "-h") == 0) {
            printf("\nUsage: zentrelLibTest -i 0 -downloadCfgPage <cfg.bin>\n");
            return 0;
        }
        snprintf(name, sizeof name, "%s", first);
    }
    printf("\nConfig File Name is : %s\n", name);
    FILE *file = OpenRegularFile(name);
    if (file == nullptr) {
        printf("Unable to Open configuration file!\n");
        return 1;
    }
    uint32_t length = 0;
    if (GetFileLength(file, &length) != 0) {
        printf("Unable to get the configuration file length!\n");
        fclose(file);
        return 1;
    }
    auto *page = static_cast<uint8_t *>(AllocZeroed(length));
    if (page == nullptr) {
        printf("Unable to allocate memory, zntrlSwitchDownloadMfgCfgPage test failed\n");
        fclose(file);
        return 1;
    }
    if (ReadExact(file, page, length) != 0) {
        printf("Error: Unable to Read the Configuration file!\n");
        FreeBuffer(page);
        fclose(file);
        return 1;
    }
    // The download always goes to the process-wide selected switch.
    ZENTREL_STATUS status = ZentrelSwitchDownloadMfgCfgPage(&gSelectedDeviceHandle, page, length);
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("Error: Operation failed. Library returned '0x%x'\n", status);
    else
        printf("Operation completed successfully.\n");
    // The page and the file are kept, as the tool has always done; the
    // process ends soon after.
    return status;
}
