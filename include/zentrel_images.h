/*
 * Firmware and image transfer: firmware and PLDM package downloads, the SBR
 * regions, the unit specific data region and the manufacturing
 * configuration page.
 */
#ifndef ZENTREL_IMAGES_H
#define ZENTREL_IMAGES_H

#include "zentrel_types.h"

/* Read by ZentrelSwitchDownloadPldmFirmware, next to the image and length
 * it is also given. */
typedef struct ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ {
    uint32_t Reserved0;
    uint32_t Reserved4;
    uint32_t Reserved8;
    uint8_t *Image;       /* the whole package */
    uint32_t ImageLength; /* bytes */
} ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, *PTR_ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ;

#if UINTPTR_MAX == 0xFFFFFFFFu
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Reserved0, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Reserved4, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Reserved8, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Image, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, ImageLength, 16);
#endif

/* Operations of ZentrelSwitchSBRMFGConfiguration. */
#define ZENTREL_SBR_MFG_CFG_SET 0u
#define ZENTREL_SBR_MFG_CFG_GET 1u
/* The highest configuration number a set may name. */
#define ZENTREL_SBR_MFG_CFG_LAST 5u

/* Read by ZentrelSwitchSBRMFGConfiguration; the library fills the u32s
 * that the pointers name. */
typedef struct ZENTREL_SWITCH_SBR_MFG_CFG_REQ {
    uint8_t Operation;        /* ZENTREL_SBR_MFG_CFG_... */
    uint8_t Configuration;    /* set: the configuration to select */
    uint8_t Reserved2[2];
    uint32_t *SelectionMethod; /* get */
    uint32_t *Selected;        /* get and set */
    uint32_t *Supported;       /* get: how many configurations there are */
} ZENTREL_SWITCH_SBR_MFG_CFG_REQ, *PTR_ZENTREL_SWITCH_SBR_MFG_CFG_REQ;

ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Operation, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Configuration, 1);
#if UINTPTR_MAX == 0xFFFFFFFFu
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, SelectionMethod, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Selected, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Supported, 12);
#endif

/* The unit specific data region holds at most this many bytes. */
#define ZENTREL_USD_REGION_MAX 0x40000u

/* The three zero arguments of the firmware download are passed as zero. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDownloadFirmware(PTR_ZENTREL_DEVICE Device, uint32_t Reserved1,
                                                         uint32_t Reserved2, uint32_t Reserved3, uint8_t *Image,
                                                         uint32_t ImageLength);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDownloadPldmFirmware(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ Request,
                                                             uint8_t *Image, uint32_t ImageLength);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSBRMFGConfiguration(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_SBR_MFG_CFG_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDownloadUnitSpecificData(PTR_ZENTREL_DEVICE Device, uint8_t *Image,
                                                                 uint32_t ImageLength);
/* With a null buffer it only reports the region's size in *Size; with a
 * buffer it copies *Size bytes of the region into it. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchUploadUnitSpecificData(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                               uint32_t *Size);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDownloadMfgCfgPage(PTR_ZENTREL_DEVICE Device, uint8_t *Image,
                                                           uint32_t ImageLength);

#endif
