// Installing, reading and removing a debug token (-EnableDebugToken,
// -GetDebugToken, -DisableDebugToken; menu 104, 106, 105), the parameters
// a token must be made for (-GetDebugTokenParmas, menu 119) and the debug
// ports the switch allows now (-GetDebugPortCap, menu 115).
#include <cstdio>
#include <cstring>

#include "debugtoken.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

namespace {

constexpr size_t kPathSize = 1024;

struct ClaimRow {
    int32_t key;
    const char *name;
};

// Several names end in a blank, which the aligned display keeps.
const ClaimRow kClaimNames[] = {
    {ZENTREL_CLAIM_PERSIST, "Persist"},
    {ZENTREL_CLAIM_EXP_LIMIT, "Exp Limit"},
    {ZENTREL_CLAIM_SERIAL_DEBUG, "Serial Debug "},
    {ZENTREL_CLAIM_NS_JTAG, "Ns Jtag "},
    {ZENTREL_CLAIM_I2C, "I2Cs "},
    {ZENTREL_CLAIM_DIAG_RW, "DiagRw "},
    {ZENTREL_CLAIM_HW_ANALYSIS, "HW Kavril "},
    {ZENTREL_CLAIM_PCIE_ANALYSER, "HW Pea "},
    {ZENTREL_CLAIM_FWCLI_ACCESS, "FwCli-Access"},
    {ZENTREL_CLAIM_NS_REG_RW, "RWNonSecReg"},
};

const char *const kFwCliNames[] = {"default", "restricted", "full_access", "output_only"};

// Labels of the hardware debug port bits, from bit 0; the spelling and the
// uneven blanks are the tool's own.
const char *const kPortLabels[ZENTREL_DEBUG_PORT_BITS] = {
    "MDIO port enable ",
    "SRK JTAG Port enable ",
    "Manufacturing JTAG port enable  ",
    "Serial Debug port enable ",
    "I2C Slave port enable ",
    "PCIe Diagnostic port enable ",
    "MCPU Debug enable ",
    "MCPU Non Invasive Debug enable  ",
    "MCPU Secure priviledged Invasive Debug enable  ",
    "MCPU Secure priviledged Non invasive debug enable  ",
    "CoreSight Debug enable ",
    "CoreSight Non Invasive Debug enable  ",
    "CoreSight Secure priviledged Invasive Debug enable  ",
    "CoreSight Secure priviledged Non invasive Debug enable ",
    "CoreSight device enable ",
    "Diag HW Global Test Mux enable ",
    "Diag HW Trace buffer enable ",
    "Diag HW M0 enable ",
};

void PrintClaim(uint32_t index, const ZENTREL_DEBUG_TOKEN_CLAIM &claim) {
    const char *name = Shown(ClaimName(claim.Key));
    if (claim.Key != ZENTREL_CLAIM_FWCLI_ACCESS) {
        printf("Claim:%d. %15s (%d) : %d\n", static_cast<int>(index), name, claim.Key, static_cast<int>(claim.Value));
        return;
    }
    // An access value out of range ends no line; the next claim goes on it.
    printf("Claim:%d. %15s (%d) : ", static_cast<int>(index), name, claim.Key);
    if (claim.Value < sizeof kFwCliNames / sizeof kFwCliNames[0]) printf("%s\n", kFwCliNames[claim.Value]);
}

}  // namespace

const char *ClaimName(int32_t key) {
    for (const ClaimRow &row : kClaimNames)
        if (row.key == key) return row.name;
    return nullptr;
}

uint32_t EnableDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    char typed[kPathSize] = {};
    const char *path = typed;
    if (words != nullptr) {
        const char *flag = WordAt(words, 0);
        path = WordAt(words, 1);
        if (flag == nullptr || strcmp(flag, "-f") != 0 || path == nullptr) {
            printf("Usage : ./zentrelLibTest -i 0 -EnableDebugToken -f cwtcborfile\n");
            return 1;
        }
    } else {
        printf("Input CBOR file:");
        ScanWord(typed, sizeof typed);
    }
    printf("cwtcborfile:%s\n", path);
    // The token buffer stays with the library, as it always has.
    uint8_t *token = nullptr;
    uint32_t length = 0;
    if (ReadWholeFile(path, &token, &length) != 0) {
        printf("Firmware file read error.\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchEnableDebugToken(device, token, length);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    return 0;
}

uint32_t GetDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage : zentrelLibTest -i 0 -GetDebugToken \n");
        return 0;
    }
    auto *claims = static_cast<PTR_ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS>(AllocZeroed(sizeof(ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS)));
    if (claims == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS\n");
        return 1;
    }
    uint32_t filled = 0;
    ZENTREL_STATUS status = ZentrelSwitchGetDebugToken(device, &filled, claims);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        FreeBuffer(claims);
        return 1;
    }
    printf("NumClaims:%d\n", claims->NumClaims);
    // The buffer holds 121 claims; a larger count shows those.
    uint32_t shown = claims->NumClaims < ZENTREL_DEBUG_TOKEN_MAX_CLAIMS ? claims->NumClaims : ZENTREL_DEBUG_TOKEN_MAX_CLAIMS;
    for (uint32_t i = 0; i < shown; ++i) PrintClaim(i, claims->Claims[i]);
    FreeBuffer(claims);
    return 0;
}

uint32_t DisableDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage : zentrelLibTest -i 0 -DisableDebugToken \n");
        return 0;
    }
    ZENTREL_STATUS status = ZentrelSwitchDisableDebugToken(device);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    return 0;
}

// Takes no words, not even -h.
uint32_t GetDebugTokenParams(PTR_ZENTREL_DEVICE device, const char *const *, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS params = {};
    uint32_t filled = 0;
    ZENTREL_STATUS status = ZentrelSwitchGetDebugTokenParams(device, &filled, &params);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("CtiLsb %u\n", params.CtiLsb);
    printf("CtiMsb %u\n", params.CtiMsb);
    printf("DebugAuthId : ");
    for (uint8_t byte : params.DebugAuthId) printf("0x%x", byte);
    printf("\n");
    return 0;
}

uint32_t GetDebugPortCap(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage : zentrelLibTest -i 0 -GetDebugPortCap \n");
        return 0;
    }
    // Never released, as the tool has always done.
    auto *caps = static_cast<PTR_ZENTREL_SWITCH_DEBUG_PORT_CAP>(AllocZeroed(sizeof(ZENTREL_SWITCH_DEBUG_PORT_CAP)));
    if (caps == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_DEBUG_PORT_CAP\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchDebugPortCap(device, caps);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("SMAPI HW Debug Ports                       :\n");
    for (uint32_t bit = 0; bit < ZENTREL_DEBUG_PORT_BITS; ++bit)
        printf("\t\t%s: %d\n", kPortLabels[bit], static_cast<int>((caps->HwDebugPorts >> bit) & 1u));
    printf("SMAPI CLI Access Mode                      : 0x%x\n", caps->CliAccessMode);
    printf("SMAPI Performance Impact Category          : 0x%x\n", caps->PerformanceImpact);
    printf("SMAPI System Service Interruption Category : 0x%x\n", caps->ServiceInterruption);
    printf("SMAPI Switch Management Category           : 0x%x\n", caps->SwitchManagement);
    printf("SMAPI Platform Diagnostic category         : 0x%x\n", caps->PlatformDiagnostic);
    printf("SMAPI Debug Telemetry category             : 0x%x\n", caps->DebugTelemetry);
    return 0;
}
