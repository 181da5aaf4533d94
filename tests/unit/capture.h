// Runs a piece of code with standard output captured.
#ifndef ZENTREL_TESTS_CAPTURE_H
#define ZENTREL_TESTS_CAPTURE_H

#include <gtest/gtest.h>

#include <string>

template <typename Fn>
std::string Captured(Fn fn) {
    testing::internal::CaptureStdout();
    fn();
    return testing::internal::GetCapturedStdout();
}

#endif
