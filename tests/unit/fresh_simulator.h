// A test fixture that starts every test on a freshly opened simulator with
// its defaults: no scenario, no state file, whatever the test before left.
#ifndef ZENTRELLIBTEST_TESTS_FRESH_SIMULATOR_H
#define ZENTRELLIBTEST_TESTS_FRESH_SIMULATOR_H

#include <gtest/gtest.h>

#include <cstdlib>

#include "zentrel.h"

class FreshSimulator : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        unsetenv("ZENTREL_SIM_STATE");
        ZentrelExit();
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    }
    void TearDown() override { ZentrelExit(); }
};

#endif
