/*
 * Secure-debug tokens: building the payload to be signed and the signed
 * token (a CBOR web token in a COSE_Sign1 object), installing, reading and
 * removing a token, and the debug facilities the switch allows.
 */
#ifndef ZENTREL_DEBUGTOKEN_H
#define ZENTREL_DEBUGTOKEN_H

#include "zentrel_types.h"

/* Operations of ZentrelSwitchGenerateDebugToken. */
#define ZENTREL_DEBUG_TOKEN_SIG_STRUCTURE 1u /* write the payload to be signed */
#define ZENTREL_DEBUG_TOKEN_SIGNED_CWT 2u    /* write the token with the signature given */

/* Values of the firmware command-line access claim. */
#define ZENTREL_FWCLI_DEFAULT 0u
#define ZENTREL_FWCLI_RESTRICTED 1u
#define ZENTREL_FWCLI_FULL_ACCESS 2u
#define ZENTREL_FWCLI_OUTPUT_ONLY 3u

/* The library writes the payload and the signed token into this file of the
 * working directory. */
#define ZENTREL_DEBUG_TOKEN_FILE "corvanecwt.cbor"

#define ZENTREL_DEBUG_AUTH_ID_BYTES 64u

/* Read by ZentrelSwitchGenerateDebugToken. The caller zeroes the token
 * identity; the library fills it with the switch's in the payload operation,
 * so that the signed operation repeats the payload exactly. */
typedef struct ZENTREL_SWITCH_DEBUG_TOKEN_REQ {
    uint32_t CtiLsb; /* the token identity (CWT ID), low and high words */
    uint32_t CtiMsb;
    uint8_t DebugAuthId[ZENTREL_DEBUG_AUTH_ID_BYTES];
    uint32_t Operation;       /* ZENTREL_DEBUG_TOKEN_... */
    uint32_t AlgorithmId;     /* COSE algorithm of the signature */
    uint32_t ExpirationLimit; /* minutes */
    uint8_t Persist;          /* 1: the token survives a power cycle */
    uint8_t SerialDebug;
    uint8_t NsJtag;
    uint8_t HwI2c;
    uint8_t DiagReadWrite;
    uint8_t HwAnalysis;      /* Kavril+ hardware analysis */
    uint8_t PcieAnalyser;    /* PCIe embedded analyser */
    uint8_t NsRegReadWrite;  /* non-secure register read/write */
    uint32_t FwCliAccess;    /* ZENTREL_FWCLI_... */
    uint8_t *Signature;      /* the signed operation: the external signature */
    uint32_t SignatureLength;
} ZENTREL_SWITCH_DEBUG_TOKEN_REQ, *PTR_ZENTREL_SWITCH_DEBUG_TOKEN_REQ;

/* The claims of a request, as kept between the two operations: the record
 * up to its signature. */
#define ZENTREL_DEBUG_TOKEN_CLAIM_BYTES 104u

ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, CtiMsb, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, DebugAuthId, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, Operation, 72);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, AlgorithmId, 76);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, ExpirationLimit, 80);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, Persist, 84);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, NsRegReadWrite, 91);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, FwCliAccess, 92);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, Signature, 96);
#if UINTPTR_MAX == 0xFFFFFFFFu
ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, 104);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, SignatureLength, 100);
#endif

/* Claim keys of a debug token. */
#define ZENTREL_CLAIM_PERSIST (-67001)
#define ZENTREL_CLAIM_EXP_LIMIT (-67002)
#define ZENTREL_CLAIM_SERIAL_DEBUG (-68000)
#define ZENTREL_CLAIM_NS_JTAG (-68001)
#define ZENTREL_CLAIM_I2C (-68002)
#define ZENTREL_CLAIM_DIAG_RW (-68003)
#define ZENTREL_CLAIM_HW_ANALYSIS (-68004)
#define ZENTREL_CLAIM_PCIE_ANALYSER (-68005)
#define ZENTREL_CLAIM_FWCLI_ACCESS (-68100)
#define ZENTREL_CLAIM_NS_REG_RW (-68200)

typedef struct ZENTREL_DEBUG_TOKEN_CLAIM {
    int32_t Key; /* ZENTREL_CLAIM_... */
    uint32_t Value;
} ZENTREL_DEBUG_TOKEN_CLAIM;

ZENTREL_ASSERT_SIZE(ZENTREL_DEBUG_TOKEN_CLAIM, 8);

#define ZENTREL_DEBUG_TOKEN_MAX_CLAIMS 121u

/* Filled by ZentrelSwitchGetDebugToken: the claims of the installed token. */
typedef struct ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS {
    uint16_t Reserved0;
    uint16_t NumClaims;
    ZENTREL_DEBUG_TOKEN_CLAIM Claims[ZENTREL_DEBUG_TOKEN_MAX_CLAIMS];
} ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS, *PTR_ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS, 972);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS, NumClaims, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS, Claims, 4);

/* Filled by ZentrelSwitchGetDebugTokenParams: what a token for this switch
 * must carry. */
typedef struct ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS {
    uint32_t Reserved0;
    uint32_t CtiLsb;
    uint32_t CtiMsb;
    uint8_t DebugAuthId[ZENTREL_DEBUG_AUTH_ID_BYTES];
} ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS, *PTR_ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS, 76);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS, CtiLsb, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS, CtiMsb, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS, DebugAuthId, 12);

/* Hardware debug port bits of ZENTREL_SWITCH_DEBUG_PORT_CAP.HwDebugPorts. */
#define ZENTREL_DEBUG_PORT_BITS 18u

/* Filled by ZentrelSwitchDebugPortCap: the debug ports and the management
 * categories the switch allows now. */
typedef struct ZENTREL_SWITCH_DEBUG_PORT_CAP {
    uint32_t Reserved0[2];
    uint32_t HwDebugPorts; /* bit per port, from bit 0 */
    uint32_t CliAccessMode;
    uint32_t PerformanceImpact;
    uint32_t ServiceInterruption;
    uint32_t SwitchManagement;
    uint32_t PlatformDiagnostic;
    uint32_t DebugTelemetry;
} ZENTREL_SWITCH_DEBUG_PORT_CAP, *PTR_ZENTREL_SWITCH_DEBUG_PORT_CAP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_DEBUG_PORT_CAP, 36);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_PORT_CAP, HwDebugPorts, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_PORT_CAP, CliAccessMode, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_DEBUG_PORT_CAP, DebugTelemetry, 32);

/* Writes ZENTREL_DEBUG_TOKEN_FILE. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGenerateDebugToken(PTR_ZENTREL_DEVICE Device,
                                                           PTR_ZENTREL_SWITCH_DEBUG_TOKEN_REQ Request);
/* Installs a signed token (the bytes of a COSE_Sign1 object). */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchEnableDebugToken(PTR_ZENTREL_DEVICE Device, const uint8_t *Token,
                                                         uint32_t Length);
/* *Filled: the bytes of *Claims the library filled. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetDebugToken(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                      PTR_ZENTREL_SWITCH_DEBUG_TOKEN_CLAIMS Claims);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDisableDebugToken(PTR_ZENTREL_DEVICE Device);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetDebugTokenParams(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                            PTR_ZENTREL_SWITCH_DEBUG_TOKEN_PARAMS Params);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchDebugPortCap(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_DEBUG_PORT_CAP Caps);

#endif
