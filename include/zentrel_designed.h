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

/* History buffers: buffer 0 logs every library call that reaches the
 * switch, buffer 1 every switch memory write. */
#define ZENTREL_HISTORY_BUFFER_COUNT 2u
#define ZENTREL_HISTORY_BUFFER_CALLS 0u
#define ZENTREL_HISTORY_BUFFER_WRITES 1u
#define ZENTREL_HISTORY_MAX_DEPTH 256u
#define ZENTREL_HISTORY_BATCH 16u

/* One buffer's settings and fill. */
typedef struct ZENTREL_SWITCH_HISTORY_BUFFER_INFO {
    uint8_t Enabled;      /* 0: records nothing */
    uint8_t Wrap;         /* 1: the oldest entry makes way; 0: a full buffer stops */
    uint16_t Depth;       /* entries it holds, 1 to ZENTREL_HISTORY_MAX_DEPTH */
    uint16_t EntryCount;  /* entries held now */
    uint16_t Reserved6;
    uint32_t TotalLogged; /* entries logged since the last clear, dropped ones included */
} ZENTREL_SWITCH_HISTORY_BUFFER_INFO;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HISTORY_BUFFER_INFO, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_BUFFER_INFO, EntryCount, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_BUFFER_INFO, TotalLogged, 8);

/* Filled by ZentrelSwitchGetHistoryBuffersInfo. */
typedef struct ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP {
    uint8_t BufferCount; /* ZENTREL_HISTORY_BUFFER_COUNT */
    uint8_t Reserved1[3];
    ZENTREL_SWITCH_HISTORY_BUFFER_INFO Buffers[ZENTREL_HISTORY_BUFFER_COUNT];
} ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP, *PTR_ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP, Buffers, 4);

/* Read by ZentrelSwitchConfigureHistoryBuffer. */
typedef struct ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ {
    uint8_t Buffer; /* ZENTREL_HISTORY_BUFFER_... */
    uint8_t Enabled;
    uint8_t Wrap;
    uint8_t Reserved3;
    uint16_t Depth; /* a smaller depth keeps the newest entries */
    uint16_t Reserved6;
} ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ, *PTR_ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ, Depth, 4);

/* Read by ZentrelSwitchGetHistoryBufferEntries. */
typedef struct ZENTREL_SWITCH_HISTORY_ENTRIES_REQ {
    uint8_t Buffer;
    uint8_t Reserved1;
    uint16_t StartEntry; /* 0 is the oldest entry held */
} ZENTREL_SWITCH_HISTORY_ENTRIES_REQ, *PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HISTORY_ENTRIES_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_ENTRIES_REQ, StartEntry, 2);

/* One logged event. Calls: Code is the function's number, Data the call's
 * count. Writes: Code is 0, Address and Data the word written. */
typedef struct ZENTREL_SWITCH_HISTORY_ENTRY {
    uint32_t Sequence; /* 1 for the first entry since the last clear */
    uint16_t Code;
    uint16_t Reserved6;
    uint32_t Address;
    uint32_t Data;
} ZENTREL_SWITCH_HISTORY_ENTRY;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HISTORY_ENTRY, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_ENTRY, Address, 8);

/* Filled by ZentrelSwitchGetHistoryBufferEntries: up to a batch of entries. */
typedef struct ZENTREL_SWITCH_HISTORY_ENTRIES_RESP {
    uint16_t EntryCount; /* entries returned */
    uint16_t Remaining;  /* entries held after these */
    ZENTREL_SWITCH_HISTORY_ENTRY Entries[ZENTREL_HISTORY_BATCH];
} ZENTREL_SWITCH_HISTORY_ENTRIES_RESP, *PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HISTORY_ENTRIES_RESP, 260);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HISTORY_ENTRIES_RESP, Entries, 4);

/* Performance monitoring: which ports the performance counters count. */
#define ZENTREL_PERF_MON_ENABLE 1u
#define ZENTREL_PERF_MON_DISABLE 2u
#define ZENTREL_PERF_MON_CLEAR 3u
#define ZENTREL_PERF_MON_ALL_PORTS 0xFFFFu

/* Read by ZentrelSwitchSetupPerfMonitoring. */
typedef struct ZENTREL_SWITCH_PERF_MON_REQ {
    uint16_t Port;     /* 0 to 143, or ZENTREL_PERF_MON_ALL_PORTS */
    uint8_t Operation; /* ZENTREL_PERF_MON_... */
    uint8_t Reserved3;
} ZENTREL_SWITCH_PERF_MON_REQ, *PTR_ZENTREL_SWITCH_PERF_MON_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PERF_MON_REQ, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PERF_MON_REQ, Operation, 2);

/* Filled by ZentrelSwitchSetupPerfMonitoring. */
typedef struct ZENTREL_SWITCH_PERF_MON_RESP {
    uint16_t MonitoredPorts; /* ports counted after the set-up */
    uint16_t Reserved2;
} ZENTREL_SWITCH_PERF_MON_RESP, *PTR_ZENTREL_SWITCH_PERF_MON_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PERF_MON_RESP, 4);

/* Address traps: up to ZENTREL_TRAP_COUNT ranges of switch memory whose
 * accesses the switch logs. */
#define ZENTREL_TRAP_COUNT 8u
#define ZENTREL_TRAP_SET 1u
#define ZENTREL_TRAP_CLEAR 2u
#define ZENTREL_TRAP_ACCESS_READ 0x1u
#define ZENTREL_TRAP_ACCESS_WRITE 0x2u
#define ZENTREL_TRAP_BATCH 8u

/* Read by ZentrelSwitchTrap. */
typedef struct ZENTREL_SWITCH_TRAP_REQ {
    uint8_t Operation; /* ZENTREL_TRAP_SET or ZENTREL_TRAP_CLEAR */
    uint8_t Trap;      /* 0 to ZENTREL_TRAP_COUNT - 1 */
    uint8_t Access;    /* ZENTREL_TRAP_ACCESS_... bits; set only */
    uint8_t Reserved3;
    uint32_t StartAddress;
    uint32_t EndAddress; /* inclusive */
} ZENTREL_SWITCH_TRAP_REQ, *PTR_ZENTREL_SWITCH_TRAP_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TRAP_REQ, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TRAP_REQ, StartAddress, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TRAP_REQ, EndAddress, 8);

/* Read by ZentrelSwitchGetAddressTrapInBatch. */
typedef struct ZENTREL_SWITCH_TRAP_BATCH_REQ {
    uint16_t StartEntry; /* 0 is the oldest logged access */
    uint16_t Reserved2;
} ZENTREL_SWITCH_TRAP_BATCH_REQ, *PTR_ZENTREL_SWITCH_TRAP_BATCH_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TRAP_BATCH_REQ, 4);

/* One access that fell in a trap's range; a word access counts once. */
typedef struct ZENTREL_SWITCH_TRAP_ENTRY {
    uint32_t Address;
    uint32_t Data;   /* the word read or written */
    uint8_t Trap;
    uint8_t Access;  /* ZENTREL_TRAP_ACCESS_READ or _WRITE */
    uint16_t Reserved10;
} ZENTREL_SWITCH_TRAP_ENTRY;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TRAP_ENTRY, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TRAP_ENTRY, Trap, 8);

/* Filled by ZentrelSwitchGetAddressTrapInBatch. */
typedef struct ZENTREL_SWITCH_TRAP_BATCH_RESP {
    uint16_t EntryCount; /* entries returned */
    uint16_t Remaining;  /* logged entries after these */
    ZENTREL_SWITCH_TRAP_ENTRY Entries[ZENTREL_TRAP_BATCH];
} ZENTREL_SWITCH_TRAP_BATCH_RESP, *PTR_ZENTREL_SWITCH_TRAP_BATCH_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_TRAP_BATCH_RESP, 100);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_TRAP_BATCH_RESP, Entries, 4);

/* Host physical address ranges: the memory windows a host port routes to
 * its downstream ports. */
#define ZENTREL_HPA_RANGE_COUNT 16u
#define ZENTREL_HPA_FLAG_64BIT 0x1u
#define ZENTREL_HPA_FLAG_PREFETCHABLE 0x2u

/* Read by ZentrelSwitchGetHPARangeInfoRequest. */
typedef struct ZENTREL_SWITCH_HPA_RANGE_REQ {
    uint8_t HostPort;
    uint8_t Reserved1[3];
} ZENTREL_SWITCH_HPA_RANGE_REQ, *PTR_ZENTREL_SWITCH_HPA_RANGE_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HPA_RANGE_REQ, 4);

typedef struct ZENTREL_SWITCH_HPA_RANGE {
    uint32_t BaseLow;
    uint32_t BaseHigh;
    uint32_t SizeLow;
    uint32_t SizeHigh;
    uint8_t Port;  /* the downstream port the window leads to */
    uint8_t Flags; /* ZENTREL_HPA_FLAG_... */
    uint16_t Reserved18;
} ZENTREL_SWITCH_HPA_RANGE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HPA_RANGE, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HPA_RANGE, Port, 16);

/* Filled by ZentrelSwitchGetHPARangeInfoRequest. */
typedef struct ZENTREL_SWITCH_HPA_RANGE_RESP {
    uint8_t HostPort;
    uint8_t RangeCount;
    uint16_t Reserved2;
    ZENTREL_SWITCH_HPA_RANGE Ranges[ZENTREL_HPA_RANGE_COUNT];
} ZENTREL_SWITCH_HPA_RANGE_RESP, *PTR_ZENTREL_SWITCH_HPA_RANGE_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_HPA_RANGE_RESP, 324);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_HPA_RANGE_RESP, Ranges, 4);

/* Equalization control: a lane's transmitter and receiver settings fixed
 * by hand, or left to the link's own equalization (adaptive). Cursors are
 * magnitudes: the pre- and post-cursors are applied negative. */
#define ZENTREL_EQ_CTRL_ADAPTIVE 0u
#define ZENTREL_EQ_CTRL_FIXED 1u

/* Read by ZentrelSwitchSetEqualizationCtrl. */
typedef struct ZENTREL_SWITCH_EQ_CTRL_REQ {
    uint16_t Lane;
    uint8_t Mode; /* ZENTREL_EQ_CTRL_...; adaptive ignores the values */
    uint8_t PreCursor;
    uint8_t MainCursor;
    uint8_t PostCursor;
    uint8_t Ctle; /* receiver AEQ */
    uint8_t Vga;
} ZENTREL_SWITCH_EQ_CTRL_REQ, *PTR_ZENTREL_SWITCH_EQ_CTRL_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_EQ_CTRL_REQ, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_EQ_CTRL_REQ, Mode, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_EQ_CTRL_REQ, Vga, 7);

/* The buffer of ZentrelSwitchGetEqualizationCtrl: this header, then one
 * ZENTREL_SWITCH_EQ_CTRL_REQ per lane (the settings in force, adaptive
 * ones included); ZentrelSwitchEqualizationCtrlGetBufSize gives its size. */
typedef struct ZENTREL_SWITCH_EQ_CTRL_HEADER {
    uint16_t StartLane;
    uint16_t LaneCount;
} ZENTREL_SWITCH_EQ_CTRL_HEADER;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_EQ_CTRL_HEADER, 4);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetHistoryBuffersInfo(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP Info);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchClearHistoryBuffer(PTR_ZENTREL_DEVICE Device, uint32_t Buffer);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchConfigureHistoryBuffer(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetHistoryBufferEntries(PTR_ZENTREL_DEVICE Device,
                                                                PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_REQ Request,
                                                                PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetupPerfMonitoring(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_PERF_MON_REQ Request,
                                                            PTR_ZENTREL_SWITCH_PERF_MON_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchTrap(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_TRAP_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetAddressTrapInBatch(PTR_ZENTREL_DEVICE Device,
                                                              PTR_ZENTREL_SWITCH_TRAP_BATCH_REQ Request,
                                                              PTR_ZENTREL_SWITCH_TRAP_BATCH_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetHPARangeInfoRequest(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_HPA_RANGE_REQ Request,
                                                               PTR_ZENTREL_SWITCH_HPA_RANGE_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetEqualizationCtrl(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_EQ_CTRL_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchEqualizationCtrlGetBufSize(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                                   uint32_t NumLanes, uint32_t *BufSize);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetEqualizationCtrl(PTR_ZENTREL_DEVICE Device, uint32_t StartLane,
                                                            uint32_t NumLanes, void *Buffer, uint32_t BufSize);

#endif
