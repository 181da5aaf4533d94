/*
 * Core dumps, firmware trace and the conditions under which the firmware
 * takes a core dump by itself.
 */
#ifndef ZENTREL_DUMPS_H
#define ZENTREL_DUMPS_H

#include "zentrel_types.h"

/* Core dump types. 0 is passed on to the library as it is. */
#define ZENTREL_COREDUMP_RAW 1u
#define ZENTREL_COREDUMP_DECODED 2u

/* Status of a trace read: the data is valid, but the trace memory grew
 * after its size was taken, so the buffer holds only part of it. */
#define ZENTREL_STATUS_TRACE_GREW 0x81u

/* Read by ZentrelSwitchGetCoredumpInfo. */
typedef struct ZENTREL_SWITCH_COREDUMP_INFO_REQ {
    uint8_t Flags;        /* ZENTREL_COREDUMP_INFO_... */
    uint8_t Reserved1[3];
    uint32_t CoreDumpType;
    uint8_t SectionId;    /* valid with ZENTREL_COREDUMP_INFO_VALIDATE_SECTION */
    uint8_t Reserved9[3];
    uint32_t ResponseSize; /* bytes of the response buffer the caller supplies */
    uint8_t Reserved16[12];
} ZENTREL_SWITCH_COREDUMP_INFO_REQ, *PTR_ZENTREL_SWITCH_COREDUMP_INFO_REQ;

#define ZENTREL_COREDUMP_INFO_REQUESTED 0x01u
#define ZENTREL_COREDUMP_INFO_VALIDATE_SECTION 0x02u

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_COREDUMP_INFO_REQ, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_REQ, Flags, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_REQ, CoreDumpType, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_REQ, SectionId, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_REQ, ResponseSize, 12);

/* Filled by ZentrelSwitchGetCoredumpInfo: this header, then as many
 * section entries as ResponseSize leaves room for (EntriesFilled). */
typedef struct ZENTREL_SWITCH_COREDUMP_INFO_RESP {
    uint32_t CoreDumpType; /* the type the answer is about */
    uint8_t CoreDumpValid;
    uint8_t Reserved5;
    uint8_t SectionValid;
    uint8_t Reserved7;
    uint32_t BinarySize;
    uint32_t DecodedSize;
    uint32_t Reserved16;
    uint32_t SectionCount;  /* sections of the decoded core dump */
    uint32_t EntriesFilled; /* entries that follow this header */
    uint8_t Reserved28[12];
} ZENTREL_SWITCH_COREDUMP_INFO_RESP, *PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_COREDUMP_INFO_RESP, 40);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, CoreDumpType, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, CoreDumpValid, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, SectionValid, 6);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, BinarySize, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, DecodedSize, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, SectionCount, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_INFO_RESP, EntriesFilled, 24);

/* One section entry after the information response header. */
typedef struct ZENTREL_SWITCH_COREDUMP_SECTION {
    uint8_t Id;
    uint8_t Reserved1[3];
    uint32_t Size; /* bytes of the section in the decoded core dump */
    uint8_t Reserved8[8];
} ZENTREL_SWITCH_COREDUMP_SECTION, *PTR_ZENTREL_SWITCH_COREDUMP_SECTION;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_COREDUMP_SECTION, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_SECTION, Id, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_COREDUMP_SECTION, Size, 4);

/* Trigger condition operations (set request). */
#define ZENTREL_TRIGGER_SET_CONDITIONS 0u
#define ZENTREL_TRIGGER_SET_OVERWRITE 1u
#define ZENTREL_TRIGGER_CLEAR_OVERWRITE 2u
/* Trigger condition operations (get request). */
#define ZENTREL_TRIGGER_GET_CONDITIONS 0u
#define ZENTREL_TRIGGER_GET_OVERWRITE 1u
/* Module types. */
#define ZENTREL_TRIGGER_MODULE_PORT 1u
#define ZENTREL_TRIGGER_MODULE_STATION 2u
#define ZENTREL_TRIGGER_MODULE_SWITCH 3u
/* Port number meaning every active downstream port. */
#define ZENTREL_TRIGGER_ALL_PORTS 255u
/* Trigger condition bits. */
#define ZENTREL_TRIGGER_AER_NON_FATAL 0x1u
#define ZENTREL_TRIGGER_AER_FATAL 0x2u
/* Settings type (set) and query type (get). */
#define ZENTREL_TRIGGER_RUNTIME 0u
#define ZENTREL_TRIGGER_PERSISTENT 1u

/* Read by ZentrelSwitchSetTriggerCondForCoreDump. */
typedef struct ZENTREL_SWITCH_SET_TRIGGER_COND_REQ {
    uint8_t Operation;
    uint8_t Reserved1[3];
    uint8_t ModuleType;
    uint8_t Port;
    uint8_t Reserved6[6];
    uint16_t ConditionBitmap;
    uint8_t Reserved14[10];
    uint8_t SettingsType;
    uint8_t Reserved25[3];
} ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, *PTR_ZENTREL_SWITCH_SET_TRIGGER_COND_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, Operation, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, ModuleType, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, Port, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, ConditionBitmap, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ, SettingsType, 24);

/* Read by ZentrelSwitchGetTriggerCondForCoreDump. */
typedef struct ZENTREL_SWITCH_GET_TRIGGER_COND_REQ {
    uint8_t Operation;
    uint8_t Reserved1[3];
    uint8_t ModuleType;
    uint8_t Number; /* port, station, or 0 for the switch */
    uint8_t Reserved6[10];
    uint8_t QueryType;
    uint8_t Reserved17[15];
} ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, *PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_REQ;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, Operation, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, ModuleType, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, Number, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ, QueryType, 16);

/* Filled by ZentrelSwitchGetTriggerCondForCoreDump. */
typedef struct ZENTREL_SWITCH_GET_TRIGGER_COND_RESP {
    uint16_t Result; /* 0: answered */
    uint8_t Reserved2[2];
    uint16_t ConditionBitmap; /* conditions; bit 0 the overwrite policy for ZENTREL_TRIGGER_GET_OVERWRITE */
    uint8_t Reserved6[14];
} ZENTREL_SWITCH_GET_TRIGGER_COND_RESP, *PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_RESP;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_GET_TRIGGER_COND_RESP, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_RESP, Result, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_GET_TRIGGER_COND_RESP, ConditionBitmap, 4);

/* Length is the buffer's size on entry and the bytes delivered on return. */
ZENTREL_API ZENTREL_STATUS ZentrelGetCoreDump(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer, uint32_t *Length,
                                              uint16_t CoreDumpType);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchIsCoredumpValid(PTR_ZENTREL_DEVICE Device, uint32_t CoreDumpType,
                                                        uint32_t *Valid, uint32_t *Size);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetCoredumpInfo(PTR_ZENTREL_DEVICE Device,
                                                        PTR_ZENTREL_SWITCH_COREDUMP_INFO_REQ Request,
                                                        PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP Response);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetDecodedCoreDumpBySection(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                                    uint32_t *Length, uint8_t SectionId);
ZENTREL_API ZENTREL_STATUS ZentrelEraseCoreDump(PTR_ZENTREL_DEVICE Device);
/* With a null buffer the length receives the trace's size. */
ZENTREL_API ZENTREL_STATUS ZentrelGetTraceBuffer(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer, uint32_t *Length);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetDecodedTraceBuffer(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                              uint32_t *Length);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetTriggerCondForCoreDump(PTR_ZENTREL_DEVICE Device,
                                                                  PTR_ZENTREL_SWITCH_SET_TRIGGER_COND_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetTriggerCondForCoreDump(PTR_ZENTREL_DEVICE Device,
                                                                  PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_REQ Request,
                                                                  PTR_ZENTREL_SWITCH_GET_TRIGGER_COND_RESP Response);

#endif
