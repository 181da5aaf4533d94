// The PHY handlers' arithmetic: the Serdes dB values, the PRBS checker's
// bit count, and the lanes a per-lane buffer holds.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "phy/phy.h"

namespace {

std::string Printed(float value) {
    char text[32];
    snprintf(text, sizeof text, "%7.2f", static_cast<double>(value));
    return text;
}

TEST(SerdesDb, FullSwingWithoutCursorsIsZeroDb) {
    SerdesDb db = ComputeSerdesDb(0, 0, 5);
    EXPECT_EQ(Printed(db.preshoot), "   0.00");
    EXPECT_EQ(Printed(db.deEmphasis), "   0.00");
    EXPECT_EQ(Printed(db.boost), "   0.00");
}

// X = 96, Y = W = 84, Z = 96: ratios 1, 0.875 -> 0.88 and 1.142857 -> 1.14.
TEST(SerdesDb, PostCursorSixGivesDeEmphasisAndBoost) {
    SerdesDb db = ComputeSerdesDb(6, 0, 5);
    EXPECT_EQ(Printed(db.preshoot), "   0.00");
    EXPECT_EQ(Printed(db.deEmphasis), "  -1.11");
    EXPECT_EQ(Printed(db.boost), "   1.14");
    EXPECT_FLOAT_EQ(db.deEmphasis, 20.0f * static_cast<float>(log10(static_cast<double>(0.88f))));
}

// A = 4: X = 84, Y = 64, Z = 78, W = 58. Ratios 1.1034 -> 1.10,
// 0.7436 -> 0.74, 1.4483 -> 1.45; 20 log10 gives 0.83, -2.62, 3.23.
TEST(SerdesDb, ReducedAmplitudeWithBothCursors) {
    SerdesDb db = ComputeSerdesDb(10, 3, 4);
    EXPECT_EQ(Printed(db.preshoot), "   0.83");
    EXPECT_EQ(Printed(db.deEmphasis), "  -2.62");
    EXPECT_EQ(Printed(db.boost), "   3.23");
}

// A = 3: X = 72, W = 64. The boost ratio 72/64 = 1.125 gives 112.5
// hundredths, which rounds away from zero to 1.13 (1.06 dB), not to the
// even 1.12 (0.98 dB).
TEST(SerdesDb, HalfHundredthsRoundAwayFromZero) {
    SerdesDb db = ComputeSerdesDb(4, 0, 3);
    EXPECT_EQ(Printed(db.boost), "   1.06");
    EXPECT_EQ(Printed(db.deEmphasis), "  -1.01");
}

// cp1 + cm1 = 48 at full swing: W = 0. The ratios over W are infinite and
// the one with W above is 0, whose logarithm is minus infinity.
TEST(SerdesDb, ZeroLevelGivesInfinitiesWithoutTrapping) {
    SerdesDb db = ComputeSerdesDb(24, 24, 5);
    EXPECT_TRUE(std::isinf(db.preshoot) && db.preshoot > 0);
    EXPECT_TRUE(std::isinf(db.deEmphasis) && db.deEmphasis < 0);
    EXPECT_TRUE(std::isinf(db.boost) && db.boost > 0);
    EXPECT_NE(Printed(db.boost).find("inf"), std::string::npos);
}

// A = 1: X = 48; cp1 = 24: Y = W = 0, so Y / W is 0 / 0.
TEST(SerdesDb, ZeroOverZeroIsNotANumber) {
    SerdesDb db = ComputeSerdesDb(24, 0, 1);
    EXPECT_TRUE(std::isnan(db.preshoot));
    EXPECT_NE(Printed(db.preshoot).find("nan"), std::string::npos);
    // W / Z = 0 / 48: minus infinity; X / W: plus infinity.
    EXPECT_TRUE(std::isinf(db.deEmphasis) && db.deEmphasis < 0);
    EXPECT_TRUE(std::isinf(db.boost) && db.boost > 0);
}

// An amplitude above 5 makes X larger than full swing.
TEST(SerdesDb, AmplitudeAboveFullSwing) {
    SerdesDb db = ComputeSerdesDb(0, 0, 200);
    EXPECT_EQ(Printed(db.preshoot), "   0.00");
    EXPECT_EQ(Printed(db.boost), "   0.00");
}

TEST(PrbsBitCount, WordCountsAreSixteenBitsEach) {
    const uint16_t low[3] = {1, 0, 1};
    EXPECT_EQ(AccumulatedBitCount(low), 4294967297.0);
    char text[32];
    snprintf(text, sizeof text, "%e", AccumulatedBitCount(low));
    EXPECT_STREQ(text, "4.294967e+09");
    const uint16_t full[3] = {0xFFFF, 0xFFFF, 0xFFFF};
    EXPECT_EQ(AccumulatedBitCount(full), 281474976710655.0);
    const uint16_t none[3] = {0, 0, 0};
    EXPECT_EQ(AccumulatedBitCount(none), 0.0);
}

TEST(LanesInBuffer, KeepsTheLanesTheBufferHolds) {
    LaneRange r = LanesInBuffer(40, 4);
    EXPECT_EQ(r.first, 40u);
    EXPECT_EQ(r.end, 44u);
    r = LanesInBuffer(190, 4);  // 190 and 191 only
    EXPECT_EQ(r.first, 190u);
    EXPECT_EQ(r.end, 192u);
    r = LanesInBuffer(-2, 4);  // 0 and 1 only
    EXPECT_EQ(r.first, 0u);
    EXPECT_EQ(r.end, 2u);
}

TEST(LanesInBuffer, EmptyForNoLanesOrLanesOutside) {
    LaneRange r = LanesInBuffer(40, 0);
    EXPECT_EQ(r.first, r.end);
    r = LanesInBuffer(40, -5);
    EXPECT_EQ(r.first, r.end);
    r = LanesInBuffer(500, 3);
    EXPECT_EQ(r.first, r.end);
    r = LanesInBuffer(INT32_MAX, INT32_MAX);
    EXPECT_EQ(r.first, r.end);
    r = LanesInBuffer(INT32_MIN, INT32_MAX);
    EXPECT_EQ(r.first, r.end);
}

}  // namespace
