// Boot-time CCR state, power-on sense straps and the CCR system error
// status register, decoded name by name and bit by bit.
#include <cstdio>

#include "frontend/helpers.h"
#include "status.h"

namespace {

const char kUnknownCode[] = "ERROR!";

// Name of a code from a table indexed by code; codes without a name
// (outside the table, or a null entry in it) print as an error.
template <size_t N>
const char *CodeName(const char *const (&names)[N], uint32_t code) {
    if (code >= N || names[code] == nullptr) return kUnknownCode;
    return names[code];
}

const char *const kBootLocationNames[] = {
    nullptr,
    "SBL_HW_BOOT_LOC_0000_0400",
    "SBL_HW_BOOT_LOC_0004_0400",
    "SBL_HW_BOOT_LOC_0008_0400",
    "SBL_HW_BOOT_LOC_000C_0400",
    "SBL_HW_BOOT_LOC_0010_0400",
};

const char *const kBootStatusNames[] = {
    nullptr,
    "SBL_HW_STAT_CHECKSUM_PASS",
    "SBL_HW_STAT_CHECKSUM_FAIL",
    "SBL_HW_STAT_SIG_FAIL",
    "SBL_HW_STAT_BOOT_LOADING",
    "SBL_HW_STAT_BOOT_DISABLED",
};

const char *const kChipSelectNames[] = {
    "SPI_FLASH_CS_N",
    "SPI_CS_N[0]",
};

const char *const kBaudRateNames[] = {
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    "ZENTREL_BAUD_RATE_19200",
    nullptr, nullptr,
    "ZENTREL_BAUD_RATE_115200",
};

// Code 4 is not a lane count the switch can be strapped to.
const char *const kLaneCountNames[] = {
    nullptr,
    "SBL_HW_ENABLE_LANE_NUM_96",
    "SBL_HW_ENABLE_LANE_NUM_80",
    "SBL_HW_ENABLE_LANE_NUM_64",
    nullptr,
    "SBL_HW_ENABLE_LANE_NUM_48",
    "SBL_HW_ENABLE_LANE_NUM_32",
    "SBL_HW_ENABLE_LANE_NUM_24",
};

const char *const kLinkSpeedNames[] = {
    nullptr,
    "PCI_DEVICE_LINK_SPEED_GEN_1",
    "PCI_DEVICE_LINK_SPEED_GEN_2",
    "PCI_DEVICE_LINK_SPEED_GEN_3",
    "PCI_DEVICE_LINK_SPEED_GEN_4",
    "PCI_DEVICE_LINK_SPEED_GEN_5",
};

// One shown bit of the system error register; the label is printed
// followed by the bit as 0 or 1. The tabs in the labels are the register
// listing's own.
struct ErrorBit {
    uint8_t byte;
    uint8_t bit;
    const char *label;
};

// After the first line (bit 0 of byte 0, shown as Yes/No). The last line
// shows bit 6 of byte 0 again: the Psb station has no bit of its own.
const ErrorBit kErrorBits[] = {
    {0, 1, "Vrx Fatal Error Status\t\t                   : "},
    {0, 4, "POR BISR Time out Status                      : "},
    {0, 5, "ARMFlashSignatureFail Status\t               : "},
    {0, 6, "WatchDog0CPUcoreRst Status\t\t\t           : "},
    {0, 7, "WatchDog0SysRst Status\t\t\t               : "},
    {1, 0, "WatchDog1CPUcoreRst Status\t\t\t           : "},
    {1, 1, "WatchDog1SysRst Status  \t\t\t           : "},
    {1, 7, "Local CPU parity error Status\t\t           : "},
    {2, 0, "Secure Boot Fail Status\t\t\t           : "},
    {2, 2, "SBR load fail Status   \t\t\t           : "},
    {2, 4, "station0 current fatal error output status\t   : "},
    {2, 5, "station1 current fatal error output status    : "},
    {2, 6, "station2 current fatal error output status    : "},
    {2, 7, "station3 current fatal error output status    : "},
    {3, 0, "station4 current fatal error output status    : "},
    {3, 1, "station5 current fatal error output status\t   : "},
    {3, 2, "station6 current fatal error output status\t   : "},
    {3, 3, "station7 current fatal error output status    : "},
    {3, 4, "station8 current fatal error output status\t   : "},
    {0, 6, "Psb station current fatal error output status : "},
};

int BitOf(uint32_t value, unsigned byte, unsigned bit) {
    return static_cast<int>((value >> (8 * byte + bit)) & 1u);
}

}  // namespace

uint32_t GetCcrStatus(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -getccr\n");
        return 0;
    }
    auto *ccr = static_cast<PTR_ZENTREL_SWITCH_CCR_STATUS>(AllocZeroed(sizeof(ZENTREL_SWITCH_CCR_STATUS)));
    if (ccr == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetCcrStatus(device, ccr);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("zntrlSwitchCCRStatus test failed with status %x\n", status);
        FreeBuffer(ccr);
        return 1;
    }
    printf("---- CCR Status ----\n");
    printf("S0PcePerstN = %d\n", static_cast<int>(ccr->S0PcePerstN));
    printf("S1PcePerstN = %d\n", static_cast<int>(ccr->S1PcePerstN));
    printf("S2PcePerstN = %d\n", static_cast<int>(ccr->S2PcePerstN));
    printf("S3PcePerstN = %d\n", static_cast<int>(ccr->S3PcePerstN));
    printf("SBLHwBootLoc = %s\n", CodeName(kBootLocationNames, ccr->SblHwBootLoc));
    printf("SBLHWStat = %s\n", CodeName(kBootStatusNames, ccr->SblHwStat));
    printf("PCDValid = %d\n", static_cast<int>(ccr->PcdValid));
    FreeBuffer(ccr);
    return 0;
}

uint32_t GetPowerOnSense(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -getpos\n");
        return 0;
    }
    auto *sense =
        static_cast<PTR_ZENTREL_SWITCH_POWER_ON_SENSE>(AllocZeroed(sizeof(ZENTREL_SWITCH_POWER_ON_SENSE)));
    if (sense == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetPowerOnSense(device, sense);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("zntrlSwitchPowerOnSense test failed with status %x\n", status);
        FreeBuffer(sense);
        return 1;
    }
    printf("---- Power On Sense ----\n");
    printf("SBRCsSel = %s\n", CodeName(kChipSelectNames, sense->SbrCsSel));
    printf("SBLDisable = %d\n", static_cast<int>(sense->SblDisable));
    printf("SdbBaudRate = %s\n", CodeName(kBaudRateNames, sense->SdbBaudRate));
    printf("EnableLaneNumber = %s\n", CodeName(kLaneCountNames, sense->EnableLaneNumber));
    printf("MaxLinkSpeed = %s\n", CodeName(kLinkSpeedNames, sense->MaxLinkSpeed));
    FreeBuffer(sense);
    return 0;
}

uint32_t GetSysErrStatus(PTR_ZENTREL_DEVICE device) {
    uint32_t reg = 0;
    ZENTREL_STATUS status = ZentrelSwitchGetSysErrStatus(device, &reg);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the CCR Sys Error status:0x%x", status);
        return status;
    }
    printf("CCR System Error Status register:\n");
    printf("System Error detected                         : %s\n", BitOf(reg, 0, 0) ? "Yes" : "No");
    for (const ErrorBit &line : kErrorBits) printf("%s%d\n", line.label, BitOf(reg, line.byte, line.bit));
    return status;
}
