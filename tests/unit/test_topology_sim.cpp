// The simulated topology: binding changes the port properties, port control
// takes links down, register writes are read back, and the downstream list
// is never written past the size the counts give. The model lives as long
// as the process, so each test puts back what it changed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <nlohmann/json.hpp>

#include "fresh_simulator.h"
#include "zentrel.h"

namespace {

class TopologySimulator : public FreshSimulator {
protected:
    ZENTREL_SWITCH_PORT_ENTRY Port(uint32_t port) {
        std::vector<uint8_t> raw(sizeof(ZENTREL_SWITCH_PORT_PROPERTIES));
        auto *p = reinterpret_cast<PTR_ZENTREL_SWITCH_PORT_PROPERTIES>(raw.data());
        EXPECT_EQ(ZentrelSwitchGetPciePortProperties(&handle_, p), ZENTREL_STATUS_SUCCESS);
        return p->Ports[port];
    }
    static bool Assigned(const ZENTREL_SWITCH_PORT_ENTRY &host, uint32_t port) {
        return (host.Role.Host.AssignedPorts[port / 8] >> (port % 8) & 1u) != 0;
    }
    uint32_t handle_ = 0x100;
};

TEST_F(TopologySimulator, ARuntimeBindMovesThePortBetweenHostPorts) {
    ASSERT_TRUE(Assigned(Port(0), 16));
    ASSERT_EQ(ZentrelSwitchPortDsVDspBind(&handle_, ZENTREL_PORT_DESCRIPTOR(0, 16), ZENTREL_PORT_DESCRIPTOR(0, 64),
                                          ZENTREL_ASSIGN_RUNTIME, 3),
              ZENTREL_STATUS_SUCCESS);
    EXPECT_FALSE(Assigned(Port(0), 16));
    EXPECT_TRUE(Assigned(Port(64), 16));
    EXPECT_EQ(Port(16).Role.Downstream.HostPort, 64);
    ZENTREL_SWITCH_HOST_PORT_VDSP_INFO info;
    ASSERT_EQ(ZentrelSwitchGetHostPortVDSPInfo(&handle_, ZENTREL_PORT_DESCRIPTOR(0, 0), &info), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(info.Entries[0].PhysicalPort, ZENTREL_VDSP_NO_PORT);  // vDSP 1 lost port 16
    ASSERT_EQ(ZentrelSwitchPortDsVDspBind(&handle_, ZENTREL_PORT_DESCRIPTOR(0, 16), ZENTREL_PORT_DESCRIPTOR(0, 0),
                                          ZENTREL_ASSIGN_RUNTIME, 1),
              ZENTREL_STATUS_SUCCESS);
    EXPECT_TRUE(Assigned(Port(0), 16));
    EXPECT_FALSE(Assigned(Port(64), 16));
}

TEST_F(TopologySimulator, AConfigurationPageBindChangesNothingAtRuntime) {
    ASSERT_EQ(ZentrelSwitchPortDsVDspBind(&handle_, ZENTREL_PORT_DESCRIPTOR(0, 20), ZENTREL_PORT_DESCRIPTOR(0, 64),
                                          ZENTREL_ASSIGN_PERSISTENT, 4),
              ZENTREL_STATUS_SUCCESS);
    EXPECT_TRUE(Assigned(Port(0), 20));
    EXPECT_FALSE(Assigned(Port(64), 20));
    ASSERT_EQ(ZentrelSwitchPortDsVDspBind(&handle_, ZENTREL_PORT_DESCRIPTOR(0, 20), ZENTREL_PORT_DESCRIPTOR(0, 0),
                                          ZENTREL_ASSIGN_PERSISTENT, 2),
              ZENTREL_STATUS_SUCCESS);
}

TEST_F(TopologySimulator, BindingRefusesOtherSwitchesPortsAndRules) {
    auto bind = [&](uint32_t ds, uint32_t host, uint32_t rule, uint16_t vdsp) {
        return ZentrelSwitchPortDsVDspBind(&handle_, ds, host, rule, vdsp);
    };
    EXPECT_NE(bind(ZENTREL_PORT_DESCRIPTOR(1, 16), ZENTREL_PORT_DESCRIPTOR(0, 64), 1, 1), ZENTREL_STATUS_SUCCESS);
    EXPECT_NE(bind(ZENTREL_PORT_DESCRIPTOR(0, 0), ZENTREL_PORT_DESCRIPTOR(0, 64), 1, 1), ZENTREL_STATUS_SUCCESS);
    EXPECT_NE(bind(ZENTREL_PORT_DESCRIPTOR(0, 16), ZENTREL_PORT_DESCRIPTOR(0, 20), 1, 1), ZENTREL_STATUS_SUCCESS);
    EXPECT_NE(bind(ZENTREL_PORT_DESCRIPTOR(0, 16), ZENTREL_PORT_DESCRIPTOR(0, 64), 0, 1), ZENTREL_STATUS_SUCCESS);
    EXPECT_NE(bind(ZENTREL_PORT_DESCRIPTOR(0, 16), ZENTREL_PORT_DESCRIPTOR(0, 64), 1, 5), ZENTREL_STATUS_SUCCESS);
}

TEST_F(TopologySimulator, ADisabledPortShowsItsLinkDownUntilEnabled) {
    ASSERT_NE(Port(40).NegotiatedLinkWidth, 0u);
    ASSERT_EQ(ZentrelSwitchControlPortDsbl(&handle_, 40), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(Port(40).NegotiatedLinkWidth, 0u);
    EXPECT_EQ(Port(40).ActiveLanes, 0u);
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS s;
    ASSERT_EQ(ZentrelSwitchGetPciPortErrorStatistics(&handle_, 40, &s), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(s.LinkSpeed, 0u);
    ASSERT_EQ(ZentrelSwitchControlPortEnbl(&handle_, 40), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(Port(40).NegotiatedLinkWidth, 2u);
}

TEST_F(TopologySimulator, ARegisterWriteIsReadBackAndChangesTheCapabilities) {
    struct {
        ZENTREL_SWITCH_PORT_CSR_ACCESS access;
        uint8_t more[4];
    } io = {};
    io.access = {16, 0, 0, 2, 2, {}, 0x11, 0x8007};
    ASSERT_EQ(ZentrelSwitchWritePortCSR(&handle_, &io.access), ZENTREL_STATUS_SUCCESS);
    io.access.Data = 0;
    io.access.DataLength = 4;
    io.access.Offset = 0;
    ASSERT_EQ(ZentrelSwitchReadPortCSR(&handle_, &io.access), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(io.access.Data, 0x80070011u);
    ZENTREL_SWITCH_PCI_CAPABILITIES caps;
    ASSERT_EQ(ZentrelSwitchGetPciCapabilities(&handle_, 16, &caps), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(caps.MsiX, 1);
    io.access = {16, 0, 0, 2, 2, {}, 0x11, 0x0007};
    ASSERT_EQ(ZentrelSwitchWritePortCSR(&handle_, &io.access), ZENTREL_STATUS_SUCCESS);
    // Beyond the capability's registers, or a capability the port lacks.
    io.access.Offset = 0x3E;
    io.access.DataLength = 4;
    EXPECT_NE(ZentrelSwitchReadPortCSR(&handle_, &io.access), ZENTREL_STATUS_SUCCESS);
    io.access = {0, 1, 0, 4, 4, {}, 0x1D, 0};
    EXPECT_NE(ZentrelSwitchReadPortCSR(&handle_, &io.access), ZENTREL_STATUS_SUCCESS);
}

TEST_F(TopologySimulator, TheLinkStatusRegisterFollowsThePortModel) {
    ZENTREL_SWITCH_PORT_CSR_ACCESS a = {40, 0, 0, 4, 0x10, {}, 0x10, 0};
    ASSERT_EQ(ZentrelSwitchReadPortCSR(&handle_, &a), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(a.Data, 0x00230000u);  // Gen3 x2
    ASSERT_EQ(ZentrelSwitchControlPortDsbl(&handle_, 40), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchReadPortCSR(&handle_, &a), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(a.Data, 0x00000010u);  // link disabled, no link
    ASSERT_EQ(ZentrelSwitchControlPortEnbl(&handle_, 40), ZENTREL_STATUS_SUCCESS);
}

TEST_F(TopologySimulator, TheListIsWrittenWithinTheSizeTheCountsGive) {
    ZENTREL_DS_DEVICE_COUNT counts;
    std::vector<uint8_t> countBuffer(ZENTREL_DS_COUNT_BUFFER_LENGTH);
    ASSERT_EQ(ZentrelSwitchGetDSAllDeviceInfo(&handle_, ZENTREL_DS_SELECT_COUNT, countBuffer.data()),
              ZENTREL_STATUS_SUCCESS);
    memcpy(&counts, countBuffer.data(), sizeof counts);
    size_t length = ZENTREL_DS_LIST_LENGTH(counts.TotalPorts, counts.TotalDevices, counts.PortsWithDevices);
    // A guard area behind the buffer must stay untouched.
    std::vector<uint8_t> list(length + 64, 0xA5);
    ASSERT_EQ(ZentrelSwitchGetDSAllDeviceInfo(&handle_, ZENTREL_DS_SELECT_ALL, list.data()), ZENTREL_STATUS_SUCCESS);
    for (size_t i = length; i < list.size(); ++i) ASSERT_EQ(list[i], 0xA5) << i;
    uint32_t blocks = 0;
    memcpy(&blocks, list.data(), sizeof blocks);
    EXPECT_EQ(blocks, counts.TotalPorts);
}

TEST_F(TopologySimulator, AllPortsNeedRoomForEveryEntry) {
    std::vector<uint8_t> raw(ZENTREL_PORT_ATTR_RESP_LENGTH(2));
    auto *resp = reinterpret_cast<PTR_ZENTREL_SWITCH_GET_PORT_ATTR_RESP>(raw.data());
    ZENTREL_SWITCH_GET_PORT_ATTR_REQ req = {};
    req.RequestKind = ZENTREL_PORT_ATTR_ALL;
    req.NumPorts = 2;
    EXPECT_EQ(ZentrelSwitchGetPortAttr(&handle_, &req, resp), ZENTREL_STATUS_PORT_ATTR_TOO_MANY);
    EXPECT_EQ(resp->TotalPorts, 12u);
    EXPECT_EQ(resp->NumEntries, 0u);
}

// Bindings, port enables and register writes are written to the state
// file and read back by the next run (on the second switch, which the
// other tests leave alone; everything is put back at the end).
TEST_F(TopologySimulator, BindingsEnablesAndRegisterWritesLastAcrossRuns) {
    char path[] = "/tmp/zentrel-topology-state-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    unlink(path);
    setenv("ZENTREL_SIM_STATE", path, 1);
    ZentrelExit();
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    handle_ = 0x101;
    const uint32_t host = ZENTREL_PORT_DESCRIPTOR(1, 0);
    ASSERT_EQ(ZentrelSwitchPortDsVDspUnbind(&handle_, host, ZENTREL_ASSIGN_RUNTIME, 3), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchControlPortDsbl(&handle_, 36), ZENTREL_STATUS_SUCCESS);
    ZENTREL_SWITCH_PORT_CSR_ACCESS write = {0, 0, 0, 1, 2, {}, 0x05, 0x81};  // MSI enable on the host port
    ASSERT_EQ(ZentrelSwitchWritePortCSR(&handle_, &write), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);

    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    nlohmann::json saved = nlohmann::json::parse(text.str(), nullptr, false);
    ASSERT_TRUE(saved.is_object());
    nlohmann::json &runtime = saved["devices"]["0x101"]["runtime"];
    EXPECT_EQ(runtime["disabledPorts"], nlohmann::json::array({36}));
    EXPECT_EQ(runtime["csrWrites"].size(), 1u);
    EXPECT_FALSE(saved["devices"]["0x101"].contains("flash"));  // a runtime unbind only

    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    EXPECT_FALSE(Assigned(Port(0), 48));
    EXPECT_EQ(Port(36).NegotiatedLinkWidth, 0u);
    ZENTREL_SWITCH_PCI_CAPABILITIES caps = {};
    ASSERT_EQ(ZentrelSwitchGetPciCapabilities(&handle_, 0, &caps), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(caps.Msi, 1);  // the written enable bit

    ASSERT_EQ(ZentrelSwitchPortDsVDspBind(&handle_, ZENTREL_PORT_DESCRIPTOR(1, 48), host, ZENTREL_ASSIGN_RUNTIME, 3),
              ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchControlPortEnbl(&handle_, 36), ZENTREL_STATUS_SUCCESS);
    write.Data = 0x80;  // the host port's MSI as it was: 64-bit capable, not enabled
    ASSERT_EQ(ZentrelSwitchWritePortCSR(&handle_, &write), ZENTREL_STATUS_SUCCESS);
    ZentrelExit();
    unsetenv("ZENTREL_SIM_STATE");
    unlink(path);
    std::string lock = std::string(path) + ".lock";
    unlink(lock.c_str());
}

}  // namespace
