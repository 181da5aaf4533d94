// What the switch says of itself: versions, manufacturing and wafer data.
#include <cstdio>
#include <cstring>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "settings.h"

uint32_t GetVersions(PTR_ZENTREL_DEVICE, const char *const *, PTR_ZENTREL_DEVICE_INFO info) {
    printf("FW Version = %d.%d.%d.%d\r\n", static_cast<int>(VersionByte(info->FwVersion, 0)),
           static_cast<int>(VersionByte(info->FwVersion, 1)), static_cast<int>(VersionByte(info->FwVersion, 2)),
           static_cast<int>(VersionByte(info->FwVersion, 3)));
    auto *sbr = static_cast<PTR_ZENTREL_SWITCH_SBR_VERSION>(AllocZeroed(sizeof(ZENTREL_SWITCH_SBR_VERSION)));
    if (sbr == nullptr) {
        printf("Unable to allocate buffer for SBR version\n");
        return 0;
    }
    // The library fills this record whenever it reads a switch's
    // manufacturing information; it may be of another switch than this one.
    const ZENTREL_SWITCH_MFG_INFO &cached = switchMfgInfo_temp;
    if (cached.VendorId[0] != '\0') {
        FieldText vendor(cached.VendorId);
        FieldText product(cached.ProductId);
        printf("Vendor Id    : %s\n", vendor.text);
        printf("Product Id   : %s\n", product.text);
        printf("Mfg Revision : %d.%d.%d.%d \n", cached.MfgRevision[0], cached.MfgRevision[1], cached.MfgRevision[2],
               cached.MfgRevision[3]);
        // The boot ROM is asked by the process-wide handle, not the context.
        if (ZentrelSwitchGetSBRVersion(&gSelectedDeviceHandle, sbr) == ZENTREL_STATUS_SUCCESS)
            printf("SBR Version  : %u.%u.%u.%u\n", VersionByte(sbr->Version, 0), VersionByte(sbr->Version, 1),
                   VersionByte(sbr->Version, 2), VersionByte(sbr->Version, 3));
    } else {
        printf("unsupported manufacturing Info");
    }
    FreeBuffer(sbr);
    return 0;
}

uint32_t GetMfgInfo(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_MFG_INFO mfg;
    memset(&mfg, 0, sizeof mfg);
    ZENTREL_STATUS status = ZentrelSwitchGetMfgInfo(device, &mfg);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the manufacturing Info status:0x%x", status);
        return status;
    }
    printf("Switch Manufacturing information:\n");
    FieldText vendor(mfg.VendorId);
    FieldText product(mfg.ProductId);
    FieldText revision(mfg.ProductRevision);
    printf("Vendor Id                  : %s\n", vendor.text);
    printf("Product Id                 : %s\n", product.text);
    printf("Product Revision           : %s\n", revision.text);
    printf("Number of Lanes            : 0x%x\n", mfg.NumberOfLanes);
    printf("Chip Id                    : 0x%x\n", mfg.ChipId);
    printf("Chip Rev                   : 0x%x\n", mfg.ChipRevision);
    printf("Chip Type                  : 0x%x\n", mfg.ChipType);
    printf("Chip Secure Status         : %s\n", (mfg.Security & ZENTREL_MFG_SECURE) != 0 ? "Secure" : "Non-Secure");
    printf("Chip Secure Version Number : 0x%x\n", mfg.Security >> 1);
    printf("Associated FW ver          : %d.%d.%d.%d \n", mfg.FwVersion[0], mfg.FwVersion[1], mfg.FwVersion[2],
           mfg.FwVersion[3]);
    printf("Mfg Revision               : %d.%d.%d.%d \n", mfg.MfgRevision[0], mfg.MfgRevision[1], mfg.MfgRevision[2],
           mfg.MfgRevision[3]);
    return 0;
}

uint32_t GetWaferInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -GetWaferInfo\n");
        return 0;
    }
    auto *wafer = static_cast<PTR_ZENTREL_SWITCH_WAFER_INFO>(AllocZeroed(sizeof(ZENTREL_SWITCH_WAFER_INFO)));
    if (wafer == nullptr) {
        printf("Unable to allocate buffer for switch Wafer Info structure...\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetWaferInfo(device, wafer);
    if (status == ZENTREL_STATUS_SUCCESS) {
        FieldText fab(wafer->FabDescription);
        FieldText lot(wafer->LotNumber);
        printf("FabDesignation                    : %c\n", wafer->FabDesignation);
        printf("FabDescription                    : %s\n", fab.text);
        printf("LotDesignation                    : %c\n", wafer->LotDesignation);
        printf("LotNumber(ascii)                  : %s\n", lot.text);
        printf("WaferNumber                       : 0x%x\n", wafer->WaferNumber);
        printf("XCoord                            : 0x%x\n", wafer->XCoord);
        printf("YCoord                            : 0x%x\n", wafer->YCoord);
        printf("Initialized                       : 0x%x\n", wafer->Initialized);
    } else {
        printf("Failed to get the Wafer Information\n");
    }
    FreeBuffer(wafer);
    return 0;
}
