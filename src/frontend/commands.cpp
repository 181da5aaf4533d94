#include "commands.h"

#include <cstdio>
#include <cstring>

#include "debugtoken/debugtoken.h"
#include "designed/designed.h"
#include "discovery.h"
#include "dumps/dumps.h"
#include "helpers.h"
#include "images/images.h"
#include "link/link.h"
#include "security/security.h"
#include "phy/phy.h"
#include "ports/ports.h"
#include "settings/settings.h"
#include "status/status.h"
#include "topology/topology.h"

namespace {

// Commands the switch family does not offer: they answer and stop the line.
template <uint32_t Result>
uint32_t NotSupported(PTR_ZENTREL_DEVICE, const char *const *, PTR_ZENTREL_DEVICE_INFO) {
    printf("Not supported\n");
    return Result;
}

const char *const kSwitchUsage[] = {
    "  -ltssm\t\tget the current LTSSM status the PCI-e switch",
    "  -ltssmtrace\t\tget the LTSSM trace of the PCI-e switch",
    "  -swperf\t\tread the port performanceof the PCI-e switch",
    "  -getlmcap\t\tread the lane margin capacities of the PCI-e switch",
    "  -portprop\t\tread the port property of the PCI-e switch indicated by the index",
    "  -getccr\t\tread the CCR state of the PCI-e switch",
    "  -getpos\t\tread the Power On Sense of the PCI-e switch",
    "  -rxeq\t\t\tread the RXEQ status of the PCI-e switch",
    "  -txcoeff\t\tread the TX coefficient of the PCI-e switch",
    "  -sweye\t\tread the software eye of the PCI-e switch",
    "  -hweye\t\tread the hardware eye of the PCI-e switch",
    "  -gethealth\t\tread the health status of the PCI-e switch",
    "  -perflm\t\tperform lane margin of the PCI-e switch",
    "  -healthcheck\t\trun health check of the PCI-e switch",
    "  -getswlogs\t\tget the logs of PCI-e switch",
    "  -ver\t\t\tget the firmware version of PCI-e switch",
    "  -swerr\t\tget PCI-e switch error counters",
    "  -resetporterr\t\treset PCI-e switch error counters",
    "  -swpktramerr\t\tget PCI-e switch Packet RAM soft error counters",
    "  -prbs\t\t\tgenerate or Check the PRBS.",
    "  -resetpktramerr\treset PCI-e switch Packet RAM soft error counters",
    "  -ptrace\t\t\tptrace commands",
    "  -GetPciCap\t\t\tShow PCIe Capabilities Command",
    "  -GetSecBootInfo\t\t\t Get Secure Boot Information Command",
    "  -GetSpdmSecInfo\t\t\t Get Spdm Secure Information Command",
};

// The help names -ptrace and -reset, which have no row in the table.
const char *const kCommonUsage[] = {
    "  -temp\t\t\tread the temperature of the SWITCH indicated by the index",
    "  -getcoredump\t\tread the coredump of the SWITCH indicated by the index",
    "  -erasecoredump\terase the erasecoredump of the SWITCH indicated by the index",
    "  -gettrace\t\tread the trace buffer of the SWITCH indicated by the index",
    "  -healthlogs\t\tread the health logs of the SWITCH indicated by the index",
    "  -reset\t\treset the device indicated by index",
    "  -trt\t\t Configure and Read TLP Round Trip Time",
    "  -GetWaferInfo\t\t Get Wafer Information",
};

}  // namespace

// Order matters: several commands on one line run only in table order.
const CommandRow kCommandTable[] = {
    {"-h", PrintUsage, 0},
    {"-help", PrintUsage, 0},
    {"--help", PrintUsage, 0},
    {"-temp", GetTemperature, 0},
    {"-getcoredump", CaptureCoreDump, 0},
    {"-erasecoredump", EraseCoreDump, 0},
    {"-gettrace", GetTrace, 0},
    {"-healthlogs", NotSupported<0>, 1},
    {"-portprop", GetPortProperties, 0},
    {"-getccr", GetCcrStatus, 0},
    {"-getpos", GetPowerOnSense, 0},
    {"-rxeq", RxEqStatus, 0},
    {"-txcoeff", TxCoefficients, 0},
    {"-sweye", NotSupported<9>, 0},
    {"-hweye", HardwareEyeScan, 0},
    {"-gethealth", NotSupported<0>, 0},
    {"-getswlogs", NotSupported<9>, 0},
    {"-getlmcap", LaneMarginCapabilities, 0},
    {"-perflm", LaneMarginRun, 0},
    {"-healthcheck", NotSupported<9>, 0},
    {"-ltssm", LtssmPoll, 0},
    {"-swperf", PortPerformanceTest, 0},
    {"-ltssmtrace", LtssmTrace, 0},
    {"-swerr", GetPortErrors, 0},
    {"-swpktramerr", GetPacketRamErrors, 0},
    {"-resetpktramerr", ResetPacketRamErrors, 0},
    {"-resetporterr", ResetPortErrors, 0},
    {"-ver", GetVersions, 0},
    {"-prbs", PrbsTest, 0},
    {"-bindoption", BindVdsp, 0},
    {"-spdminfo", GetSpdmInfo, 0},
    {"-spdmslotinfo", GetSpdmSlotInfo, 0},
    {"-spdmexport", SpdmExportCsr, 0},
    {"-spdmimport", SpdmImportCertificate, 0},
    {"-spdmread", SpdmReadCertificate, 0},
    {"-spdmsltmgmt", SpdmInvalidateSlot, 0},
    {"-getdecodedtrace", GetDecodedTrace, 0},
    {"-GetErrInj", GetErrInjection, 0},
    {"-SetErrInj", SetErrInjection, 0},
    {"-downloadusd", DownloadUnitSpecificData, 0},
    {"-uploadusd", UploadUnitSpecificData, 0},
    {"-SetHealthCfg", SetHealthConfig, 0},
    {"-GetHealthCfg", GetHealthConfig, 0},
    {"-swsettime", SetSwitchTime, 0},
    {"-GetPciCap", GetPciCapabilities, 0},
    {"-trt", TlpRoundTripTime, 0},
    {"-SetTagSbTimeout", SetTagSbTimeout, 0},
    {"-GetTagSbTimeout", GetTagSbTimeout, 0},
    {"-SetCredit", SetCreditCapture, 0},
    {"-GetCredit", GetCreditCapture, 0},
    {"-setlinkdowncondition", SetLinkDownCondition, 0},
    {"-getlinkdowncondition", GetLinkDownCondition, 0},
    {"-GetSerdesInfo", SerdesInfo, 0},
    {"-GetSecBootInfo", GetSecureBootInfo, 0},
    {"-GetSpdmSecInfo", GetSpdmSecureInfo, 0},
    {"-GetDSAllDevInfo", GetDownstreamDevices, 0},
    {"-GetDebugToken", GetDebugToken, 0},
    {"-EnableDebugToken", EnableDebugToken, 0},
    {"-DisableDebugToken", DisableDebugToken, 0},
    {"-GenerateDebugToken", GenerateDebugToken, 0},
    {"-GetDebugTokenParmas", GetDebugTokenParams, 0},
    {"-HistoryBuffers", ManageHistoryBuffers, 0},
    {"-SetPerfMon", SetupPerfMonitoring, 0},
    {"-SwProp", GetSwitchProperties, 0},
    {"-sbrmfgcfg", ConfigureSbrMfg, 0},
    {"-SetSwitchLtssmMonitor", LtssmMonitorSetup, 0},
    {"-IsLtssmTriggered", LtssmMonitorQuery, 0},
    {"-GetMpiMgmtPage", GetMpiMgmtPage, 0},
    {"-SetMpiMgmtPage", SetMpiMgmtPage, 0},
    {"-GetDebugPortCap", GetDebugPortCap, 0},
    {"-GetWaferInfo", GetWaferInfo, 0},
    {"-GetPortAttr", GetPortAttributes, 0},
    {"-downloadCfgPage", DownloadCfgPage, 0},
    {"-dl", DownloadFirmware, 0},
    {"-pldm", DownloadPldmFirmware, 0},
    {nullptr, nullptr, 0},
};

uint32_t PrintUsage(PTR_ZENTREL_DEVICE, const char *const *, PTR_ZENTREL_DEVICE_INFO info) {
    printf("\n");
    printf("Usage: zentrelLibTest [option] [arg1] [arg2] ...\n");
    printf("zentrelLibTest is a demo for zentrel library, \n"
           "    which demonstrate how to combine all the APIs to fulfil your goal to debug or manage the cards,\n"
           "    zentrelLibTest support interactive mode and OneLine mode, run interactive mode without option and arg\n");
    printf("\n");
    if (info->ProductType == ZENTREL_PRODUCT_TYPE_SWITCH)
        for (const char *line : kSwitchUsage) printf("%s\n", line);
    for (const char *line : kCommonUsage) printf("%s\n", line);
    return 0;
}

int DispatchCommand(uint32_t wordCount, char **words, uint32_t *position) {
    ZENTREL_DEVICE_CONTEXT context;
    memset(&context, 0, sizeof context);
    context.Index = 0xFF;
    if (words[0] == nullptr || strcmp(words[0], "-i") != 0) {
        printf("Invalid argument, please refer to help.\n");
        return 1;
    }
    if (words[1] == nullptr) {
        printf("Please input index\n");
        return 1;
    }
    int32_t index = 0;
    int bad = ParseDecimal(words[1], &index);
    context.Index = static_cast<uint32_t>(index);
    if (bad) return 1;

    ZENTREL_STATUS status = ZentrelGetDeviceInfo(context.Index, ZENTREL_DEVICE_INFO_LENGTH, &context.Info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelGetDeviceInfo ().. Failed Status -  %x \n", status);
        return 1;
    }
    context.Handle = context.Info.Handle;
    gSelectedDeviceHandle = context.Info.Handle;

    *position += 2;
    if (*position >= wordCount) return 0;

    // The "no valid command" answer is kept for a walk that examined every
    // row, end marker included, which the walk below never does.
    const uint32_t allRows = sizeof kCommandTable / sizeof kCommandTable[0];
    uint32_t rowsExamined = 0;
    for (const CommandRow *row = kCommandTable;; ++row) {
        if (row->name == nullptr) {
            printf("invalid option %s\n", words[*position]);
            return 0;
        }
        if (strcmp(row->name, words[*position]) == 0) {
            uint32_t result = row->handler(&context, words + *position + 1, &context.Info);
            if (result != kContinue) return 0;
            *position += 1 + row->extraWords;
        }
        ++rowsExamined;
        if (*position >= wordCount) break;
    }
    if (rowsExamined == allRows) {
        printf("No valid command, please check\n");
        return 1;
    }
    return 0;
}
