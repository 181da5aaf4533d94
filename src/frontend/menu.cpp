#include "menu.h"

#include <cstdio>

#include "debugtoken/debugtoken.h"
#include "designed/designed.h"
#include "images/images.h"
#include "dumps/dumps.h"
#include "input.h"
#include "link/link.h"
#include "parallel.h"
#include "security/security.h"
#include "phy/phy.h"
#include "ports/ports.h"
#include "settings/settings.h"
#include "status/status.h"
#include "topology/topology.h"

namespace {

const char *const kMenuLines[] = {
    "(1) Cli                              (2) Get Temperature",
    "(3) Switch Trace                     (4) Health Logs",
    "(5) Core Dump                        (6) GetSwitchLog",
    "(7) Health Data                      (8) Health Check",
    "(9) Error Counters                   (10) Get Switch Port Properties",
    "(11) Upload SBR                      (12) Erase SBR",
    "(13) Download SBR                    (14) SBR Info",
    "(15) Get LM Capacities               (16) Lane Margining",
    "(17) Power On Sense                  (18) Switch CCR Status Data",
    "(19) Switch Rx Eq                    (20) Switch Tx Coeff",
    "(21) Hardware Eye                    (22) Software Eye",
    "(23) Memory Read                     (24) Memory Write",
    "(25) Cfg Page Read                   (26) Reset Device",
    "(27) Kavril Capture                  (28) SCSI Passthrough",
    "(29) Current LTSSM                   (30) Performance Counter",
    "(31) LTSSM trace                     (32) Packet Ram Error Detection",
    "(33) Packet Ram Soft Error Count     (34) Trap",
    "(35) PRBS                            (36) Packet Generator",
    "(37) Toggle                          (38) Reset RAM Soft Err Counters",
    "(39) Error Counters                  (40) Reset Port Err Counters",
    "(41) Fw Download                     (42) Health Check",
    "(43) DsPortAssign                    (44) DsPortUnAssign",
    "(45) DsPortAssignEn                  (46) DsPortUnAssignEn",
    "(47) Manufacturing Details           (48) SBR Version",
    "(49) DsPortBindUnbind                (50) SPDM Security Details",
    "(51) SPDM Slot Status                (52) Export SPDM Certificate",
    "(53) Import SPDM Certificate         (54) Read SPDM Certificate",
    "(55) Invalidate slot                 (56) Read Host port vDSP Information",
    "(57) Get Decoded Trace buffer        (58) Set Async Command Timeout",
    "(59) Read Port CSR                   (60) Write Port CSR",
    "(61) Port Control                    (62) Get GPIO Spare State Details ",
    "(63) Get Manufacturing Information   (64) Get CCR Sys Err Status",
    "(65) Get Error Injection Information (66) Set Error Injection ",
    "(67) Get Ptrace Device list          (68) Print capabilities (Capture, Filter, Trigger and Condition)",
    "(69) Change PID                      (70) Capture Settings (Get)",
    "(71) Filter Settings (Get)           (72) Condition Settings (Get)",
    "(73) Trigger Settings (Get)          (74) Set Settings (Using INI)",
    "(75) Gang Start/Stop                 (76) Capture Summary",
    "(77) Wait for trigger                (78) Capture Data Receive (Full)",
    "(79) Ping Device                     (80) Download Unit Specific Data",
    "(81) Upload Unit Specific Data       (82) Set health config",
    "(83) Get health config               (84) Set Switch Time",
    "(85) Show PCI Capabilities           (86) TLP Round Trip Time",
    "(87) Download PLDM firmware          (88) Set Lib Parameters",
    "(89) Get Lib Parameters              (90) Set Credit",
    "(91) Get Credit                      (92) Set Link Down Condition",
    "(93) Get Link Down Condition Status  (94) Test Parallel API Execution",
    "(95) Get Serdes Info                 (96) Get VRX Scoreboard Timeout",
    "(97) Set VRX Scoreboard Timeout      (98) Get Secure Boot Info",
    "(99) Get Spdm Secure Info            (100) Set OOB Parameters",
    "(101)Get OOB Parameters              (102) Get Downstream device info",
    "(103)Generate Debug Token            (104) Enable Debug Token",
    "(105)Disable Debug Token             (106) Get Debug Token",
    "(107)Manage History Buffer           (108) Setup Performance Monitoring",
    "(109)Switch Properties               (110) Configure SBR/MFG slots",
    "(111) Setup LTSSM Monitor            (112) LTSSM Monitor Trigger State",
    "(113) Get MPI Mgmt Access Page       (114) Set MPI Mgmt Access Page",
    "(115) Get Debug Port Capabilities    (116) Get Coredump Information",
    "(117) Get Section Based Coredump     (118) Gpio Control Command",
    "(119) Get Debug Token Params         (120) Query Host Physical Address range",
    "(121) Get Wafer Information\t\t\t (122) Erase Coredump",
    "(123) Update Trigger condition for Core Dump        (124) Get Trigger condition for Core Dump",
    "(125) Get Port Attr by BDF,Slot or Segment          (126) Set EqCtrl Command",
    "(127) Show EqCtrl Command                           (128) Write to Config Page",
};

constexpr uint32_t kOptionCount = 128;

void PrintUnsupported() {
    printf("\n Un-supported, choose right option.. \n");
}

// Runs one option. Several labels name functions this menu does not offer;
// they keep their place in the menu and answer as unsupported.
void RunOption(uint32_t choice, PTR_ZENTREL_DEVICE_INFO info) {
    // The device context of the menu is the device information itself.
    PTR_ZENTREL_DEVICE device = info;
    // An empty word list: its first entry is null.
    const char *const noWords[2] = {nullptr, nullptr};
    switch (choice) {
    case 2:
        GetTemperature(device, noWords, info);
        break;
    case 3:
        GetTrace(device, noWords, info);
        break;
    case 5:
        CaptureCoreDump(device, noWords, info);
        break;
    case 9:
    case 39:
        GetPortErrors(device, noWords, info);
        break;
    case 10:
        GetPortProperties(device, nullptr, info);
        break;
    case 15:
        LaneMarginCapabilities(device, nullptr, info);
        break;
    case 16:
        LaneMarginRun(device, nullptr, info);
        break;
    case 17:
        GetPowerOnSense(device, noWords, info);
        break;
    case 18:
        GetCcrStatus(device, noWords, info);
        break;
    case 21:
        HardwareEyeScan(device, noWords, info);
        break;
    case 23:
        SwitchMemoryReadMenu(device, noWords, info);
        break;
    case 24:
        SwitchMemoryWriteMenu(device);
        break;
    case 29:
        LtssmPollMenu(device);
        break;
    case 30:
        PortPerformanceTest(device, nullptr, info);
        break;
    case 31:
        LtssmTrace(device, nullptr, info);
        break;
    case 33:
        GetPacketRamErrors(device, noWords, info);
        break;
    case 35:
        PrbsTest(device, nullptr, info);
        break;
    case 38:
        ResetPacketRamErrors(device, noWords, info);
        break;
    case 40:
        ResetPortErrors(device, noWords, info);
        break;
    case 41:
        DownloadFirmware(device, noWords, info);
        break;
    case 48:
        GetSbrVersion(device);
        break;
    case 50:
        GetSpdmInfo(device, nullptr, info);
        break;
    case 51:
        GetSpdmSlotInfo(device, nullptr, info);
        break;
    case 52:
        SpdmExportCsr(device, nullptr, info);
        break;
    case 53:
        SpdmImportCertificate(device, nullptr, info);
        break;
    case 54:
        SpdmReadCertificate(device, nullptr, info);
        break;
    case 55:
        SpdmInvalidateSlot(device, nullptr, info);
        break;
    case 57:
        GetDecodedTrace(device, noWords, info);
        break;
    case 58:
        SetAsyncCommandTimeout(device);
        break;
    case 62:
        GetGpioSpareState(device);
        break;
    case 63:
        GetMfgInfo(device);
        break;
    case 64:
        GetSysErrStatus(device);
        break;
    case 65:
        GetErrInjection(device, nullptr, info);
        break;
    case 66:
        SetErrInjection(device, nullptr, info);
        break;
    // The labels of 67 to 78 name other functions; all of them, and 80,
    // download the unit specific data.
    case 67:
    case 68:
    case 69:
    case 70:
    case 71:
    case 72:
    case 73:
    case 74:
    case 75:
    case 76:
    case 77:
    case 78:
    case 80:
        DownloadUnitSpecificData(device, nullptr, info);
        break;
    case 81:
        UploadUnitSpecificData(device, nullptr, info);
        break;
    case 82:
        SetHealthConfig(device, nullptr, info);
        break;
    case 83:
        GetHealthConfig(device, nullptr, info);
        break;
    case 84:
        SetSwitchTime(device, nullptr, info);
        break;
    case 87:
        DownloadPldmFirmware(device, noWords, info);
        break;
    case 88:
        SetLibParameters(device);
        break;
    case 89:
        GetLibParameters(device);
        break;
    case 90:
        SetCreditCapture(device, nullptr, info);
        break;
    case 91:
        GetCreditCapture(device, nullptr, info);
        break;
    case 92:
        SetLinkDownCondition(device, nullptr, info);
        break;
    case 93:
        GetLinkDownCondition(device, nullptr, info);
        break;
    case 94:
        TestParallelApis(device);
        break;
    case 95:
        SerdesInfo(device, nullptr, info);
        break;
    case 96:
        GetTagSbTimeout(device, nullptr, info);
        break;
    case 97:
        SetTagSbTimeout(device, nullptr, info);
        break;
    case 98:
        GetSecureBootInfo(device, nullptr, info);
        break;
    case 99:
        GetSpdmSecureInfo(device, nullptr, info);
        break;
    case 100:
        SetOobParameters(device);
        break;
    case 101:
        GetOobParameters(device);
        break;
    case 103:
        GenerateDebugToken(device, nullptr, info);
        break;
    case 104:
        EnableDebugToken(device, nullptr, info);
        break;
    case 105:
        DisableDebugToken(device, nullptr, info);
        break;
    case 106:
        GetDebugToken(device, nullptr, info);
        break;
    case 110:
        ConfigureSbrMfg(device, nullptr, info);
        break;
    case 118:
        GpioControl(device, nullptr, info);
        break;
    case 115:
        GetDebugPortCap(device, nullptr, info);
        break;
    case 116:
        GetCoreDumpInfo(device);
        break;
    case 117:
        GetCoreDumpSection(device);
        break;
    case 119:
        GetDebugTokenParams(device, nullptr, info);
        break;
    case 121:
        GetWaferInfo(device, nullptr, info);
        break;
    case 122:
        EraseCoreDump(device, nullptr, info);
        break;
    case 123:
        SetCoreDumpTrigger(device, nullptr, info);
        break;
    case 124:
        GetCoreDumpTrigger(device, nullptr, info);
        break;
    case 111:
        LtssmMonitorSetup(device, nullptr, info);
        break;
    case 112:
        LtssmMonitorQuery(device, nullptr, info);
        break;
    case 128:
        DownloadCfgPage(device, nullptr, info);
        break;
    case 49:
        BindVdsp(device, nullptr, info);
        break;
    case 56:
        ReadHostPortVdspInfo(device);
        break;
    case 59:
        ReadPortCsr(device);
        break;
    case 60:
        WritePortCsr(device);
        break;
    case 61:
        ControlPort(device);
        break;
    case 85:
        GetPciCapabilities(device, nullptr, info);
        break;
    case 86:
        TlpRoundTripTime(device, nullptr, info);
        break;
    case 102:
        GetDownstreamDevices(device, nullptr, info);
        break;
    case 109:
        GetSwitchProperties(device, nullptr, info);
        break;
    case 113:
        GetMpiMgmtPage(device, nullptr, info);
        break;
    case 114:
        SetMpiMgmtPage(device, nullptr, info);
        break;
    case 125:
        GetPortAttributes(device, nullptr, info);
        break;
    case 34:
        AddressTrapMenu(device);
        break;
    case 107:
        ManageHistoryBuffers(device, nullptr, info);
        break;
    case 108:
        SetupPerfMonitoring(device, nullptr, info);
        break;
    case 120:
        HostPhysicalAddressRangesMenu(device);
        break;
    case 126:
        SetEqualizationCtrlMenu(device);
        break;
    case 127:
        ShowEqualizationCtrlMenu(device);
        break;
    case 4:
    case 43:
    case 44:
    case 45:
    case 46:
    case 47:
        printf("Un-supported \n");
        break;
    default:
        PrintUnsupported();
        break;
    }
}

}  // namespace

int RunMenu(PTR_ZENTREL_DEVICE_INFO info) {
    printf("%30s\n", "...KRVN Corvane Switch MENU...");
    for (;;) {
        printf("%30s\n", "----------------------------");
        for (const char *line : kMenuLines) printf("%s\n", line);
        FlushInput();
        uint32_t choice = 0;
        ScanDecimal(&choice);
        if (choice > kOptionCount)
            PrintUnsupported();
        else if (choice == 0)
            return 0;
        else
            RunOption(choice, info);
        printf("\n");
        printf("%30s\n", "...KRVN Corvane Switch MENU...");
    }
}
