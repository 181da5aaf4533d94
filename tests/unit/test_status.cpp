// Status handlers called in ways no command line produces: GPIO control
// with a word list, the CCR reads with no word list at all, and the results
// of the menu-only register reads, which the menu never looks at.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "frontend/input.h"
#include "capture.h"
#include "status/status.h"

namespace {

// The first simulated switch, through a one-shot device context.
class StatusHandlers : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");  // the default switches
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
        context_.Handle = 0x100;
        context_.Info.Handle = 0x100;
    }
    void TearDown() override {
        ZentrelExit();
        if (saved_ != nullptr) {
            fclose(stdin);
            stdin = saved_;
        }
    }
    void Feed(const std::string &text) {
        text_ = text;
        saved_ = stdin;
        stdin = fmemopen(text_.data(), text_.size(), "r");
        ASSERT_NE(stdin, nullptr);
    }
    void DrivePinHigh(uint8_t pin) {
        ZENTREL_SWITCH_GPIO_CTRL_REQ request = {};
        ZENTREL_SWITCH_GPIO_CTRL_RESP response = {};
        request.Opcode = ZENTREL_GPIO_SET_OUTPUT;
        request.Pin = pin;
        request.Data = 1;
        EXPECT_EQ(ZentrelSwitchHandleGpioCtrlCmd(&context_, &request, &response), ZENTREL_STATUS_SUCCESS);
    }
    // Bit 0 the level, bit 1 the direction, as the switch reports them.
    uint8_t PinStatus(uint8_t pin) {
        ZENTREL_SWITCH_GPIO_CTRL_REQ request = {};
        ZENTREL_SWITCH_GPIO_CTRL_RESP response = {};
        request.Opcode = ZENTREL_GPIO_GET_STATUS;
        request.Pin = pin;
        EXPECT_EQ(ZentrelSwitchHandleGpioCtrlCmd(&context_, &request, &response), ZENTREL_STATUS_SUCCESS);
        return response.Data;
    }
    ZENTREL_DEVICE_CONTEXT context_ = {};
    std::string text_;
    FILE *saved_ = nullptr;
};

TEST_F(StatusHandlers, GpioControlWithWordsDrivesPinZeroLowWithoutAsking) {
    const char *const someWords[] = {"3", "5", nullptr};
    const char *const noWords[] = {nullptr};
    for (const char *const *words : {someWords, noWords}) {
        Feed("3\n5\n");
        DrivePinHigh(0);
        ASSERT_EQ(PinStatus(0), ZENTREL_GPIO_STATUS_OUTPUT | ZENTREL_GPIO_STATUS_LEVEL);
        uint32_t result = 9;
        EXPECT_EQ(Captured([&] { result = GpioControl(&context_, words, &context_.Info); }),
                  "Gpio Ctrl is successful\nOpcode =0\nGPIO pin number =0\n");
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(PinStatus(0), ZENTREL_GPIO_STATUS_OUTPUT);  // driven low now
        int32_t unread = 0;
        EXPECT_EQ(ScanDecimal(&unread), 1);  // no answer was taken
        EXPECT_EQ(unread, 3);
        fclose(stdin);
        stdin = saved_;
        saved_ = nullptr;
    }
}

TEST_F(StatusHandlers, CcrReadsTakeANullWordList) {
    uint32_t result = 9;
    std::string out = Captured([&] { result = GetCcrStatus(&context_, nullptr, &context_.Info); });
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(out.rfind("---- CCR Status ----\nS0PcePerstN = 1\n", 0), 0u) << out;
    out = Captured([&] { result = GetPowerOnSense(&context_, nullptr, &context_.Info); });
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(out.rfind("---- Power On Sense ----\nSBRCsSel = SPI_FLASH_CS_N\n", 0), 0u) << out;
}

TEST_F(StatusHandlers, RegisterReadsReturnTheLibraryStatus) {
    EXPECT_EQ(Captured([&] { EXPECT_EQ(GetSysErrStatus(&context_), ZENTREL_STATUS_SUCCESS); })
                  .rfind("CCR System Error Status register:\n", 0),
              0u);
    EXPECT_EQ(Captured([&] { EXPECT_EQ(GetGpioSpareState(&context_), ZENTREL_STATUS_SUCCESS); })
                  .rfind("Switch GPIO Spare State information:\n", 0),
              0u);
    // A handle no switch has: the simulator answers 3.
    ZENTREL_DEVICE_CONTEXT stranger = {};
    stranger.Handle = 0x999;
    EXPECT_EQ(Captured([&] { EXPECT_EQ(GetSysErrStatus(&stranger), 3u); }),
              "Failed to get the CCR Sys Error status:0x3");
    EXPECT_EQ(Captured([&] { EXPECT_EQ(GetGpioSpareState(&stranger), 3u); }),
              "Failed to get the GPIO SPARE Info status:0x3");
}

}  // namespace
