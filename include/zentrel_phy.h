/*
 * Link and PHY diagnostics: lane margining, the hardware eye, receiver and
 * transmitter equalization, Serdes information and PRBS.
 */
#ifndef ZENTREL_PHY_H
#define ZENTREL_PHY_H

#include "zentrel_types.h"

/* Absolute lane numbers run from 0 to 191; the per-lane buffers hold a
 * record for each of them, indexed by the lane number. */
#define ZENTREL_LANE_COUNT 192u
/* Lane margining works on at most the 16 lanes of one port. */
#define ZENTREL_MARGIN_MAX_LANES 16u

/* Read by ZentrelSwitchPerformLaneMargining. */
typedef struct ZENTREL_SWITCH_LANE_MARGIN_REQ {
    uint8_t PortNumber;
    uint8_t Reserved1;
    uint16_t LaneMask; /* bit k: lane k of the port */
    uint32_t ErrorCountLimit;
    uint32_t NumTimeSteps;
    uint32_t NumVoltageSteps;
} ZENTREL_SWITCH_LANE_MARGIN_REQ, *PTR_ZENTREL_SWITCH_LANE_MARGIN_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_LANE_MARGIN_REQ, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_REQ, PortNumber, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_REQ, LaneMask, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_REQ, ErrorCountLimit, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_REQ, NumTimeSteps, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_REQ, NumVoltageSteps, 12);

/* Filled by ZentrelSwitchPerformLaneMargining: one record per lane of the
 * request's mask, from lane 0 of the port on. */
typedef struct ZENTREL_SWITCH_LANE_MARGIN_RESULT {
    uint32_t RightTimeMarginStatus;
    uint32_t RightTimeMarginStep;
    uint32_t LeftTimeMarginStatus;
    uint32_t LeftTimeMarginStep;
    uint32_t UpVoltageMarginStatus;
    uint32_t UpVoltageMarginStep;
    uint32_t DownVoltageMarginStatus;
    uint32_t DownVoltageMarginStep;
} ZENTREL_SWITCH_LANE_MARGIN_RESULT, *PTR_ZENTREL_SWITCH_LANE_MARGIN_RESULT;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_LANE_MARGIN_RESULT, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_RESULT, LeftTimeMarginStatus, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_RESULT, UpVoltageMarginStatus, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LANE_MARGIN_RESULT, DownVoltageMarginStep, 28);

/* Margin status words. */
#define ZENTREL_MARGIN_STATUS_LIMIT_FOUND 2u /* the error count limit ended the margining at the step given */
#define ZENTREL_MARGIN_STATUS_PASSED 3u      /* every step asked for passed */

/* One lane's hardware eye: widths in percent of a unit interval, heights
 * in millivolts. */
typedef struct ZENTREL_SWITCH_HW_EYE_LANE {
    double TargetBer; /* the library's own */
    double EyeLeft;
    double EyeRight;
    double EyeUp;
    double EyeDown;
} ZENTREL_SWITCH_HW_EYE_LANE, *PTR_ZENTREL_SWITCH_HW_EYE_LANE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HW_EYE_LANE, 40);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HW_EYE_LANE, EyeLeft, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HW_EYE_LANE, EyeRight, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HW_EYE_LANE, EyeUp, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HW_EYE_LANE, EyeDown, 32);

/* Handed to every hardware-eye call; record L describes lane L. */
typedef struct ZENTREL_SWITCH_HW_EYE {
    uint8_t Header[16]; /* the library's own */
    ZENTREL_SWITCH_HW_EYE_LANE Lanes[ZENTREL_LANE_COUNT];
} ZENTREL_SWITCH_HW_EYE, *PTR_ZENTREL_SWITCH_HW_EYE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HW_EYE, 7696);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HW_EYE, Lanes, 16);

/* One lane's receiver equalization. */
typedef struct ZENTREL_SWITCH_RX_EQ_LANE {
    int32_t Vga;
    int32_t Aeq;
    int32_t DfeTap1P;
    int32_t DfeTap1N;
    int32_t DfeTap[8]; /* taps 2 to 9 */
} ZENTREL_SWITCH_RX_EQ_LANE, *PTR_ZENTREL_SWITCH_RX_EQ_LANE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_RX_EQ_LANE, 48);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_RX_EQ_LANE, DfeTap1N, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_RX_EQ_LANE, DfeTap, 16);

/* Filled by ZentrelSwitchRxEqStatus; record L describes lane L. */
typedef struct ZENTREL_SWITCH_RX_EQ_STATUS {
    uint8_t Header[8]; /* the library's own */
    ZENTREL_SWITCH_RX_EQ_LANE Lanes[ZENTREL_LANE_COUNT];
} ZENTREL_SWITCH_RX_EQ_STATUS, *PTR_ZENTREL_SWITCH_RX_EQ_STATUS;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_RX_EQ_STATUS, 9224);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_RX_EQ_STATUS, Lanes, 8);

/* One lane's transmitter coefficients, its own (near) and its link
 * partner's (far). */
typedef struct ZENTREL_SWITCH_TX_COEFF_LANE {
    int32_t PreCursorNear;
    int32_t MainCursorNear;
    int32_t PostCursorNear;
    int32_t PreCursorFar;
    int32_t MainCursorFar;
    int32_t PostCursorFar;
} ZENTREL_SWITCH_TX_COEFF_LANE, *PTR_ZENTREL_SWITCH_TX_COEFF_LANE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TX_COEFF_LANE, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TX_COEFF_LANE, PreCursorFar, 12);

/* Filled by ZentrelSwitchTxCoeff; record L describes lane L. */
typedef struct ZENTREL_SWITCH_TX_COEFF {
    uint8_t Header[8]; /* the library's own */
    ZENTREL_SWITCH_TX_COEFF_LANE Lanes[ZENTREL_LANE_COUNT];
} ZENTREL_SWITCH_TX_COEFF, *PTR_ZENTREL_SWITCH_TX_COEFF;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TX_COEFF, 4616);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TX_COEFF, Lanes, 8);

/* Serdes request options. */
#define ZENTREL_SERDES_REQ_LANE 1u
#define ZENTREL_SERDES_REQ_PORT 2u

/* Read by ZentrelSwitchGetSerdesInfo. */
typedef struct ZENTREL_SWITCH_SERDES_INFO_REQ {
    uint8_t RequestOption; /* ZENTREL_SERDES_REQ_... */
    uint8_t Reserved1;
    uint16_t Number;       /* the lane, or the port */
} ZENTREL_SWITCH_SERDES_INFO_REQ, *PTR_ZENTREL_SWITCH_SERDES_INFO_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SERDES_INFO_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_REQ, Number, 2);

/* A lane's transmitter settings. */
typedef struct ZENTREL_SERDES_TX_LANE {
    uint8_t Cm1;       /* pre-cursor */
    uint8_t C0;        /* main cursor */
    uint8_t Cp1;       /* post-cursor */
    uint8_t Amplitude;
    uint8_t Reserved4[12];
} ZENTREL_SERDES_TX_LANE;

ZENTREL_ASSERT_SIZE(ZENTREL_SERDES_TX_LANE, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SERDES_TX_LANE, Amplitude, 3);

/* A lane's receiver settings. */
typedef struct ZENTREL_SERDES_RX_LANE {
    int8_t Dlevo;
    int8_t Dleve;
    int8_t H[8]; /* H2 to H9 */
    int8_t Vga;
    int8_t Aeq;
    int8_t H1P;
    int8_t H1N;
    uint8_t Qskw;
    uint8_t Reserved15[9];
} ZENTREL_SERDES_RX_LANE;

ZENTREL_ASSERT_SIZE(ZENTREL_SERDES_RX_LANE, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SERDES_RX_LANE, H, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SERDES_RX_LANE, Vga, 10);
ZENTREL_ASSERT_OFFSET(ZENTREL_SERDES_RX_LANE, Qskw, 14);

typedef struct ZENTREL_SERDES_LANE_INFO {
    ZENTREL_SERDES_TX_LANE Tx;
    ZENTREL_SERDES_RX_LANE Rx;
} ZENTREL_SERDES_LANE_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SERDES_LANE_INFO, 40);

/* Serdes response types. */
#define ZENTREL_SERDES_RESP_LANE 1u
#define ZENTREL_SERDES_RESP_PORT 2u
#define ZENTREL_SERDES_MAX_ENTRIES 16u

/* Filled by ZentrelSwitchGetSerdesInfo. */
typedef struct ZENTREL_SWITCH_SERDES_INFO_RESP {
    uint8_t Reserved0[2];
    uint8_t ResponseType; /* ZENTREL_SERDES_RESP_... */
    uint8_t PswVersion;
    union {
        ZENTREL_SERDES_LANE_INFO Lane;
        struct {
            uint32_t EntryCount; /* at most ZENTREL_SERDES_MAX_ENTRIES */
            ZENTREL_SERDES_LANE_INFO Entries[ZENTREL_SERDES_MAX_ENTRIES];
        } Port;
    } Info;
} ZENTREL_SWITCH_SERDES_INFO_RESP, *PTR_ZENTREL_SWITCH_SERDES_INFO_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SERDES_INFO_RESP, 648);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, ResponseType, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, PswVersion, 3);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, Info.Lane.Tx, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, Info.Lane.Rx, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, Info.Port.EntryCount, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SERDES_INFO_RESP, Info.Port.Entries, 8);

/* PRBS operations. */
#define ZENTREL_PRBS_GENERATE 1u
#define ZENTREL_PRBS_ENABLE_CHECKER 3u
#define ZENTREL_PRBS_CHECK_STATUS 4u
#define ZENTREL_PRBS_READ_COUNTER 5u
#define ZENTREL_PRBS_INJECT_ERROR 6u

/* PRBS rates. */
#define ZENTREL_PRBS_RATE_2_5G 1u
#define ZENTREL_PRBS_RATE_32G 5u

/* Read by every ZentrelSwitchPrbs call. */
typedef struct ZENTREL_SWITCH_PRBS_REQ {
    uint32_t Operation; /* ZENTREL_PRBS_... */
    uint32_t Lane;
    uint32_t Pattern;   /* codes by device family */
    uint32_t Rate;      /* ZENTREL_PRBS_RATE_...: 1 2.5G, 2 5G, 3 8G, 4 16G, 5 32G */
    uint16_t SampleCount[3]; /* bits 15..0, 31..16, 47..32 */
    uint16_t Reserved22;
    uint32_t Infinite;  /* non-zero: check without a sample limit */
    uint32_t Reserved28;
    uint32_t WaitTimeMs; /* inject only */
    uint32_t InvertPolarity;
} ZENTREL_SWITCH_PRBS_REQ, *PTR_ZENTREL_SWITCH_PRBS_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PRBS_REQ, 40);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, Lane, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, Pattern, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, Rate, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, SampleCount, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, Infinite, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, WaitTimeMs, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_REQ, InvertPolarity, 36);

/* Checker status bits. */
#define ZENTREL_PRBS_CHECK_DONE 0x1u
#define ZENTREL_PRBS_IN_SYNC 0x2u

/* Filled by the checker operations of ZentrelSwitchPrbs. */
typedef struct ZENTREL_SWITCH_PRBS_CHECKER_RESP {
    uint32_t CheckerStatus; /* ZENTREL_PRBS_CHECK_DONE, ZENTREL_PRBS_IN_SYNC */
    uint8_t Reserved4[4];
    uint16_t WordCount[3];  /* the bits checked, 16 bits each, least significant first */
    uint8_t Reserved14[2];
    int32_t ErrorCount;
} ZENTREL_SWITCH_PRBS_CHECKER_RESP, *PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PRBS_CHECKER_RESP, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_CHECKER_RESP, WordCount, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PRBS_CHECKER_RESP, ErrorCount, 16);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetLaneMarginCapacities(PTR_ZENTREL_DEVICE Device, uint8_t Port,
                                                                uint16_t Lane, uint32_t *MarginControlCaps,
                                                                uint32_t *Steps, uint32_t *Offsets);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchPerformLaneMargining(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_LANE_MARGIN_REQ Request,
                                                             PTR_ZENTREL_SWITCH_LANE_MARGIN_RESULT Results);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchHardwareEyeStart(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                         uint32_t NumLanes, uint32_t TargetBer,
                                                         PTR_ZENTREL_SWITCH_HW_EYE Eye);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchHardwareEyePoll(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                        uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchHardwareEyeGet(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                       uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchHardwareEyeClean(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                         uint32_t NumLanes, PTR_ZENTREL_SWITCH_HW_EYE Eye);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchRxEqStatus(PTR_ZENTREL_DEVICE Device, uint32_t StartLane, uint32_t NumLanes,
                                                   PTR_ZENTREL_SWITCH_RX_EQ_STATUS Status);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchTxCoeff(PTR_ZENTREL_DEVICE Device, uint32_t StartLane, uint32_t NumLanes,
                                                uint32_t Reserved, PTR_ZENTREL_SWITCH_TX_COEFF Coefficients);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetSerdesInfo(PTR_ZENTREL_DEVICE Device,
                                                      PTR_ZENTREL_SWITCH_SERDES_INFO_REQ Request,
                                                      PTR_ZENTREL_SWITCH_SERDES_INFO_RESP Response);
/* Response is null for generate and inject. */
ZENTREL_API ZENTREL_STATUS ZentrelSwitchPrbs(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_PRBS_REQ Request,
                                             PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP Response);

#endif
