// The simulated library's own rules, through its exported interface:
// session state, discovery matching, argument checks, the trace format and
// what it remembers between calls.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

#include "zentrel.h"

namespace {

ZENTREL_DISCOVERY_REQ Request(uint32_t address, uint16_t smbus, uint8_t bus = 0, uint8_t dev = 0, uint8_t fn = 0) {
    ZENTREL_DISCOVERY_REQ r;
    memset(&r, 0, sizeof r);
    r.FixedWord = ZENTREL_DISCOVERY_FIXED_WORD;
    r.FixedByte = ZENTREL_DISCOVERY_FIXED_BYTE;
    r.SmbusNumber = smbus;
    r.DeviceAddress = address;
    r.PcieBus = bus;
    r.PcieDevice = dev;
    r.PcieFunction = fn;
    return r;
}

// The default fleet, freshly initialised for each test.
class Simulator : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        ZentrelExit();
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    }
    void TearDown() override { ZentrelExit(); }

    // How many switches a discovery finds, and the handle of the first.
    uint32_t Found(uint32_t mode, ZENTREL_DISCOVERY_REQ request, uint32_t *firstHandle = nullptr) {
        EXPECT_EQ(ZentrelDiscoverDevices(mode, &request), ZENTREL_STATUS_SUCCESS);
        uint32_t count = 99;
        EXPECT_EQ(ZentrelGetDeviceCount(&count), ZENTREL_STATUS_SUCCESS);
        if (firstHandle != nullptr && count > 0) {
            ZENTREL_DEVICE_INFO info;
            EXPECT_EQ(ZentrelGetDeviceInfo(0, ZENTREL_DEVICE_INFO_LENGTH, &info), ZENTREL_STATUS_SUCCESS);
            *firstHandle = info.Handle;
        }
        return count;
    }
};

TEST_F(Simulator, CallsOutsideTheSessionAreRefused) {
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);
    uint32_t count = 0;
    EXPECT_EQ(ZentrelGetDeviceCount(&count), 0x4u);
    EXPECT_EQ(ZentrelExit(), 0x4u);
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(ZentrelGetDeviceCount(&count), ZENTREL_STATUS_SUCCESS);
}

TEST_F(Simulator, SmbusDiscoveryMatchesAddressAndSegment) {
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_LIST, Request(0x59, 1)), 2u);
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0x59, 2)), 0u);
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0x5A, 1)), 0u);
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0x59, 1)), 2u);
}

TEST_F(Simulator, InBandDiscoveryFindsAllOrTheOneAtALocation) {
    uint32_t handle = 0;
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0, 0), &handle), 2u);
    EXPECT_EQ(handle, 0x100u);
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0, 0, 5, 0, 0), &handle), 1u);
    EXPECT_EQ(handle, 0x101u);  // index 0 of what was found is the second switch
    EXPECT_EQ(Found(ZENTREL_DISCOVERY_MODE_ADDRESS, Request(0, 0, 5, 0, 1)), 0u);
}

TEST_F(Simulator, DiscoveryRequestsAreChecked) {
    ZENTREL_DISCOVERY_REQ r = Request(0x59, 1);
    EXPECT_EQ(ZentrelDiscoverDevices(5, &r), 0x2u);
    EXPECT_EQ(ZentrelDiscoverDevices(ZENTREL_DISCOVERY_MODE_LIST, nullptr), 0x2u);
    r.FixedWord = 0x0059;
    EXPECT_EQ(ZentrelDiscoverDevices(ZENTREL_DISCOVERY_MODE_LIST, &r), 0x2u);
}

TEST_F(Simulator, DeviceInformationNeedsItsLengthAndAFoundIndex) {
    ZENTREL_DEVICE_INFO info;
    EXPECT_EQ(ZentrelGetDeviceInfo(0, 1391, &info), 0x2u);
    EXPECT_EQ(ZentrelGetDeviceInfo(2, ZENTREL_DEVICE_INFO_LENGTH, &info), 0x2u);
    ASSERT_EQ(ZentrelGetDeviceInfo(1, ZENTREL_DEVICE_INFO_LENGTH, &info), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(info.Handle, 0x101u);
    EXPECT_EQ(info.DeviceId, 0xC034);
    EXPECT_EQ(info.DeviceGeneration, 1u);
    EXPECT_EQ(info.ProductType, ZENTREL_PRODUCT_TYPE_SWITCH);
}

TEST_F(Simulator, TheDeviceArgumentNamesASwitchByItsFirstWord) {
    uint32_t temperature = 0;
    uint32_t unknown[2] = {0x1FF, 0x100};
    uint32_t second[2] = {0x101, 0x100};
    EXPECT_EQ(ZentrelGetTemperature(unknown, &temperature), 0x3u);
    EXPECT_EQ(ZentrelGetTemperature(nullptr, &temperature), 0x2u);
    EXPECT_EQ(ZentrelGetTemperature(second, nullptr), 0x2u);
    EXPECT_EQ(ZentrelGetTemperature(second, &temperature), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(temperature, 47u);
}

TEST_F(Simulator, OobParametersReadBackAsSetPerSwitch) {
    uint32_t first = 0x100, second = 0x101;
    ZENTREL_SWITCH_OOB_PARAMS_REQ set;
    memset(&set, 0, sizeof set);
    set.CmdRespTimeout = 44;
    set.RespPollInterval = 1234;
    set.AbortRespTimeout = 7;
    set.ResetRespTimeout = 9;
    ZENTREL_SWITCH_OOB_PARAMS_RESP before, after, other;
    ASSERT_EQ(ZentrelSwitchGetOOBParams(&first, &before), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchGetOOBParams(&second, &other), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchSetOOBParams(&first, &set), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchGetOOBParams(&first, &after), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(after.CommMode, before.CommMode);
    EXPECT_EQ(after.CmdRespTimeout, 44);
    EXPECT_EQ(after.RespPollInterval, 1234);
    EXPECT_EQ(after.AbortRespTimeout, 7);
    EXPECT_EQ(after.ResetRespTimeout, 9);
    ZENTREL_SWITCH_OOB_PARAMS_RESP untouched;
    ASSERT_EQ(ZentrelSwitchGetOOBParams(&second, &untouched), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(memcmp(&untouched, &other, sizeof other), 0);
}

TEST_F(Simulator, ReadingASwitchCachesItsManufacturingInformation) {
    ZENTREL_DEVICE_INFO info;
    ZENTREL_SWITCH_MFG_INFO mfg;
    uint32_t second = 0x101;
    ASSERT_EQ(ZentrelGetDeviceInfo(0, ZENTREL_DEVICE_INFO_LENGTH, &info), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(switchMfgInfo_temp.ChipId, 0xC010);
    ASSERT_EQ(ZentrelSwitchGetMfgInfo(&second, &mfg), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(memcmp(&switchMfgInfo_temp, &mfg, sizeof mfg), 0);
    EXPECT_EQ(switchMfgInfo_temp.ChipId, 0xC034);
}

TEST_F(Simulator, TraceShowsArgumentsRequestBytesAndStatus) {
    char path[] = "/tmp/zentrel-trace-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    // The trace file is opened at the first traced call after it is named.
    setenv("ZENTREL_SIM_TRACE", path, 1);
    ZENTREL_DISCOVERY_REQ r = Request(0x59, 1, 0x12, 0x03, 0x04);
    ZentrelDiscoverDevices(ZENTREL_DISCOVERY_MODE_ADDRESS, &r);
    ZENTREL_DEVICE_INFO info;
    ZentrelGetDeviceInfo(7, 1392, &info);
    uint32_t handle = 0x100, temperature = 0;
    ZentrelGetTemperature(&handle, &temperature);
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::string trace = text.str();
    EXPECT_NE(trace.find("ZentrelDiscoverDevices(mode=4, request=[00590300 00000000 01000000 59000000 12030400]) = 0x0\n"
                         "ZentrelGetDeviceInfo(index=7, length=1392) = 0x2\n"
                         "ZentrelGetTemperature(device=0x100) = 0x0\n"),
              std::string::npos)
        << trace;
    remove(path);
}

// A state file may hold a switch the fleet does not have (the scenario
// changed); after a power cycle it is checked against a default switch
// whose every value is set, never against leftover memory.
TEST_F(Simulator, StateOfASwitchNotInTheFleetIsCheckedAfterAPowerCycle) {
    char path[] = "/tmp/zentrel-state-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const char text[] = "{\"version\": 1, \"powerCycle\": true, \"devices\": {\"0x102\": {\"flash\": {}, \"runtime\": {}}}}";
    ASSERT_EQ(write(fd, text, sizeof text - 1), static_cast<ssize_t>(sizeof text - 1));
    close(fd);
    ZentrelExit();
    setenv("ZENTREL_SIM_STATE", path, 1);
    EXPECT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    unsetenv("ZENTREL_SIM_STATE");
    remove(path);
}

}  // namespace
