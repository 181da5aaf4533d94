/*
 * Error injection, TLP round-trip time, credit capture, link-down
 * condition, history buffers, performance monitoring, address traps,
 * host-physical-address ranges and equalization control.
 *
 * THESE LAYOUTS ARE THIS PROJECT'S OWN DESIGN. The library exports these
 * functions, but their records are not documented anywhere this project
 * could read; the records below were designed here, in the style of the
 * documented ones (fixed sizes, u8/u16/u32 fields at natural offsets, a
 * status), and the simulator implements them. Before these commands are
 * used on a real switch, check every record and function here against the
 * vendor's header and correct what differs.
 */
#ifndef ZENTREL_DESIGNED_H
#define ZENTREL_DESIGNED_H

#include "zentrel_types.h"

/* --- error injection, TLP round-trip time, credits, link-down condition --- */

/* A status of these calls: the port's link is down, so nothing can be
 * measured on it. */
#define ZENTREL_STATUS_LINK_NOT_UP 0x310u

/* Error types of ZentrelSwitchSetErrInjection. Type 0 injects nothing: it
 * clears the list of errors injected on the port (the port's counters and
 * status bits stay until its error statistics are reset). */
#define ZENTREL_ERR_INJ_CLEAR 0u
#define ZENTREL_ERR_INJ_RECEIVER 1u        /* correctable: receiver error */
#define ZENTREL_ERR_INJ_BAD_TLP 2u         /* correctable: bad TLP */
#define ZENTREL_ERR_INJ_BAD_DLLP 3u        /* correctable: bad DLLP */
#define ZENTREL_ERR_INJ_REPLAY_TIMEOUT 4u  /* correctable: replay timer time-out */
#define ZENTREL_ERR_INJ_POISONED_TLP 5u    /* uncorrectable: poisoned TLP */
#define ZENTREL_ERR_INJ_COMPLETION_TIMEOUT 6u
#define ZENTREL_ERR_INJ_MALFORMED_TLP 7u
#define ZENTREL_ERR_INJ_ECRC 8u
#define ZENTREL_ERR_INJ_UNSUPPORTED_REQUEST 9u
#define ZENTREL_ERR_INJ_LAST 9u
#define ZENTREL_ERR_INJ_MAX_ENTRIES 16u

typedef struct ZENTREL_SWITCH_SET_ERR_INJECTION_REQ {
    uint8_t Port;
    uint8_t ErrorType; /* ZENTREL_ERR_INJ_... */
    uint16_t Count;    /* errors to inject, 1 or more; ignored when clearing */
} ZENTREL_SWITCH_SET_ERR_INJECTION_REQ, *PTR_ZENTREL_SWITCH_SET_ERR_INJECTION_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_ERR_INJECTION_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_ERR_INJECTION_REQ, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_ERR_INJECTION_REQ, ErrorType, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_ERR_INJECTION_REQ, Count, 2);

typedef struct ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ {
    uint8_t Port;
    uint8_t Reserved1[3];
} ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ, *PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ, Port, 0);

/* One error type injected since the port's list was last cleared. */
typedef struct ZENTREL_ERR_INJECTION_ENTRY {
    uint8_t ErrorType; /* ZENTREL_ERR_INJ_... */
    uint8_t Reserved1;
    uint16_t Count;    /* how many were injected (saturates at 0xFFFF) */
} ZENTREL_ERR_INJECTION_ENTRY;

ZENTREL_ASSERT_SIZE(ZENTREL_ERR_INJECTION_ENTRY, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_ERR_INJECTION_ENTRY, ErrorType, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_ERR_INJECTION_ENTRY, Count, 2);

typedef struct ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP {
    uint8_t Port;
    uint8_t EntryCount;      /* valid entries, in the order first injected */
    uint16_t Reserved2;
    uint32_t SupportedTypes; /* bit n set: type n can be injected */
    ZENTREL_ERR_INJECTION_ENTRY Entries[ZENTREL_ERR_INJ_MAX_ENTRIES];
} ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, *PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, 72);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, EntryCount, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, SupportedTypes, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP, Entries, 8);

/* TLP round-trip time: SampleCount 0 measures with the port's configured
 * sample count; any other value configures it first. */
typedef struct ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ {
    uint8_t Port;
    uint8_t Reserved1;
    uint16_t SampleCount;
} ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ, *PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ, SampleCount, 2);

typedef struct ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP {
    uint8_t Port;
    uint8_t LinkSpeed;    /* generation 1 to 5 */
    uint8_t LinkWidth;    /* lanes */
    uint8_t Reserved3;
    uint16_t SampleCount; /* samples measured */
    uint16_t Reserved6;
    uint32_t MinimumNs;
    uint32_t AverageNs;
    uint32_t MaximumNs;
} ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, *PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, LinkSpeed, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, LinkWidth, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, SampleCount, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, MinimumNs, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, AverageNs, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP, MaximumNs, 16);

/* Credit capture: Enable 1 starts a new capture of the port's flow-control
 * credits (the lowest values seen start again), 0 stops it. */
typedef struct ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ {
    uint8_t Port;
    uint8_t Enable;
    uint16_t Reserved2;
} ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ, *PTR_ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ, Enable, 1);

typedef struct ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ {
    uint8_t Port;
    uint8_t Reserved1[3];
} ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ, *PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ, Port, 0);

/* Flow-control credits of the six kinds. */
typedef struct ZENTREL_CREDIT_COUNTS {
    uint16_t PostedHeader;
    uint16_t PostedData;
    uint16_t NonPostedHeader;
    uint16_t NonPostedData;
    uint16_t CompletionHeader;
    uint16_t CompletionData;
} ZENTREL_CREDIT_COUNTS;

ZENTREL_ASSERT_SIZE(ZENTREL_CREDIT_COUNTS, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, PostedHeader, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, PostedData, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, NonPostedHeader, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, NonPostedData, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, CompletionHeader, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_CREDIT_COUNTS, CompletionData, 10);

typedef struct ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP {
    uint8_t Port;
    uint8_t Capturing;     /* 1 while a capture runs */
    uint8_t LinkSpeed;     /* generation 1 to 5 */
    uint8_t LinkWidth;     /* lanes */
    uint32_t SampleCount;  /* samples taken by the capture */
    ZENTREL_CREDIT_COUNTS Advertised;       /* the link partner's initial credits */
    ZENTREL_CREDIT_COUNTS MinimumAvailable; /* the lowest available seen */
} ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, *PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, Capturing, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, LinkSpeed, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, LinkWidth, 3);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, SampleCount, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, Advertised, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP, MinimumAvailable, 20);

/* Link-down conditions: none (clears the condition and lets the link train
 * again), down now (the link stays down until cleared), or down at the
 * port's next fatal uncorrectable error. */
#define ZENTREL_LINK_DOWN_COND_NONE 0u
#define ZENTREL_LINK_DOWN_COND_NOW 1u
#define ZENTREL_LINK_DOWN_COND_ON_FATAL 2u
#define ZENTREL_LINK_DOWN_COND_LAST 2u

typedef struct ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ {
    uint8_t Port;
    uint8_t Condition; /* ZENTREL_LINK_DOWN_COND_... */
    uint16_t Reserved2;
} ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ, *PTR_ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ, Condition, 1);

typedef struct ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ {
    uint8_t Port;
    uint8_t Reserved1[3];
} ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ, *PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ, Port, 0);

typedef struct ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP {
    uint8_t Port;
    uint8_t Condition; /* ZENTREL_LINK_DOWN_COND_... */
    uint8_t Triggered; /* 1: the condition holds the link down */
    uint8_t Reserved3;
    uint32_t LinkDownCount; /* the port's link-down counter */
} ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, *PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, Port, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, Condition, 1);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, Triggered, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP, LinkDownCount, 4);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetErrInjectionInfo(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_REQ Request,
                                                            PTR_ZENTREL_SWITCH_GET_ERR_INJECTION_INFO_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetErrInjection(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_SET_ERR_INJECTION_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchTLPRoundTripTime(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_REQ Request,
                                                         PTR_ZENTREL_SWITCH_TLP_ROUND_TRIP_TIME_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetCreditCapture(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_SET_CREDIT_CAPTURE_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetCreditCapture(PTR_ZENTREL_DEVICE Device,
                                                         PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_REQ Request,
                                                         PTR_ZENTREL_SWITCH_GET_CREDIT_CAPTURE_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetLinkDownCondition(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_SET_LINK_DOWN_CONDITION_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetLinkDownConditionStatus(
    PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_REQ Request,
    PTR_ZENTREL_SWITCH_GET_LINK_DOWN_CONDITION_RESP Response);

/* --- history buffers, performance monitoring, address traps,
 *     host-physical-address ranges, equalization control --- */

#endif
