// LTSSM state names over every 12-bit code, the byte-size formatter and
// the performance tables' display.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "capture.h"
#include "link/link.h"

namespace {

// The named states, written as each major state's prefix and its sub-states,
// so that the lookup table of the utility is checked against another shape.
struct Major {
    uint32_t code;
    const char *prefix;
    std::vector<std::pair<uint32_t, const char *>> subStates;
};

std::map<uint32_t, std::string> ExpectedNames() {
    const std::vector<Major> majors = {
        {0x0, "Detect.", {{0x0, "Quiet"}, {0x1, "Active"}, {0x2, "Rate"}, {0x3, "Wait12ms"}, {0x4, "P1_Req"},
                          {0x5, "Donest"}, {0x6, "P0_Req"}, {0x7, "RateOk"}, {0x9, "SpcOp"}, {0xA, "DET_WAIT_P1_ST"},
                          {0xB, "DET_WAIT_RATE_ST"}}},
        {0x1, "Polling.", {{0x01, "P0_Req"}, {0x03, "Active"}, {0x06, "Done"}, {0x07, "Config"}, {0x0A, "TxEIOS"},
                           {0x0B, "Compliance"}, {0x0E, "EIdle"}, {0x0F, "Speed"}}},
        {0x2, "CFG.", {{0x00, "Idle"}, {0x01, "LW_Start_Dn"}, {0x02, "LN_Wait_Dn"}, {0x03, "LW_Accept_Dn"},
                       {0x04, "TxIdle"}, {0x06, "LN_Accept_Dn"}, {0x07, "Complete_Dn"}, {0x08, "LN_Wait_Up"},
                       {0x0C, "LN_Accept_Up"}, {0x0E, "Done_St"}, {0x0F, "TxCtlSkip"}, {0x10, "LW_Start_Up"},
                       {0x11, "XLinkArb_Won"}, {0x14, "TxSDSM"}, {0x18, "LW_Accept_Up"}, {0x1C, "Complete_Up"}}},
        {0x3, "", {{0x00, "L0_Idle"}, {0x01, "L0"}, {0x02, "L0s"}, {0x03, "L0_TxEIOS"}, {0x04, "LinkDown"},
                   {0x05, "LDWait"}, {0x07, "L1"}, {0x09, "L0_Recovery"}, {0x0B, "L2"}, {0x0D, "ActRec"}}},
        {0x4, "Recovery.", {{0x00, "Idle"}, {0x01, "RcvrLock"}, {0x02, "TxEIOS"}, {0x03, "RcvrCfg"}, {0x05, "EqPh1_Dn"},
                            {0x07, "Speed"}, {0x08, "TxEIEOS"}, {0x09, "Reset"}, {0x0A, "Disable"}, {0x0B, "TxIdle"},
                            {0x0C, "ErrCfg"}, {0x0D, "TxSDSM"}, {0x0E, "ErrDet"}, {0x0F, "Loopback"},
                            {0x10, "EqPh3_Up"}, {0x11, "EqPh0_Up"}, {0x15, "EqPh2_Dn"}, {0x17, "EqPh3_Dn"},
                            {0x18, "EqPh2_Up"}, {0x19, "EqPh1_Up"}, {0x1E, "TxCtlSKP"}, {0x1F, "MyEqPhase"}}},
        {0x5, "LB_", {{0x0, "Idle"}, {0x1, "Entry"}, {0x4, "SlvEntry"}, {0x6, "TxEIOS"}, {0x9, "ActMst"},
                      {0xA, "ActSlv"}, {0xB, "ExitSt"}, {0xC, "Speed"}, {0xF, "Eidle"}}},
        {0x6, "HR_", {{0x0, "Idle"}, {0x1, "Dir"}, {0x2, "Rcv"}, {0x3, "Tx"}, {0x4, "TxEIOS_1"}, {0x5, "TxEIEOS"},
                      {0x6, "RcvWait"}, {0x7, "TxEIOS"}}},
        {0x7, "DISABLE_", {{0x0, "Idle"}, {0x1, "TxTS1"}, {0x3, "TxEIOS"}, {0x4, "Done"}, {0x6, "P1_Req"},
                           {0x7, "WaitEIOS"}, {0x9, "TxEIEOS"}, {0xE, "RateOk"}, {0xF, "Rate"}}},
        {0x8, "LP_", {{0x0, "Idle"}, {0x1, "L0sEntry"}, {0x2, "L0sIdle"}, {0x3, "L0sTxFTS"}, {0x4, "L0sTxSKP"},
                      {0xA, "L0sTxEIE"}, {0xC, "L0sTxSDSM"}}},
        {0x9, "LP_", {{0x0, "Idle"}, {0x5, "L1RxEIOS"}, {0x6, "L1Idle"}}},
        {0xA, "LP_", {{0x0, "Idle"}, {0x8, "L2RxEIOS"}, {0x9, "L2Rate"}, {0xD, "L2RateOk"}, {0xF, "L2Idle"}}},
    };
    std::map<uint32_t, std::string> names;
    for (const Major &m : majors)
        for (const auto &sub : m.subStates) names[m.code << 8 | sub.first] = std::string(m.prefix) + sub.second + " ";
    return names;
}

std::string Name(uint32_t code) {
    char buffer[kLtssmNameSize];
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(LtssmStateName(code, buffer), 0u);
    EXPECT_NE(memchr(buffer, '\0', sizeof buffer), nullptr);
    return buffer;
}

TEST(LtssmStateName, EveryTwelveBitCode) {
    const std::map<uint32_t, std::string> expected = ExpectedNames();
    ASSERT_EQ(expected.size(), 108u);
    size_t unknown = 0;
    for (uint32_t code = 0; code < 0x1000; ++code) {
        auto it = expected.find(code);
        std::string name = Name(code);
        if (it == expected.end()) {
            EXPECT_EQ(name, "Unknown State ") << std::hex << code;
            ++unknown;
        } else {
            EXPECT_EQ(name, it->second) << std::hex << code;
        }
        ASSERT_GE(name.size(), 2u);
        EXPECT_EQ(name.back(), ' ');
        EXPECT_NE(name[name.size() - 2], ' ');
        EXPECT_LT(name.size(), kLtssmNameSize);
    }
    EXPECT_EQ(unknown, 4096u - 108u);
}

TEST(LtssmStateName, OnlyTheLowTwelveBitsCount) {
    EXPECT_EQ(Name(0x1301), "L0 ");
    EXPECT_EQ(Name(0x40301), "L0 ");
    EXPECT_EQ(Name(0x20301), "L0 ");
    EXPECT_EQ(Name(0xFFFFF103), "Polling.Active ");
    EXPECT_EQ(Name(0x1008), "Unknown State ");
}

TEST(LtssmStateName, TheLongestNameFillsTwentyFiveBytesAndLeavesTheRest) {
    char buffer[40];
    memset(buffer, 'x', sizeof buffer);
    LtssmStateName(0x00B, buffer);
    EXPECT_STREQ(buffer, "Detect.DET_WAIT_RATE_ST ");
    EXPECT_EQ(strlen(buffer) + 1, kLtssmNameSize);
    for (size_t i = kLtssmNameSize; i < sizeof buffer; ++i) EXPECT_EQ(buffer[i], 'x');
}

std::string Size(uint64_t bytes) {
    char text[100];
    memset(text, 'x', sizeof text);
    EXPECT_EQ(FormatByteSize(bytes, text, sizeof text), 0u);
    for (size_t i = strlen(text); i < sizeof text; ++i) EXPECT_EQ(text[i], '\0');
    return text;
}

TEST(FormatByteSize, UnitsAndUnpaddedHundredths) {
    EXPECT_EQ(Size(0), "0 B");
    EXPECT_EQ(Size(1023), "1023 B");
    EXPECT_EQ(Size(1024), "1.0 KiB");
    EXPECT_EQ(Size(1075), "1.4 KiB");
    EXPECT_EQ(Size(1536), "1.50 KiB");
    EXPECT_EQ(Size(1048575), "1023.99 KiB");
    EXPECT_EQ(Size(1ULL << 20), "1.0 MiB");
    EXPECT_EQ(Size((1ULL << 30) * 3 / 2), "1.50 GiB");
    EXPECT_EQ(Size(1ULL << 40), "1.0 TiB");
    EXPECT_EQ(Size(UINT64_MAX), "16777215.99 TiB");
}

TEST(PrintPortPerformance, ValidPortsOnlyWithStatisticsOnRequest) {
    auto record = std::make_unique<ZENTREL_SWITCH_PCIE_PORT_PERFORMANCE>();
    memset(record.get(), 0, sizeof *record);
    record->Operation = ZENTREL_PERF_OP_READ32;
    ZENTREL_PORT_PERF_ENTRY32 &e = record->Ports32[7];
    e.Valid = 1;
    for (uint32_t i = 0; i < ZENTREL_PERF_COUNTER_COUNT; ++i) {
        e.PreIngress[i] = i;
        e.Ingress[i] = 0x10 + i;
        e.PreEgress[i] = 0x100 + i;
        e.Egress[i] = 0xFFFFFFF0u + i;
    }
    e.IngressStatistic.LinkUtilization = 1205;
    e.IngressStatistic.TotalData = 1075;
    e.EgressStatistic.LinkUtilization = 5;
    const std::string header =
        "Port                PH        PDW        NPH        NPDW        CplH        CplDW      DLLP\n\n";
    std::string counters = "Pre-counter\n" + header +
                           "  7 Ing              0          1          2          3          4          5          6\n"
                           "  7 Eg             100        101        102        103        104        105        106\n\n"
                           "Current counter\n" + header +
                           "  7 Ing             10         11         12         13         14         15         16\n"
                           "  7 Eg        fffffff0   fffffff1   fffffff2   fffffff3   fffffff4   fffffff5   fffffff6\n\n";
    EXPECT_EQ(Captured([&] { PrintPortPerformance(nullptr, record.get()); }), counters);

    record->Flags = ZENTREL_PERF_FLAG_STATISTIC;
    std::string out = Captured([&] { PrintPortPerformance(nullptr, record.get()); });
    const std::string headers = "Port                Link        Total        Total        Payload        Payload        Payload\n"
                                "Port                Util        Data         Rate         Total          Rate           Avg/TLP\n";
    EXPECT_EQ(out, counters + "Statistic\n" + headers +
                       "  7 Ing            1205          1075             0             0             0             0  \n"
                       "  7 Eg                5             0             0             0             0             0  \n\n" +
                       "Statistic Friendly Display\n" + headers +
                       "  7 Ing           12.5%     1.4 KiB         0 B/S         0 B         0 B/S         0 B  \n"
                       "  7 Eg             0.5%         0 B         0 B/S         0 B         0 B/S         0 B  \n\n");

    record->Operation = ZENTREL_PERF_OP_STOP;
    EXPECT_EQ(Captured([&] { PrintPortPerformance(nullptr, record.get()); }), "");
}

}  // namespace
