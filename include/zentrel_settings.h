/*
 * Library and device settings: temperature, versions, manufacturing and
 * wafer information, switch time, library, out-of-band and time-out
 * parameters.
 */
#ifndef ZENTREL_SETTINGS_H
#define ZENTREL_SETTINGS_H

#include "zentrel_types.h"

/* Manufacturing information of a switch. The text fields are padded to
 * their width and carry no terminator when the text fills them. */
typedef struct ZENTREL_SWITCH_MFG_INFO {
    uint8_t Security;        /* bit 0: the chip is secure; bits 1-7: its secure version number */
    uint8_t ChipRevision;
    uint16_t ChipId;
    uint16_t ChipType;
    uint16_t NumberOfLanes;
    uint8_t Reserved8[4];
    char VendorId[8];
    char ProductId[16];
    char ProductRevision[4];
    uint8_t Reserved40[8];
    uint8_t MfgRevision[4];  /* four parts, in printing order */
    uint8_t FwVersion[4];    /* the associated firmware version, in printing order */
} ZENTREL_SWITCH_MFG_INFO, *PTR_ZENTREL_SWITCH_MFG_INFO;

#define ZENTREL_MFG_SECURE 0x01u

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_MFG_INFO, 56);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, Security, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, ChipRevision, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, ChipId, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, ChipType, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, NumberOfLanes, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, VendorId, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, ProductId, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, ProductRevision, 36);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, MfgRevision, 48);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_MFG_INFO, FwVersion, 52);

/* Filled by ZentrelSwitchGetSBRVersion: the versions of the default and of
 * the device specific boot-ROM (SBR) region, most significant byte first. */
typedef struct ZENTREL_SWITCH_SBR_VERSION {
    uint32_t Version;       /* default SBR */
    uint32_t DeviceVersion; /* device specific SBR */
} ZENTREL_SWITCH_SBR_VERSION, *PTR_ZENTREL_SWITCH_SBR_VERSION;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SBR_VERSION, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_VERSION, Version, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SBR_VERSION, DeviceVersion, 4);

/* Where the switch's die was made. The texts need not be terminated. */
typedef struct ZENTREL_SWITCH_WAFER_INFO {
    uint8_t Reserved0[4];
    char FabDesignation;
    uint8_t Reserved5[7];
    char FabDescription[8];
    char LotDesignation;
    char LotNumber[11];      /* ASCII */
    uint8_t WaferNumber;
    uint8_t XCoord;          /* of the die on the wafer */
    uint8_t YCoord;
    uint8_t Initialized;
} ZENTREL_SWITCH_WAFER_INFO, *PTR_ZENTREL_SWITCH_WAFER_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_WAFER_INFO, 36);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, FabDesignation, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, FabDescription, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, LotDesignation, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, LotNumber, 21);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, WaferNumber, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, XCoord, 33);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, YCoord, 34);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_WAFER_INFO, Initialized, 35);

/* Read by ZentrelSwitchSetTime. The time zone is cut to 8 bytes; the
 * reserved bytes after it stay zero, so it is always terminated. */
typedef struct ZENTREL_SWITCH_TIME_REQ {
    uint32_t NewTimeLow;
    uint32_t NewTimeHigh;
    uint32_t IssuerID;              /* who sets the time, 0 to 3 */
    uint32_t HoldTimeSyncDuration;
    char Tz[8];
    uint8_t Reserved24[4];
} ZENTREL_SWITCH_TIME_REQ, *PTR_ZENTREL_SWITCH_TIME_REQ;

#define ZENTREL_TIME_ISSUER_MAX 3u

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TIME_REQ, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_REQ, NewTimeLow, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_REQ, NewTimeHigh, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_REQ, IssuerID, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_REQ, HoldTimeSyncDuration, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_REQ, Tz, 16);

/* Written by ZentrelSwitchSetTime. */
typedef struct ZENTREL_SWITCH_TIME_RESP {
    uint8_t Reserved0[4];
    uint32_t BlockingIssuerID;
    uint8_t Reserved8[4];
} ZENTREL_SWITCH_TIME_RESP, *PTR_ZENTREL_SWITCH_TIME_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TIME_RESP, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TIME_RESP, BlockingIssuerID, 4);

/* The library's own logging parameters, for the whole library. The path
 * buffer belongs to the caller: 260 bytes when setting, 256 when getting.
 * The library leaves the path null when it logs to the console. */
typedef struct ZENTREL_LIB_PARAMETERS {
    uint8_t DebugLogLevelAll;     /* for all modules */
    uint8_t Reserved1[3];
    uint8_t DebugLogLevelSwitch;  /* for the switch module only */
    uint8_t Reserved5[3];
    uint32_t DebugLogSize;        /* bytes */
    uint32_t DebugLogCount;
    uint32_t DebugLogOverwrite;   /* 0 or non-zero */
    char *DebugLogFilePath;
    uint8_t Reserved24[256];
} ZENTREL_LIB_PARAMETERS, *PTR_ZENTREL_LIB_PARAMETERS;

#define ZENTREL_LIB_PATH_SET_LENGTH 260u
#define ZENTREL_LIB_PATH_GET_LENGTH 256u

ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogLevelAll, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogLevelSwitch, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogSize, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogCount, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogOverwrite, 16);
#if UINTPTR_MAX == 0xFFFFFFFFu
ZENTREL_ASSERT_SIZE(ZENTREL_LIB_PARAMETERS, 280);
ZENTREL_ASSERT_OFFSET(ZENTREL_LIB_PARAMETERS, DebugLogFilePath, 20);
#endif

/* Out-of-band transport time-outs of one switch, as set. */
typedef struct ZENTREL_SWITCH_OOB_PARAMS_REQ {
    uint8_t CmdRespTimeout;       /* seconds */
    uint8_t Reserved1[3];
    uint16_t RespPollInterval;    /* milliseconds */
    uint8_t Reserved6[2];
    uint8_t AbortRespTimeout;     /* seconds */
    uint8_t ResetRespTimeout;     /* seconds */
    uint8_t Reserved10[2];
} ZENTREL_SWITCH_OOB_PARAMS_REQ, *PTR_ZENTREL_SWITCH_OOB_PARAMS_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_OOB_PARAMS_REQ, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_REQ, CmdRespTimeout, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_REQ, RespPollInterval, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_REQ, AbortRespTimeout, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_REQ, ResetRespTimeout, 9);

/* The same time-outs as read back, laid out differently, with the
 * communication mode in front (the library's code for the transport). */
typedef struct ZENTREL_SWITCH_OOB_PARAMS_RESP {
    uint32_t CommMode;
    uint8_t CmdRespTimeout;       /* seconds */
    uint8_t Reserved5[3];
    uint16_t RespPollInterval;    /* milliseconds */
    uint8_t Reserved10[2];
    uint8_t AbortRespTimeout;     /* seconds */
    uint8_t ResetRespTimeout;     /* seconds */
    uint8_t Reserved14[2];
} ZENTREL_SWITCH_OOB_PARAMS_RESP, *PTR_ZENTREL_SWITCH_OOB_PARAMS_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_OOB_PARAMS_RESP, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_RESP, CommMode, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_RESP, CmdRespTimeout, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_RESP, RespPollInterval, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_RESP, AbortRespTimeout, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_OOB_PARAMS_RESP, ResetRespTimeout, 13);

ZENTREL_API ZENTREL_STATUS ZentrelGetTemperature(PTR_ZENTREL_DEVICE Device, uint32_t *Temperature);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetMfgInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_MFG_INFO MfgInfo);
/* Device is the address of a Device handle. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSBRVersion(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_SBR_VERSION Version);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetWaferInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_WAFER_INFO WaferInfo);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetTime(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_TIME_REQ Request,
                                                PTR_ZENTREL_SWITCH_TIME_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params);
ZENTREL_API ZENTREL_STATUS ZentrelGetLibParameters(PTR_ZENTREL_LIB_PARAMETERS Params);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_REQ Params);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetOOBParams(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_OOB_PARAMS_RESP Params);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetAsyncCommandTimeout(PTR_ZENTREL_DEVICE Device, uint32_t Timeout);

/* A data object of the library: the manufacturing information of the
 * switch the library read last. Its vendor id starts with a zero byte
 * while the library holds none. */
ZENTREL_API ZENTREL_SWITCH_MFG_INFO switchMfgInfo_temp;

#endif
