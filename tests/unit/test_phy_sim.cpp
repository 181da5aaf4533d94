// The simulated lanes: an eye that opens with each poll, a PRBS checker
// that keeps sync only with a matching generator, finishes at its sample
// count and counts an injected error, and a weak lane that margins less.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "fresh_simulator.h"
#include "zentrel.h"

namespace {

class PhySimulator : public FreshSimulator {
protected:
    ZENTREL_STATUS Prbs(uint32_t operation, uint32_t lane, uint32_t invert = 0, uint16_t sampleMsb = 8) {
        ZENTREL_SWITCH_PRBS_REQ r = {};
        r.Operation = operation;
        r.Lane = lane;
        r.Pattern = 3;
        r.Rate = ZENTREL_PRBS_RATE_32G;
        r.SampleCount[2] = sampleMsb;
        r.InvertPolarity = invert;
        memset(&response_, 0, sizeof response_);
        bool checker = operation != ZENTREL_PRBS_GENERATE && operation != ZENTREL_PRBS_INJECT_ERROR;
        return ZentrelSwitchPrbs(&handle_, &r, checker ? &response_ : nullptr);
    }
    uint64_t Bits() const {
        return response_.WordCount[0] | static_cast<uint64_t>(response_.WordCount[1]) << 16 |
               static_cast<uint64_t>(response_.WordCount[2]) << 32;
    }
    uint32_t handle_ = 0x100;
    ZENTREL_SWITCH_PRBS_CHECKER_RESP response_ = {};
};

TEST_F(PhySimulator, TheEyeOpensWithEachPollUntilTheThird) {
    static ZENTREL_SWITCH_HW_EYE eye;
    ASSERT_EQ(ZentrelSwitchHardwareEyeStart(&handle_, 16, 1, 0xC, &eye), ZENTREL_STATUS_SUCCESS);
    double widths[5];
    for (int poll = 0; poll < 5; ++poll) {
        ASSERT_EQ(ZentrelSwitchHardwareEyeGet(&handle_, 16, 1, &eye), ZENTREL_STATUS_SUCCESS);
        widths[poll] = eye.Lanes[16].EyeRight - eye.Lanes[16].EyeLeft;
        ASSERT_EQ(ZentrelSwitchHardwareEyePoll(&handle_, 16, 1, &eye), ZENTREL_STATUS_SUCCESS);
    }
    EXPECT_LT(widths[0], widths[1]);
    EXPECT_LT(widths[1], widths[2]);
    EXPECT_LT(widths[2], widths[3]);
    EXPECT_DOUBLE_EQ(widths[3], widths[4]);
    EXPECT_DOUBLE_EQ(widths[3], 4 * widths[0]);
    // Another range than the one started is refused; after the clean-up so is the same.
    EXPECT_EQ(ZentrelSwitchHardwareEyeGet(&handle_, 16, 2, &eye), 0x2u);
    ASSERT_EQ(ZentrelSwitchHardwareEyeClean(&handle_, 16, 1, &eye), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(ZentrelSwitchHardwareEyePoll(&handle_, 16, 1, &eye), 0x2u);
}

TEST_F(PhySimulator, CheckerSyncsOnlyWithItsGeneratorAndFinishesAtItsSampleCount) {
    ASSERT_EQ(Prbs(ZENTREL_PRBS_ENABLE_CHECKER, 16), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 16), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response_.CheckerStatus, 0u);  // no generator yet
    EXPECT_EQ(Bits(), 0u);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_GENERATE, 16), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 16), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response_.CheckerStatus, ZENTREL_PRBS_IN_SYNC);
    EXPECT_EQ(Bits(), 32000000000ull);
    EXPECT_EQ(response_.ErrorCount, 0);  // a healthy lane
    ASSERT_EQ(Prbs(ZENTREL_PRBS_INJECT_ERROR, 16), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 16), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response_.CheckerStatus, ZENTREL_PRBS_IN_SYNC | ZENTREL_PRBS_CHECK_DONE);
    EXPECT_EQ(Bits(), 8ull << 32);  // stopped at the sample count
    EXPECT_EQ(response_.ErrorCount, 1);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 16), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(Bits(), 8ull << 32);  // a finished check counts no more
    // A checker expecting inverted data never syncs on this lane.
    ASSERT_EQ(Prbs(ZENTREL_PRBS_ENABLE_CHECKER, 16, 1), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 16, 1), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response_.CheckerStatus, 0u);
}

TEST_F(PhySimulator, AWeakLaneMarginsLessAndMakesErrors) {
    ZENTREL_SWITCH_LANE_MARGIN_REQ request = {};
    request.PortNumber = 40;
    request.LaneMask = 0x3;  // lane 41 is the weak one
    request.NumTimeSteps = 30;
    request.NumVoltageSteps = 60;
    ZENTREL_SWITCH_LANE_MARGIN_RESULT results[2] = {};
    ASSERT_EQ(ZentrelSwitchPerformLaneMargining(&handle_, &request, results), ZENTREL_STATUS_SUCCESS);
    EXPECT_LT(results[1].RightTimeMarginStep, results[0].RightTimeMarginStep);
    EXPECT_LT(results[1].UpVoltageMarginStep, results[0].UpVoltageMarginStep);
    EXPECT_EQ(results[1].RightTimeMarginStatus, ZENTREL_MARGIN_STATUS_LIMIT_FOUND);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_GENERATE, 41), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_ENABLE_CHECKER, 41), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(Prbs(ZENTREL_PRBS_CHECK_STATUS, 41), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response_.ErrorCount, 36);  // (60 - 48)^2 / 4 in one second
}

TEST_F(PhySimulator, LanesOutsideThePortOrSwitchAreRefused) {
    uint32_t caps = 0, steps = 0, offsets = 0;
    EXPECT_EQ(ZentrelSwitchGetLaneMarginCapacities(&handle_, 12, 4, &caps, &steps, &offsets), 0x2u);
    EXPECT_EQ(ZentrelSwitchGetLaneMarginCapacities(&handle_, 12, 3, &caps, &steps, &offsets), ZENTREL_STATUS_SUCCESS);
    static ZENTREL_SWITCH_RX_EQ_STATUS eq;
    EXPECT_EQ(ZentrelSwitchRxEqStatus(&handle_, 143, 1, &eq), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(ZentrelSwitchRxEqStatus(&handle_, 143, 2, &eq), 0x2u);
    EXPECT_EQ(ZentrelSwitchRxEqStatus(&handle_, 0xFFFFFFFFu, 2, &eq), 0x2u);
}

}  // namespace
