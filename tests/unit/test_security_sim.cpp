// The simulated SPDM slots: what import, read and invalidate change, and
// that the slots are kept in the state file from one run to the next.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "zentrel.h"

namespace {

std::string TempPath(const char *name) {
    char dir[] = "/tmp/zentrel-sec-XXXXXX";
    EXPECT_NE(mkdtemp(dir), nullptr);
    return std::string(dir) + "/" + name;
}

void WriteFile(const std::string &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

uint32_t gSwitch0 = 0x100;

uint8_t SlotFlags(uint8_t slot) {
    ZENTREL_SWITCH_SPDM_INFO info;
    EXPECT_EQ(ZentrelSwitchGetSPDMInfo(&gSwitch0, &info), ZENTREL_STATUS_SUCCESS);
    return info.Slots[slot].Flags;
}

class SpdmSlots : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        state_ = TempPath("state.json");
        setenv("ZENTREL_SIM_STATE", state_.c_str(), 1);
        ZentrelExit();
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    }
    void TearDown() override {
        ZentrelExit();
        unsetenv("ZENTREL_SIM_STATE");
    }
    std::string state_;
};

TEST_F(SpdmSlots, AnImportedCertificateIsKeptAcrossRuns) {
    std::string cert = TempPath("cert.der"), back = TempPath("back.der");
    const std::string der("\x30\x82\x00\x04\x02\x02\x01\x01", 8);  // long-form length
    WriteFile(cert, der);
    ASSERT_EQ(ZentrelSwitchSPDMImportCertificate(&gSwitch0, 1, 0, cert.c_str()), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(SlotFlags(1), ZENTREL_SPDM_SLOT_OCCUPIED);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);  // writes the state file
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(SlotFlags(1), ZENTREL_SPDM_SLOT_OCCUPIED);
    ASSERT_EQ(ZentrelSwitchSPDMReadSlotCertificate(&gSwitch0, 1, 0, back.c_str()), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(ReadFile(back), der);
}

TEST_F(SpdmSlots, AnInvalidatedSlotStaysEmptyAcrossRuns) {
    ASSERT_EQ(ZentrelSwitchSPDMSlotManagement(&gSwitch0, 2, 1), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(SlotFlags(2), 0);
    EXPECT_EQ(ZentrelSwitchSPDMReadSlotCertificate(&gSwitch0, 2, 1, TempPath("x.der").c_str()), 0x13u);
}

TEST_F(SpdmSlots, OnlyOneDerSequenceOfTheFilesLengthIsTaken) {
    std::string cert = TempPath("cert.der");
    for (const std::string &bad : {std::string("\x31\x00", 2), std::string("\x30\x80\x00\x00", 4),
                                   std::string("\x30\x01", 2), std::string("\x30\x00\x00", 3),
                                   std::string("\x30\x83\x00\x00\x00", 5), std::string("\x30", 1)}) {
        WriteFile(cert, bad);
        EXPECT_EQ(ZentrelSwitchSPDMImportCertificate(&gSwitch0, 3, 1, cert.c_str()), 0x11u) << bad.size();
    }
    WriteFile(cert, std::string(4097, '\0'));
    EXPECT_EQ(ZentrelSwitchSPDMImportCertificate(&gSwitch0, 3, 1, cert.c_str()), 0x11u);
    EXPECT_EQ(ZentrelSwitchSPDMImportCertificate(&gSwitch0, 3, 1, "/tmp"), 0x10u);  // a directory
    EXPECT_EQ(SlotFlags(3), 0);
}

}  // namespace
