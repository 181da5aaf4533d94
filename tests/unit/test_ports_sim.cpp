// The simulated ports: what a reset clears and keeps, the ports a switch
// does not have, and resets that last from one run to the next through the
// state file.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

#include "zentrel.h"

namespace {

class PortsSimulator : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        unsetenv("ZENTREL_SIM_STATE");
        ZentrelExit();
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    }
    void TearDown() override {
        ZentrelExit();
        unsetenv("ZENTREL_SIM_STATE");
    }
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS Stats(uint32_t port, ZENTREL_STATUS expected = ZENTREL_STATUS_SUCCESS) {
        ZENTREL_SWITCH_PORT_ERROR_STATISTICS s;
        memset(&s, 0, sizeof s);
        EXPECT_EQ(ZentrelSwitchGetPciPortErrorStatistics(&handle_, port, &s), expected);
        return s;
    }
    uint32_t handle_ = 0x100;
};

TEST_F(PortsSimulator, AResetClearsCountersAndStatusButKeepsMasksAndSeverity) {
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS before = Stats(40);
    EXPECT_NE(before.PortReceiverErrors, 0u);
    EXPECT_NE(before.CorrectableStatus, 0u);
    ASSERT_EQ(ZentrelSwitchResetPciPortErrorStatistics(&handle_, 40), ZENTREL_STATUS_SUCCESS);
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS after = Stats(40);
    EXPECT_EQ(after.PortReceiverErrors, 0u);
    EXPECT_EQ(after.BadDllpErrors, 0u);
    EXPECT_EQ(after.RecoveryDiagnosticsErrors, 0u);
    EXPECT_EQ(after.LinkDownCount, 0u);
    EXPECT_EQ(after.ErrorStatus, 0u);
    EXPECT_EQ(after.CorrectableStatus, 0u);
    EXPECT_EQ(after.FramingStatus, 0u);
    EXPECT_EQ(after.UncorrectableSeverity, before.UncorrectableSeverity);
    EXPECT_EQ(after.UncorrectableMask, before.UncorrectableMask);
    EXPECT_EQ(after.CorrectableMask, before.CorrectableMask);
    EXPECT_EQ(after.AdvCapControl, before.AdvCapControl);
    EXPECT_EQ(after.LinkSpeed, before.LinkSpeed);
    // Another port keeps its counters.
    EXPECT_NE(Stats(16).PortReceiverErrors, 0u);
}

TEST_F(PortsSimulator, PortsTheSwitchDoesNotHaveAnswerStatus2) {
    Stats(1, 0x2);
    Stats(144, 0x2);
    EXPECT_EQ(ZentrelSwitchResetPciPortErrorStatistics(&handle_, 1), 0x2u);
    EXPECT_EQ(ZentrelSwitchResetPciPortErrorStatistics(&handle_, 0xFFFFFFFFu), 0x2u);
    ZENTREL_SWITCH_PORT_PROPERTIES *p = new ZENTREL_SWITCH_PORT_PROPERTIES;
    EXPECT_EQ(ZentrelSwitchGetSinglePortPciePortProperties(&handle_, 144, p), 0x2u);
    EXPECT_EQ(ZentrelSwitchGetSinglePortPciePortProperties(&handle_, 1, p), 0x2u);
    // The second switch is smaller: port 96 of the first has no match there.
    uint32_t second = 0x101;
    EXPECT_EQ(ZentrelSwitchGetSinglePortPciePortProperties(&handle_, 96, p), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(ZentrelSwitchGetSinglePortPciePortProperties(&second, 96, p), 0x2u);
    delete p;
}

TEST_F(PortsSimulator, TheTopologyIsConsistentAcrossCalls) {
    ZENTREL_SWITCH_PORT_PROPERTIES *p = new ZENTREL_SWITCH_PORT_PROPERTIES;
    ASSERT_EQ(ZentrelSwitchGetPciePortProperties(&handle_, p), ZENTREL_STATUS_SUCCESS);
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        const ZENTREL_SWITCH_PORT_ENTRY &e = p->Ports[port];
        ZENTREL_SWITCH_PORT_ERROR_STATISTICS s = Stats(port, e.Valid != 0 ? 0u : 0x2u);
        if (e.Valid == 0) continue;
        EXPECT_EQ(e.PortNumber, port);
        EXPECT_EQ(s.StationNumber, port / 16);
        EXPECT_EQ(s.StationPort, port % 16);
        EXPECT_EQ(s.GlobalId, e.Gid);
        EXPECT_EQ(s.LinkSpeed, e.NegotiatedLinkWidth != 0 ? e.NegotiatedLinkSpeed : 0u);
        // A downstream port's host port lists it as assigned.
        if (e.PortType == ZENTREL_PORT_TYPE_DOWNSTREAM || e.PortType == ZENTREL_PORT_TYPE_DOWNSTREAM_ALT) {
            const ZENTREL_SWITCH_PORT_ENTRY &host = p->Ports[e.Role.Downstream.HostPort];
            EXPECT_TRUE(host.PortType == ZENTREL_PORT_TYPE_HOST || host.PortType == ZENTREL_PORT_TYPE_HOST_ALT);
            EXPECT_TRUE(host.Role.Host.AssignedPorts[port / 8] >> (port % 8) & 1u) << port;
        }
    }
    delete p;
}

TEST_F(PortsSimulator, APacketRamResetClearsEveryCounterButNotTheValidBits) {
    ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT count;
    ASSERT_EQ(ZentrelSwitchPacketRamSoftErrorCount(&handle_, &count), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(count.Stations[1].PayloadRam0[0], 2u);
    ASSERT_EQ(ZentrelSwitchResetPacketRamSoftErrorCount(&handle_), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchPacketRamSoftErrorCount(&handle_, &count), ZENTREL_STATUS_SUCCESS);
    for (uint32_t s = 0; s < ZENTREL_PKT_RAM_STATIONS; ++s) {
        const uint32_t *words = reinterpret_cast<const uint32_t *>(&count.Stations[s]);
        EXPECT_EQ(words[0], s < 9 ? ZENTREL_PKT_RAM_STATION_VALID : 0u);
        for (int w = 1; w < 21; ++w) EXPECT_EQ(words[w], 0u) << "station " << s << " word " << w;
    }
}

std::string ReadAll(const char *path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// A reset is written to the state file as the run ends, and a state file's
// counters are what the next run reads. (The second switch: the model lives
// as long as the process, and the other tests change the first.)
TEST_F(PortsSimulator, ResetsLastAcrossRunsThroughTheStateFile) {
    char path[] = "/tmp/zentrel-ports-state-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    unlink(path);
    setenv("ZENTREL_SIM_STATE", path, 1);
    ZentrelExit();
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    handle_ = 0x101;
    ASSERT_NE(Stats(36).PortReceiverErrors, 0u);
    ASSERT_EQ(ZentrelSwitchResetPciPortErrorStatistics(&handle_, 36), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);
    // The file holds what the run changed: the second switch's counters.
    nlohmann::json saved = nlohmann::json::parse(ReadAll(path), nullptr, false);
    ASSERT_TRUE(saved.is_object());
    nlohmann::json &errors = saved["devices"]["0x101"]["runtime"]["portErrors"];
    ASSERT_TRUE(errors.is_array());
    EXPECT_FALSE(saved["devices"].contains("0x100"));

    // The next run takes port 48's link-down count from the file, and port
    // 36 stays reset.
    bool found = false;
    for (nlohmann::json &entry : errors)
        if (entry["port"] == 48) {
            EXPECT_EQ(entry["linkDownCount"], 2);
            entry["linkDownCount"] = 5;
            found = true;
        }
    ASSERT_TRUE(found);
    std::ofstream(path) << saved.dump();
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(Stats(48).LinkDownCount, 5u);
    EXPECT_EQ(Stats(36).PortReceiverErrors, 0u);
    ZentrelExit();
    unlink(path);
    std::string lock = std::string(path) + ".lock";
    unlink(lock.c_str());
}

}  // namespace
