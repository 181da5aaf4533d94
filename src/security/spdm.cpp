// SPDM state and certificate slots: the protocol details, the status of a
// slot, and moving certificate signing requests and certificates between
// the switch's slots and files in the working directory.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "security.h"

namespace {

// Base asymmetric algorithm names, one per BaseAsymAlgo bit from bit 0.
const char *const kAsymNames[] = {
    "TPM_ALG_RSASSA_2048", "TPM_ALG_RSAPSS_2048", "TPM_ALG_RSASSA_3072",         "TPM_ALG_RSAPSS_3072",
    "TPM_ALG_ECDSA_ECC_NIST_P256", "TPM_ALG_RSASSA_4096", "TPM_ALG_RSAPSS_4096", "TPM_ALG_ECDSA_ECC_NIST_P384",
    "TPM_ALG_ECDSA_ECC_NIST_P521",
};
// Hash names per BaseHashAlgo bit: the SPDM information spells the SHA-2
// names with an underscore, the secure information without; both are kept.
const char *const kHashNames[] = {"TPM_ALG_SHA_256", "TPM_ALG_SHA_384", "TPM_ALG_SHA_512",
                                  "TPM_ALG_SHA3_256", "TPM_ALG_SHA3_384", "TPM_ALG_SHA3_512"};
const char *const kSecureHashNames[] = {"TPM_ALG_SHA256", "TPM_ALG_SHA384", "TPM_ALG_SHA512",
                                        "TPM_ALG_SHA3_256", "TPM_ALG_SHA3_384", "TPM_ALG_SHA3_512"};

constexpr uint32_t kAsymBitsShown = 10;  // bit 9 has no name
constexpr uint32_t kHashBitsShown = 8;   // bits 6 and 7 have none

template <size_t N>
const char *BitName(const char *const (&names)[N], uint32_t bit) {
    return bit < N ? names[bit] : "Unknown";
}

// The name of a value that must be a single bit; anything else is unknown.
template <size_t N>
const char *SingleBitName(const char *const (&names)[N], uint32_t value) {
    for (uint32_t bit = 0; bit < N; ++bit)
        if (value == 1u << bit) return names[bit];
    return "Unknown";
}

// The record has room for this many slot entries; a larger count from the
// library is taken as this many.
uint32_t SlotsHeld(uint8_t count) {
    return count < ZENTREL_SPDM_MAX_SLOTS ? count : ZENTREL_SPDM_MAX_SLOTS;
}

void PrintSlot(const ZENTREL_SPDM_SLOT_INFO &slot) {
    printf("%s : %d\n", "Slot Group No", slot.SlotGroup);
    printf("%s : %d\n", "Slot No", slot.Slot);
    printf("%s : %s\n", "Is Empty", (slot.Flags & ZENTREL_SPDM_SLOT_OCCUPIED) ? "No" : "Yes");
    printf("%s : %s\n", "Sealed", (slot.Flags & ZENTREL_SPDM_SLOT_SEALED) ? "Yes" : "No");
    printf("\n");
}

enum class SlotAction { kStatus, kExport, kImport, kRead, kInvalidate };

struct SlotCommand {
    const char *word;  // for the usage line
    const char *action;  // "<action> failed, Libstatus:..."
    const char *success;
};

const SlotCommand kSlotCommands[] = {
    {"-spdmslotinfo", nullptr, nullptr},
    {"-spdmexport", "SPDM Export CSR", "SPDM Export CSR Success"},
    {"-spdmimport", "SPDM Import Certificate", "SPDM Import Certificate Success"},
    {"-spdmread", "SPDM Read Certificate", "SPDM read certificate Success"},
    {"-spdmsltmgmt", "SPDM Slot management", "SPDM slot invalidate Success"},
};

// The slot handlers: the SPDM information first (even for -h), then the
// slot and group from the words or the prompts, checked against it.
uint32_t RunSlotCommand(PTR_ZENTREL_DEVICE device, const char *const *words, SlotAction action) {
    const SlotCommand &command = kSlotCommands[static_cast<int>(action)];
    ZENTREL_SWITCH_SPDM_INFO info = {};
    ZENTREL_STATUS status = ZentrelSwitchGetSPDMInfo(device, &info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Libstatus:%x\n", status);
        return status;
    }
    int32_t group = 0, slot = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 %s slotgroupnum slotnum\n", command.word);
            return 0;
        }
        // The first word is the slot and the second the group, the other
        // way round from the usage line; the messages are crossed alike.
        if (ParseDecimal(WordAt(words, 0), &slot) != 0) {
            printf("failed to get slot group number\n");
            return 1;
        }
        if (ParseDecimal(WordAt(words, 1), &group) != 0) {
            printf("failed to get slot number\n");
            return 1;
        }
    } else {
        printf("Input the Slot Group number: ");
        FlushInput();
        ScanDecimal(&group);
        printf("Input the Slot number: ");
        FlushInput();
        ScanDecimal(&slot);
    }
    int32_t groups = info.SlotGroupCount, slots = static_cast<int32_t>(SlotsHeld(info.SlotCount));
    if (group >= groups) {  // a negative number passes, as its low byte
        printf("Invalid value specified for 'slotgroup'. Total slotgroups present is %d", groups);
        return 1;
    }
    if (slot >= slots) {
        printf("Invalid value specified for 'slot'. Total slotgroups present is %d", slots);
        return 1;
    }
    uint8_t slotByte = static_cast<uint8_t>(slot), groupByte = static_cast<uint8_t>(group);
    switch (action) {
    case SlotAction::kStatus:
        // The entry is chosen by the slot number alone.
        printf("Slot Status Details :\n");
        printf("---------------------\n");
        PrintSlot(info.Slots[slotByte % ZENTREL_SPDM_MAX_SLOTS]);
        return 0;
    case SlotAction::kExport:
        status = ZentrelSwitchSPDMExportCSR(device, slotByte, groupByte, "spdm_csr.bin");
        break;
    case SlotAction::kImport:
        status = ZentrelSwitchSPDMImportCertificate(device, slotByte, groupByte, "spdm_cert.bin");
        break;
    case SlotAction::kRead:
        status = ZentrelSwitchSPDMReadSlotCertificate(device, slotByte, groupByte, "spdm_cert.bin");
        break;
    case SlotAction::kInvalidate:
        status = ZentrelSwitchSPDMSlotManagement(device, slotByte, groupByte);
        break;
    }
    if (status != ZENTREL_STATUS_SUCCESS)
        printf("%s failed, Libstatus:%x\n", command.action, status);
    else
        printf("%s\n", command.success);
    return status;
}

void PrintVersion(const char *label, const ZENTREL_SPDM_VERSION &version) {
    printf("%s: SPDM %X.%02X.%02X\r\n", label, version.MajorMinor & 0xFu, version.MajorMinor >> 4, version.Third & 0xFu);
}

}  // namespace

uint32_t GetSpdmInfo(PTR_ZENTREL_DEVICE device, const char *const *, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_SPDM_INFO info = {};
    ZENTREL_STATUS status = ZentrelSwitchGetSPDMInfo(device, &info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Libstatus:%x\n", status);
        return status;
    }
    printf("\nSecurity Protocol Details:\n");
    printf("-------------------------\n");
    printf("%s : SPDM - %X.%02X.%02X\n", "Security Protocol", info.Version & 0xFu, info.Version >> 4,
           info.VersionThird & 0xFu);
    printf("%s : %d\n", "Slot Group Count", info.SlotGroupCount);
    printf("%s : %d\n", "Slot Count", info.SlotCount);
    printf("%s : ", "Base Algorithm");
    for (uint32_t bit = 0; bit < kAsymBitsShown; ++bit)
        if (info.BaseAsymAlgo & (1u << bit)) printf("%s\n", BitName(kAsymNames, bit));
    printf("%s : ", "Hash Algorithm");
    for (uint32_t bit = 0; bit < kHashBitsShown; ++bit)
        if (info.BaseHashAlgo & (1u << bit)) printf("%s\n", BitName(kHashNames, bit));
    printf("Slot Status Details:\n");
    printf("--------------------\n");
    for (uint32_t i = 0; i < SlotsHeld(info.SlotCount); ++i) PrintSlot(info.Slots[i]);
    return 0;
}

uint32_t GetSpdmSlotInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    return RunSlotCommand(device, words, SlotAction::kStatus);
}

uint32_t SpdmExportCsr(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    return RunSlotCommand(device, words, SlotAction::kExport);
}

uint32_t SpdmImportCertificate(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    return RunSlotCommand(device, words, SlotAction::kImport);
}

uint32_t SpdmReadCertificate(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    return RunSlotCommand(device, words, SlotAction::kRead);
}

uint32_t SpdmInvalidateSlot(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    return RunSlotCommand(device, words, SlotAction::kInvalidate);
}

uint32_t GetSpdmSecureInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -GetSpdmSecInfo \n");
        return 0;
    }
    uint32_t *filled = static_cast<uint32_t *>(AllocZeroed(sizeof(uint32_t)));
    auto *info = static_cast<PTR_ZENTREL_SWITCH_SPDM_SECURE_INFO>(AllocZeroed(sizeof(ZENTREL_SWITCH_SPDM_SECURE_INFO)));
    if (filled == nullptr || info == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_SPDM_SECURE_INFO\n");
        FreeBuffer(filled);
        FreeBuffer(info);
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchSpdmSecureInfo(device, filled, info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("\n\nZentrelSwitchSpdmSecureInfo Failed.... Status:0x%x\n", status);
        FreeBuffer(filled);
        FreeBuffer(info);
        return 1;
    }
    printf("\r\nSecurity Protocol Details:\r\n-------------------------\r\n");
    PrintVersion("Currrent Security Protocol  ", info->CurrentVersion);
    printf("Slot Group Count   : %d\r\n", info->SlotGroupCount);
    printf("Slot Count         : %d\r\n", info->SlotCount);
    printf("Base Algorithm     : %s\r\n", SingleBitName(kAsymNames, info->BaseAsymAlgo));
    printf("Hash Algorithm     : %s\r\n", SingleBitName(kSecureHashNames, info->BaseHashAlgo));
    printf("\r\nSlot Status Details:\r\n-------------------------\r\n");
    for (uint32_t i = 0; i < SlotsHeld(info->SlotCount); ++i) {
        const ZENTREL_SPDM_SLOT_INFO &slot = info->Slots[i];
        printf("Slot Group No  : %d\r\n", slot.SlotGroup);
        printf("Slot No        : %d\r\n", slot.Slot);
        printf("Is Empty       : %s\r\n", (slot.Flags & ZENTREL_SPDM_SLOT_OCCUPIED) ? "No" : "Yes");
        printf("Sealed         : %s\r\n", (slot.Flags & ZENTREL_SPDM_SLOT_SEALED) ? "Yes" : "No");
        printf("\r\n");
    }
    printf("\r\nSecurity Protocol Supported List:\r\n-------------------------\r\n");
    // The record has room for five versions; a larger count shows those.
    uint32_t versions = info->VersionCount < ZENTREL_SPDM_MAX_VERSIONS ? info->VersionCount : ZENTREL_SPDM_MAX_VERSIONS;
    for (uint32_t k = 0; k < versions; ++k)
        PrintVersion("Security Protocol ", info->SupportedVersions[k]);
    FreeBuffer(filled);
    FreeBuffer(info);
    printf("\r\n");
    return 0;
}
