/*
 * Switch health and status: status registers, GPIO, health configuration
 * and the tag scoreboard time-out.
 */
#ifndef ZENTREL_STATUS_H
#define ZENTREL_STATUS_H

#include "zentrel_types.h"

/* Boot-time CCR state, filled by ZentrelSwitchGetCcrStatus. */
typedef struct ZENTREL_SWITCH_CCR_STATUS {
    uint32_t S0PcePerstN; /* PERST# of stations 0 to 3 */
    uint32_t S1PcePerstN;
    uint32_t S2PcePerstN;
    uint32_t S3PcePerstN;
    uint32_t SblHwBootLoc; /* ZENTREL_SBL_HW_BOOT_LOC_... */
    uint32_t SblHwStat;    /* ZENTREL_SBL_HW_STAT_... */
    uint32_t PcdValid;
} ZENTREL_SWITCH_CCR_STATUS, *PTR_ZENTREL_SWITCH_CCR_STATUS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_CCR_STATUS, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, S0PcePerstN, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, S1PcePerstN, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, S2PcePerstN, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, S3PcePerstN, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, SblHwBootLoc, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, SblHwStat, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CCR_STATUS, PcdValid, 24);

/* Boot loader image location (SblHwBootLoc). */
#define ZENTREL_SBL_HW_BOOT_LOC_0000_0400 1u
#define ZENTREL_SBL_HW_BOOT_LOC_0004_0400 2u
#define ZENTREL_SBL_HW_BOOT_LOC_0008_0400 3u
#define ZENTREL_SBL_HW_BOOT_LOC_000C_0400 4u
#define ZENTREL_SBL_HW_BOOT_LOC_0010_0400 5u

/* Boot loader hardware status (SblHwStat). */
#define ZENTREL_SBL_HW_STAT_CHECKSUM_PASS 1u
#define ZENTREL_SBL_HW_STAT_CHECKSUM_FAIL 2u
#define ZENTREL_SBL_HW_STAT_SIG_FAIL 3u
#define ZENTREL_SBL_HW_STAT_BOOT_LOADING 4u
#define ZENTREL_SBL_HW_STAT_BOOT_DISABLED 5u

/* Straps sensed at power-on, filled by ZentrelSwitchGetPowerOnSense. */
typedef struct ZENTREL_SWITCH_POWER_ON_SENSE {
    uint32_t SbrCsSel;         /* 0 SPI_FLASH_CS_N, 1 SPI_CS_N[0] */
    uint32_t SblDisable;
    uint32_t SdbBaudRate;      /* ZENTREL_BAUD_RATE_... */
    uint32_t EnableLaneNumber; /* ZENTREL_ENABLE_LANE_NUM_...; 4 is not used */
    uint32_t MaxLinkSpeed;     /* 1 to 5: generation 1 to 5 */
} ZENTREL_SWITCH_POWER_ON_SENSE, *PTR_ZENTREL_SWITCH_POWER_ON_SENSE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_POWER_ON_SENSE, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_POWER_ON_SENSE, SbrCsSel, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_POWER_ON_SENSE, SblDisable, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_POWER_ON_SENSE, SdbBaudRate, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_POWER_ON_SENSE, EnableLaneNumber, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_POWER_ON_SENSE, MaxLinkSpeed, 16);

#define ZENTREL_SBR_CS_SEL_SPI_FLASH_CS_N 0u
#define ZENTREL_SBR_CS_SEL_SPI_CS_N0 1u
#define ZENTREL_BAUD_RATE_19200 9u
#define ZENTREL_BAUD_RATE_115200 12u
#define ZENTREL_ENABLE_LANE_NUM_96 1u
#define ZENTREL_ENABLE_LANE_NUM_80 2u
#define ZENTREL_ENABLE_LANE_NUM_64 3u
#define ZENTREL_ENABLE_LANE_NUM_48 5u
#define ZENTREL_ENABLE_LANE_NUM_32 6u
#define ZENTREL_ENABLE_LANE_NUM_24 7u

/* The CCR system error status register is one u32 (byte 0 least significant). */

/* Filled by ZentrelSwitchGetGPIOSpareState. */
typedef struct ZENTREL_SWITCH_GPIO_SPARE_STATE {
    uint32_t GpioDataLow;  /* level of pins 0 to 31 */
    uint32_t GpioDataHigh; /* level of pins 32 to 63 */
    uint32_t SpareData;    /* spare bits 0 to 7 */
} ZENTREL_SWITCH_GPIO_SPARE_STATE, *PTR_ZENTREL_SWITCH_GPIO_SPARE_STATE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GPIO_SPARE_STATE, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_SPARE_STATE, GpioDataLow, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_SPARE_STATE, GpioDataHigh, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_SPARE_STATE, SpareData, 8);

/* GPIO control opcodes. */
#define ZENTREL_GPIO_SET_OUTPUT 0u      /* Data bit 0: level */
#define ZENTREL_GPIO_ASSIGN_PORT 1u     /* Data: PCIe port */
#define ZENTREL_GPIO_SET_ALT_DSEL 2u    /* Data bits 0..2: AltDSel */
#define ZENTREL_GPIO_GET_STATUS 3u      /* Data bit 0: level, bit 1: output */
#define ZENTREL_GPIO_GET_PORT 4u        /* Data: assigned PCIe port */
#define ZENTREL_GPIO_GET_ALT_DSEL 5u    /* Data bits 0..2: AltDSel */
#define ZENTREL_GPIO_OPCODE_LAST ZENTREL_GPIO_GET_ALT_DSEL
#define ZENTREL_GPIO_STATUS_LEVEL 0x01u
#define ZENTREL_GPIO_STATUS_OUTPUT 0x02u
#define ZENTREL_GPIO_ALT_DSEL_MASK 0x07u

/* Read by ZentrelSwitchHandleGpioCtrlCmd. */
typedef struct ZENTREL_SWITCH_GPIO_CTRL_REQ {
    uint8_t Opcode;
    uint8_t Pin;
    uint8_t Data; /* meaning by opcode, see above */
    uint8_t Reserved3[5];
} ZENTREL_SWITCH_GPIO_CTRL_REQ, *PTR_ZENTREL_SWITCH_GPIO_CTRL_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GPIO_CTRL_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_REQ, Opcode, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_REQ, Pin, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_REQ, Data, 2);

/* Filled by ZentrelSwitchHandleGpioCtrlCmd. */
typedef struct ZENTREL_SWITCH_GPIO_CTRL_RESP {
    uint8_t Opcode;
    uint8_t Pin;
    uint8_t Reserved2[2];
    uint8_t Data; /* meaning by opcode, see above */
    uint8_t Reserved5[11];
} ZENTREL_SWITCH_GPIO_CTRL_RESP, *PTR_ZENTREL_SWITCH_GPIO_CTRL_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GPIO_CTRL_RESP, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_RESP, Opcode, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_RESP, Pin, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GPIO_CTRL_RESP, Data, 4);

/* Firmware subsystems whose trace masks the health configuration holds. */
#define ZENTREL_HEALTH_SUBSYSTEM_COUNT 10u
/* Trace severity thresholds: 0 Debug, 1 Info, 2 Warning, 3 Error. */
#define ZENTREL_HEALTH_SEVERITY_LAST 3u

#define ZENTREL_HEALTH_SET_SEVERITY 0u
#define ZENTREL_HEALTH_SET_TRACE_MASK 1u
/* Update option, bits 0-1 of UpdateOption. */
#define ZENTREL_HEALTH_UPDATE_RUNTIME 0x1u
#define ZENTREL_HEALTH_UPDATE_CFG_PAGE 0x2u
#define ZENTREL_HEALTH_UPDATE_MASK 0x3u

/* Read by ZentrelSwitchSetHealthConfig. */
typedef struct ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ {
    uint8_t SetOption;    /* ZENTREL_HEALTH_SET_... */
    uint8_t UpdateOption; /* bits 0-1: ZENTREL_HEALTH_UPDATE_...; the rest 0 */
    uint8_t Reserved2[2];
    uint8_t Value;        /* severity threshold, or subsystem number */
    uint8_t Reserved5[3];
    uint32_t TraceMask;   /* 0 for a severity setting */
    uint8_t Reserved12[4];
} ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, *PTR_ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, SetOption, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, UpdateOption, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, Value, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ, TraceMask, 8);

#define ZENTREL_HEALTH_GET_SEVERITY 0u
#define ZENTREL_HEALTH_GET_TRACE_MASK 1u

/* Read by ZentrelSwitchGetHealthConfig. */
typedef struct ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ {
    uint8_t GetOption; /* ZENTREL_HEALTH_GET_... */
    uint8_t Subsystem; /* for a trace mask only */
    uint8_t Reserved2[2];
} ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ, *PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ, GetOption, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ, Subsystem, 1);

/* Filled by ZentrelSwitchGetHealthConfig: the runtime value asked for. */
typedef struct ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP {
    uint8_t Reserved0[4];
    uint32_t Value; /* severity threshold or trace mask */
    uint8_t Reserved8[4];
} ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP, *PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP, Value, 4);

/* Update modes of ZentrelSwitchSetTagSBTimeout. */
#define ZENTREL_TAG_SB_UPDATE_RUNTIME 0u
#define ZENTREL_TAG_SB_UPDATE_FLASH 1u
#define ZENTREL_TAG_SB_UPDATE_BOTH 2u
/* Query modes of ZentrelSwitchGetTagSBTimeout. */
#define ZENTREL_TAG_SB_QUERY_RUNTIME 0u
#define ZENTREL_TAG_SB_QUERY_FLASH 1u

/* Read by ZentrelSwitchSetTagSBTimeout. */
typedef struct ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ {
    uint8_t Station;
    uint8_t Reserved1;
    uint8_t UpdateMode; /* ZENTREL_TAG_SB_UPDATE_... */
    uint8_t Reserved3;
    uint16_t TimeoutMs;
    uint8_t Reserved6[2];
} ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ, *PTR_ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ, Station, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ, UpdateMode, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ, TimeoutMs, 4);

/* Read by ZentrelSwitchGetTagSBTimeout. */
typedef struct ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ {
    uint8_t Station;
    uint8_t Reserved1;
    uint8_t QueryMode; /* ZENTREL_TAG_SB_QUERY_... */
    uint8_t Reserved3[5];
} ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ, *PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ, Station, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ, QueryMode, 2);

#define ZENTREL_TAG_SB_STATION_ENABLED 0x01u

/* Filled by ZentrelSwitchGetTagSBTimeout. */
typedef struct ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP {
    uint8_t Reserved0[4];
    uint8_t Flags; /* ZENTREL_TAG_SB_STATION_ENABLED: the station's own time-out applies */
    uint8_t Reserved5[3];
    uint8_t Station;
    uint8_t Reserved9;
    uint16_t TimeoutMs;
} ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP, *PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP, Flags, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP, Station, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP, TimeoutMs, 10);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetCcrStatus(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_CCR_STATUS Status);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPowerOnSense(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_POWER_ON_SENSE Sense);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSysErrStatus(PTR_ZENTREL_DEVICE Device, uint32_t *SysErrStatus);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetGPIOSpareState(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_GPIO_SPARE_STATE State);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchHandleGpioCtrlCmd(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_GPIO_CTRL_REQ Request,
                                                          PTR_ZENTREL_SWITCH_GPIO_CTRL_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetHealthConfig(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetHealthConfig(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ Request,
                                                        PTR_ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetTagSBTimeout(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetTagSBTimeout(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ Request,
                                                        PTR_ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP Response,
                                                        uint32_t QueryMode);

#endif
