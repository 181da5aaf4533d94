/*
 * Link diagnostics: switch memory access (the LTSSM probe registers among
 * it), the firmware's LTSSM trigger and monitor, and the per-port TLP and
 * DLLP performance counters.
 */
#ifndef ZENTREL_LINK_H
#define ZENTREL_LINK_H

#include "zentrel_types.h"

/* LTSSM probe registers: one pair per station of 16 ports, at these
 * addresses ORed with (station << 16). Accesses are 4 bytes wide. */
#define ZENTREL_LTSSM_PROBE_REG 0x60800BB0u        /* select; the state on the main family */
#define ZENTREL_LTSSM_PROBE_STATUS_REG 0x60800BB4u /* the state on the alternate family */
#define ZENTREL_LTSSM_STATION_SHIFT 16u
/* Main family: port-in-station in bits 31..28, probe enable bit 20; the
 * state reads back from the select register in bits 17..0. */
#define ZENTREL_LTSSM_SELECT_ENABLE 0x00100000u
#define ZENTREL_LTSSM_SELECT_PORT_SHIFT 28u
#define ZENTREL_LTSSM_STATE_MASK 0x3FFFFu
/* Alternate family: port-in-station in bits 23..20, enable bits 29..28;
 * the state reads from the status register in bits 11..0. */
#define ZENTREL_LTSSM_ALT_SELECT_ENABLE 0x30000000u
#define ZENTREL_LTSSM_ALT_SELECT_PORT_SHIFT 20u
#define ZENTREL_LTSSM_ALT_STATE_MASK 0xFFFu
/* The alternate family: device identifiers 0xC030 and 0xC034. */
#define ZENTREL_LTSSM_ALT_ID_MASK 0xFFFBu
#define ZENTREL_LTSSM_ALT_ID 0xC030u

/* LTSSM states the monitor accepts as its trigger. */
#define ZENTREL_LTSSM_POLLING_ACTIVE 0x103u
#define ZENTREL_LTSSM_L0 0x301u

/* Read by ZentrelSwitchSetupLtssmMonitor; all bytes not named are zero. */
typedef struct ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ {
    uint8_t PortNumber;
    uint8_t Reserved1;
    uint16_t TriggerState; /* ZENTREL_LTSSM_POLLING_ACTIVE or ZENTREL_LTSSM_L0 */
    uint8_t Param4;        /* always ZENTREL_LTSSM_MONITOR_PARAM4 */
    uint8_t Param5;        /* always 0 */
    uint8_t Reserved6[2];
    uint8_t Param8;        /* always ZENTREL_LTSSM_MONITOR_PARAM8 */
    uint8_t Param9;        /* always ZENTREL_LTSSM_MONITOR_PARAM9 */
    uint8_t Reserved10[2];
    uint8_t Param12;       /* always 0 */
    uint8_t Reserved13[19];
} ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, *PTR_ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ;

#define ZENTREL_LTSSM_MONITOR_PARAM4 10u
#define ZENTREL_LTSSM_MONITOR_PARAM8 16u
#define ZENTREL_LTSSM_MONITOR_PARAM9 39u

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, TriggerState, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, Param4, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, Param5, 5);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, Param8, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, Param9, 9);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ, Param12, 12);

/* The LTSSM trigger of ZentrelSwitchLtssmSetupTrigger and
 * ZentrelSwitchStopAndGetLtssmTrigger. */
typedef struct ZENTREL_SWITCH_LTSSM_TRIGGER {
    uint32_t PortNumber;
    uint32_t TriggerCondition;
} ZENTREL_SWITCH_LTSSM_TRIGGER, *PTR_ZENTREL_SWITCH_LTSSM_TRIGGER;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_LTSSM_TRIGGER, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_LTSSM_TRIGGER, TriggerCondition, 4);

/* The dump directory path handed to ZentrelSwitchStopAndGetLtssmTrigger. */
#define ZENTREL_LTSSM_DUMP_PATH_LENGTH 512u

/* Performance counters: operations, flags and the two port tables. */
#define ZENTREL_PERF_OP_START 1u
#define ZENTREL_PERF_OP_READ32 2u
#define ZENTREL_PERF_OP_STOP 3u
#define ZENTREL_PERF_OP_READ64 4u
#define ZENTREL_PERF_FLAG_STATISTIC 0x1u
#define ZENTREL_PERF_FLAG_SINGLE_PORT 0x4u
#define ZENTREL_PERF_PORT_COUNT 192u
/* Counters in each direction: PH, PDW, NPH, NPDW, CplH, CplDW, DLLP. */
#define ZENTREL_PERF_COUNTER_COUNT 7u

/* What the firmware derives from one direction's counters. */
typedef struct ZENTREL_PORT_PERF_STATISTIC {
    uint64_t TotalData;        /* bytes */
    uint64_t TotalRate;        /* bytes per second */
    uint8_t Reserved16[16];
    uint64_t PayloadTotal;     /* bytes */
    uint64_t PayloadAverage;   /* bytes per TLP */
    uint64_t PayloadRate;      /* bytes per second */
    uint64_t LinkUtilization;  /* hundredths of a percent */
} ZENTREL_PORT_PERF_STATISTIC;

ZENTREL_ASSERT_SIZE(ZENTREL_PORT_PERF_STATISTIC, 64);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_STATISTIC, PayloadTotal, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_STATISTIC, LinkUtilization, 56);

typedef struct ZENTREL_PORT_PERF_ENTRY32 {
    uint32_t Valid; /* 0: no such port, the entry is skipped */
    uint8_t Reserved4[16];
    uint32_t Ingress[ZENTREL_PERF_COUNTER_COUNT];
    uint32_t Egress[ZENTREL_PERF_COUNTER_COUNT];
    uint32_t PreIngress[ZENTREL_PERF_COUNTER_COUNT];
    uint32_t PreEgress[ZENTREL_PERF_COUNTER_COUNT];
    uint8_t Reserved132[4];
    ZENTREL_PORT_PERF_STATISTIC IngressStatistic;
    ZENTREL_PORT_PERF_STATISTIC EgressStatistic;
    uint8_t Reserved264[16];
} ZENTREL_PORT_PERF_ENTRY32;

ZENTREL_ASSERT_SIZE(ZENTREL_PORT_PERF_ENTRY32, 280);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, Ingress, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, Egress, 48);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, PreIngress, 76);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, PreEgress, 104);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, IngressStatistic, 136);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY32, EgressStatistic, 200);

typedef struct ZENTREL_PORT_PERF_ENTRY64 {
    uint32_t Valid;
    uint8_t Reserved4[20];
    uint64_t Ingress[ZENTREL_PERF_COUNTER_COUNT];
    uint64_t Egress[ZENTREL_PERF_COUNTER_COUNT];
    uint64_t PreIngress[ZENTREL_PERF_COUNTER_COUNT];
    uint64_t PreEgress[ZENTREL_PERF_COUNTER_COUNT];
    ZENTREL_PORT_PERF_STATISTIC IngressStatistic;
    ZENTREL_PORT_PERF_STATISTIC EgressStatistic;
    uint8_t Reserved376[8];
} ZENTREL_PORT_PERF_ENTRY64;

ZENTREL_ASSERT_SIZE(ZENTREL_PORT_PERF_ENTRY64, 384);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, Ingress, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, Egress, 80);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, PreIngress, 136);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, PreEgress, 192);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, IngressStatistic, 248);
ZENTREL_ASSERT_OFFSET(ZENTREL_PORT_PERF_ENTRY64, EgressStatistic, 312);

/* Request and response of ZentrelSwitchGetPciePortPerformance in one. */
typedef struct ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE {
    uint32_t Operation; /* ZENTREL_PERF_OP_... */
    uint8_t Reserved4[4];
    uint16_t Flags;     /* ZENTREL_PERF_FLAG_... */
    uint8_t Reserved10[2];
    uint32_t StatisticElapsedTimeMs;
    ZENTREL_PORT_PERF_ENTRY32 Ports32[ZENTREL_PERF_PORT_COUNT]; /* operation 2 */
    ZENTREL_PORT_PERF_ENTRY64 Ports64[ZENTREL_PERF_PORT_COUNT]; /* operation 4 */
    uint16_t PortNumber; /* with ZENTREL_PERF_FLAG_SINGLE_PORT */
    uint8_t Reserved127506[6];
} ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, *PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE;

ZENTREL_ASSERT_SIZE(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, 127512);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, Flags, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, StatisticElapsedTimeMs, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, Ports32, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, Ports64, 53776);
ZENTREL_ASSERT_OFFSET(ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE, PortNumber, 127504);

ZENTREL_API ZENTREL_STATUS ZentrelSwitchMemoryRead(PTR_ZENTREL_DEVICE Device, uint32_t Address, void *Buffer,
                                                   uint32_t Count);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchMemoryWrite(PTR_ZENTREL_DEVICE Device, uint32_t Address, const void *Buffer,
                                                    uint32_t Count);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchStopAndGetLtssmTrigger(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_LTSSM_TRIGGER Trigger,
                                                               const char *DumpDirectory);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchLtssmSetupTrigger(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_LTSSM_TRIGGER Trigger,
                                                          uint32_t *FwTriggerVal);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchLtssmIsTriggerred(PTR_ZENTREL_DEVICE Device, uint32_t PortNumber,
                                                          uint32_t *Triggered);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchSetupLtssmMonitor(PTR_ZENTREL_DEVICE Device,
                                                          PTR_ZENTREL_SWITCH_SETUP_LTSSM_MONITOR_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelSwitchGetPciePortPerformance(PTR_ZENTREL_DEVICE Device,
                                                               PTR_ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE Performance);

#endif
