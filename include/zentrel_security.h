/*
 * Security information: SPDM state and certificate slots, secure boot state.
 */
#ifndef ZENTREL_SECURITY_H
#define ZENTREL_SECURITY_H

#include "zentrel_types.h"

/* Room for this many slot entries in the SPDM records. */
#define ZENTREL_SPDM_MAX_SLOTS 8u
/* Supported protocol versions in the SPDM secure information record. */
#define ZENTREL_SPDM_MAX_VERSIONS 5u

/* Flags of a certificate slot. */
#define ZENTREL_SPDM_SLOT_OCCUPIED 0x01u
#define ZENTREL_SPDM_SLOT_SEALED 0x02u

/* One certificate slot as the SPDM records report it. */
typedef struct ZENTREL_SPDM_SLOT_INFO {
    uint8_t Flags; /* ZENTREL_SPDM_SLOT_... */
    uint8_t Reserved1[3];
    uint8_t SlotGroup;
    uint8_t Slot;
    uint8_t Reserved6[2];
} ZENTREL_SPDM_SLOT_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SPDM_SLOT_INFO, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SPDM_SLOT_INFO, Flags, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SPDM_SLOT_INFO, SlotGroup, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SPDM_SLOT_INFO, Slot, 5);

/* Filled by ZentrelSwitchGetSPDMInfo. */
typedef struct ZENTREL_SWITCH_SPDM_INFO {
    uint8_t SlotGroupCount;
    uint8_t SlotCount;
    uint8_t Reserved2[2];
    uint8_t Version;      /* low nibble major, high nibble minor */
    uint8_t VersionThird; /* bits 0..3 */
    uint8_t Reserved6[2];
    uint32_t BaseAsymAlgo; /* bit mask, ZENTREL_SPDM_ASYM_... */
    uint32_t BaseHashAlgo; /* bit mask, ZENTREL_SPDM_HASH_... */
    ZENTREL_SPDM_SLOT_INFO Slots[ZENTREL_SPDM_MAX_SLOTS];
} ZENTREL_SWITCH_SPDM_INFO, *PTR_ZENTREL_SWITCH_SPDM_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SPDM_INFO, 80);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, SlotGroupCount, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, SlotCount, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, Version, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, VersionThird, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, BaseAsymAlgo, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, BaseHashAlgo, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_INFO, Slots, 16);

/* A protocol version: major in the low nibble and minor in the high nibble
 * of the first byte, the third number in the low nibble of the second. */
typedef struct ZENTREL_SPDM_VERSION {
    uint8_t MajorMinor;
    uint8_t Third;
} ZENTREL_SPDM_VERSION;

ZENTREL_ASSERT_SIZE(ZENTREL_SPDM_VERSION, 2);

/* Filled by ZentrelSwitchSpdmSecureInfo. */
typedef struct ZENTREL_SWITCH_SPDM_SECURE_INFO {
    uint8_t SlotGroupCount;
    uint8_t SlotCount;
    uint8_t Reserved2[3];
    uint8_t VersionCount; /* entries of SupportedVersions in use */
    ZENTREL_SPDM_VERSION SupportedVersions[ZENTREL_SPDM_MAX_VERSIONS];
    ZENTREL_SPDM_VERSION CurrentVersion;
    uint8_t Reserved18[2];
    uint32_t BaseAsymAlgo; /* a single ZENTREL_SPDM_ASYM_... bit */
    uint32_t BaseHashAlgo; /* a single ZENTREL_SPDM_HASH_... bit */
    ZENTREL_SPDM_SLOT_INFO Slots[ZENTREL_SPDM_MAX_SLOTS];
} ZENTREL_SWITCH_SPDM_SECURE_INFO, *PTR_ZENTREL_SWITCH_SPDM_SECURE_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SPDM_SECURE_INFO, 92);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, VersionCount, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, SupportedVersions, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, CurrentVersion, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, BaseAsymAlgo, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, BaseHashAlgo, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SPDM_SECURE_INFO, Slots, 28);

/* The SPDM BaseAsymAlgo bits. */
#define ZENTREL_SPDM_ASYM_RSASSA_2048 0x001u
#define ZENTREL_SPDM_ASYM_RSAPSS_2048 0x002u
#define ZENTREL_SPDM_ASYM_RSASSA_3072 0x004u
#define ZENTREL_SPDM_ASYM_RSAPSS_3072 0x008u
#define ZENTREL_SPDM_ASYM_ECDSA_P256 0x010u
#define ZENTREL_SPDM_ASYM_RSASSA_4096 0x020u
#define ZENTREL_SPDM_ASYM_RSAPSS_4096 0x040u
#define ZENTREL_SPDM_ASYM_ECDSA_P384 0x080u
#define ZENTREL_SPDM_ASYM_ECDSA_P521 0x100u

/* The SPDM BaseHashAlgo bits. */
#define ZENTREL_SPDM_HASH_SHA_256 0x01u
#define ZENTREL_SPDM_HASH_SHA_384 0x02u
#define ZENTREL_SPDM_HASH_SHA_512 0x04u
#define ZENTREL_SPDM_HASH_SHA3_256 0x08u
#define ZENTREL_SPDM_HASH_SHA3_384 0x10u
#define ZENTREL_SPDM_HASH_SHA3_512 0x20u

/* Secure boot modes. */
#define ZENTREL_SECURE_BOOT_CONFIG_SECURE 1u
#define ZENTREL_SECURE_BOOT_HARD_SECURE 2u
#define ZENTREL_SECURE_BOOT_SECURE_DEBUG 3u
#define ZENTREL_SECURE_BOOT_INVALID 4u
#define ZENTREL_SECURE_BOOT_TAMPERED 5u

/* Digest and signing algorithm codes. */
#define ZENTREL_SECURE_BOOT_HASH_SHA3_384 0x61u
#define ZENTREL_SECURE_BOOT_HASH_SHA3_512 0x62u
#define ZENTREL_SECURE_BOOT_SIGN_RSA_4K 5u
#define ZENTREL_SECURE_BOOT_SIGN_RSA_3K 6u

#define ZENTREL_SECURE_BOOT_KEY_SLOTS 8u
#define ZENTREL_SECURE_BOOT_DIGEST_WORDS 12u
#define ZENTREL_SECURE_BOOT_PUBLIC_KEY_WORDS 128u

/* Filled by ZentrelSwitchSecureBootInfo. */
typedef struct ZENTREL_SWITCH_SECURE_BOOT_INFO {
    uint8_t Mode;               /* ZENTREL_SECURE_BOOT_... */
    uint8_t Enabled;            /* 1: enabled */
    uint8_t SecurityVersion;
    uint8_t KeySlotsInUse;      /* key digests programmed */
    uint8_t KeySlotsFuture;     /* key slots kept for future use */
    uint8_t KeyDigestHashAlgo;  /* ZENTREL_SECURE_BOOT_HASH_... */
    uint8_t ImageDigestHashAlgo;
    uint8_t ImageSigningAlgo;   /* ZENTREL_SECURE_BOOT_SIGN_... */
    uint32_t PublicKey[ZENTREL_SECURE_BOOT_PUBLIC_KEY_WORDS]; /* the matched public key */
    uint32_t KeyDigests[ZENTREL_SECURE_BOOT_KEY_SLOTS][ZENTREL_SECURE_BOOT_DIGEST_WORDS];
} ZENTREL_SWITCH_SECURE_BOOT_INFO, *PTR_ZENTREL_SWITCH_SECURE_BOOT_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SECURE_BOOT_INFO, 904);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, Mode, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, Enabled, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, SecurityVersion, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, KeySlotsInUse, 3);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, KeySlotsFuture, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, KeyDigestHashAlgo, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, ImageDigestHashAlgo, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, ImageSigningAlgo, 7);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, PublicKey, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SECURE_BOOT_INFO, KeyDigests, 520);

/* Both information calls also fill a u32 with the number of bytes of the
 * record they filled. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSecureBootInfo(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                       PTR_ZENTREL_SWITCH_SECURE_BOOT_INFO Info);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSpdmSecureInfo(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                       PTR_ZENTREL_SWITCH_SPDM_SECURE_INFO Info);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSPDMInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_SPDM_INFO Info);

/* The library reads or writes the named file itself. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSPDMExportCSR(PTR_ZENTREL_DEVICE Device, uint8_t Slot, uint8_t SlotGroup,
                                                      const char *FileName);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSPDMImportCertificate(PTR_ZENTREL_DEVICE Device, uint8_t Slot,
                                                              uint8_t SlotGroup, const char *FileName);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSPDMReadSlotCertificate(PTR_ZENTREL_DEVICE Device, uint8_t Slot,
                                                                uint8_t SlotGroup, const char *FileName);
/* Invalidates the slot's certificate. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSPDMSlotManagement(PTR_ZENTREL_DEVICE Device, uint8_t Slot, uint8_t SlotGroup);

#endif
