// Secure boot state: mode, key slots, algorithms, the programmed key
// digests and the matched public key.
#include <cstdio>

#include "frontend/helpers.h"
#include "security.h"

namespace {

// The public key words shown; the rest of the key is not printed.
constexpr uint32_t kShownKeyWords = 96;

const char *ModeName(uint8_t mode) {
    switch (mode) {
    case ZENTREL_SECURE_BOOT_CONFIG_SECURE:
        return "Config Secure";
    case ZENTREL_SECURE_BOOT_HARD_SECURE:
        return "Hard Secure";
    case ZENTREL_SECURE_BOOT_SECURE_DEBUG:
        return "Secure Debug";
    case ZENTREL_SECURE_BOOT_INVALID:
        return "Invalid";
    case ZENTREL_SECURE_BOOT_TAMPERED:
        return "Tampered";
    default:
        return "Unknown";
    }
}

const char *HashName(uint8_t algorithm) {
    if (algorithm == ZENTREL_SECURE_BOOT_HASH_SHA3_384) return "SHA3-384";
    if (algorithm == ZENTREL_SECURE_BOOT_HASH_SHA3_512) return "SHA3-512";
    return "Unknown";
}

const char *SigningName(uint8_t algorithm) {
    if (algorithm == ZENTREL_SECURE_BOOT_SIGN_RSA_4K) return "RSA-4K";
    if (algorithm == ZENTREL_SECURE_BOOT_SIGN_RSA_3K) return "RSA-3K";
    return "Unknown";
}

void PrintDetails(const ZENTREL_SWITCH_SECURE_BOOT_INFO &info) {
    printf("Security Version Number    : %u\r\n", info.SecurityVersion);
    printf("Key Slots in Use           : %u\r\n", info.KeySlotsInUse);
    printf("Key Slots for future Use   : %u\r\n", info.KeySlotsFuture);
    printf("Key Digest Hash Algorithm  : %s\r\n", HashName(info.KeyDigestHashAlgo));
    printf("Image Digest Hash Algorithm: %s\r\n", HashName(info.ImageDigestHashAlgo));
    printf("Image Signing Algorithm    : %s\r\n", SigningName(info.ImageSigningAlgo));
    printf("\nProgrammed Key Digest(s):\r\n");
    // The record holds eight digests; a larger count shows those eight.
    uint32_t slots = info.KeySlotsInUse < ZENTREL_SECURE_BOOT_KEY_SLOTS ? info.KeySlotsInUse : ZENTREL_SECURE_BOOT_KEY_SLOTS;
    for (uint32_t k = 0; k < slots; ++k) {
        printf("#%u\r\n", k);
        printf("--\n");
        for (uint32_t w = 0; w < ZENTREL_SECURE_BOOT_DIGEST_WORDS; ++w) {
            if (w % 8 == 0) printf("\r\n");
            printf("0x%08x ", info.KeyDigests[k][w]);
        }
        printf("\r\n");
    }
    printf("\nMatched Public Key:\n");
    for (uint32_t w = 0; w < kShownKeyWords; ++w) {
        if (w % 8 == 0) printf("\r\n");
        printf("0x%08x ", info.PublicKey[w]);
    }
}

}  // namespace

uint32_t GetSecureBootInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -GetSecBootInfo \n");
        return 0;
    }
    uint32_t *filled = static_cast<uint32_t *>(AllocZeroed(sizeof(uint32_t)));
    auto *info = static_cast<PTR_ZENTREL_SWITCH_SECURE_BOOT_INFO>(AllocZeroed(sizeof(ZENTREL_SWITCH_SECURE_BOOT_INFO)));
    if (filled == nullptr || info == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_SECURE_BOOT_INFO\n");
        FreeBuffer(filled);
        FreeBuffer(info);
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchSecureBootInfo(device, filled, info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nZentrelSwitchSecureBootInfo Failed.... Status:0x%x\n", status);
        FreeBuffer(filled);
        FreeBuffer(info);
        return 1;
    }
    printf("Secure Boot Enabled        : %s\r\n", info->Enabled != 0 ? "Yes" : "No");
    printf("Secure Boot Mode           : %s\r\n", ModeName(info->Mode));
    if (info->Enabled == 1) PrintDetails(*info);
    FreeBuffer(filled);
    FreeBuffer(info);
    return 0;
}
