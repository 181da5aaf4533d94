// Lane-margining capabilities, lane margining on the lanes of a port, and
// the switch's hardware eye measurement over a range of lanes.
#include <cstdio>

#include "frontend/input.h"
#include "frontend/helpers.h"
#include "phy.h"

namespace {

constexpr uint32_t kEyePollMs = 1000;

// Lanes 0 to count - 1 of a port; no lanes for a count below 1.
uint16_t LaneMask(int32_t count) {
    uint32_t mask = 0;
    for (int32_t k = 0; k < count && k < static_cast<int32_t>(ZENTREL_MARGIN_MAX_LANES); ++k) mask |= 1u << k;
    return static_cast<uint16_t>(mask);
}

struct MarginInput {
    int32_t port = 0;
    int32_t lanes = 0;
    int32_t timeSteps = 0;
    int32_t voltageSteps = 0;
    int32_t errorLimit = 0;
};

// On the command line the fifth word (the error limit) lands in the
// voltage steps, replacing the fourth, and the error limit stays 0: the
// scripts written for this tool rely on it.
bool ReadMarginWords(const char *const *words, MarginInput *in) {
    if (ParseDecimal(WordAt(words, 0), &in->port) != 0) {
        printf("failed to get port number\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 1), &in->lanes) != 0) {
        printf("failed to get number of lanes\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 2), &in->timeSteps) != 0) {
        printf("failed to get numTimeSteps\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 3), &in->voltageSteps) != 0) {
        printf("failed to get numVoltageSteps\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 4), &in->voltageSteps) != 0) {
        printf("failed to get error limit\n");
        return false;
    }
    return true;
}

void AskMargin(MarginInput *in) {
    in->port = AskSigned("Input the Port Number: ");
    in->lanes = AskSigned("Input the the number of lanes: ");
    in->timeSteps = AskSigned("Input the number of Time Steps: ");
    in->voltageSteps = AskSigned("Input the number of Voltage Steps: ");
    in->errorLimit = AskSigned("Input the Error Count Limit: ");
}

struct EyeInput {
    int32_t startLane = 0;
    int32_t laneCount = 0;
    int32_t targetBer = 0;
    int32_t polls = 0;
};

bool ReadEyeWords(const char *const *words, EyeInput *in) {
    if (ParseDecimal(WordAt(words, 0), &in->startLane) != 0) {
        printf("Failed to get startPort\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 1), &in->laneCount) != 0) {
        printf("Failed to get numberOfPort\n");
        return false;
    }
    if (ParseHex(WordAt(words, 2), &in->targetBer) != 0) {
        printf("Failed to get bit error rate value\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 3), &in->polls) != 0) {
        printf("Failed to get timeout\n");
        return false;
    }
    return true;
}

// The menu asks for the timeout before the bit error rate.
void AskEye(EyeInput *in) {
    in->startLane = AskSigned("Input the start port:");
    in->laneCount = AskSigned("Input the number of port:");
    in->polls = AskSigned("Input the timeout:");
    in->targetBer = static_cast<int32_t>(AskHex("Input the BER Value:"));
}

}  // namespace

uint32_t LaneMarginCapabilities(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t port = 0, lane = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -getlmcap portNum laneNum\n");
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &port) != 0) {
            printf("failed to get port number\n");
            return 1;
        }
        if (ParseDecimal(WordAt(words, 1), &lane) != 0) {
            printf("failed to get lane number\n");
            return 1;
        }
    } else {
        port = AskSigned("Input the Port Number: ");
        lane = AskSigned("Input the Lane Number: ");
    }
    uint32_t caps = 0, steps = 0, offsets = 0;
    ZENTREL_STATUS status = ZentrelSwitchGetLaneMarginCapacities(device, static_cast<uint8_t>(port & 0xFF),
                                                                 static_cast<uint16_t>(lane & 0xFFFF), &caps,
                                                                 &steps, &offsets);
    if (status != ZENTREL_STATUS_SUCCESS) {
        // A failed library call still yields 0 here.
        printf("Failed to get lane margin Capacities for the port %d lane %d - status %x\n", port, lane, status);
        return 0;
    }
    printf("marginControllCapabilities = %x\n", caps);
    printf("Voltage Steps: %d, Timing Steps: %d\n", static_cast<int>(steps >> 16), static_cast<int>(steps & 0xFFFF));
    printf("Voltage Offset: %d, Timing Offset: %d\n", static_cast<int>(offsets >> 16),
           static_cast<int>(offsets & 0xFFFF));
    return 0;
}

uint32_t LaneMarginRun(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    MarginInput in;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -perflm portNum lanes timeSteps volSteps errLimit\n");
            return 0;
        }
        if (!ReadMarginWords(words, &in)) return 1;
    } else {
        AskMargin(&in);
    }
    if (in.lanes > static_cast<int32_t>(ZENTREL_MARGIN_MAX_LANES)) {
        printf("more than 16 lanes in one port is wrong setting, %d\n", in.lanes);
        return 0;
    }
    // A negative count margins no lane, like 0.
    uint32_t lanes = in.lanes > 0 ? static_cast<uint32_t>(in.lanes) : 0;
    ZENTREL_SWITCH_LANE_MARGIN_REQ request = {};
    request.PortNumber = static_cast<uint8_t>(in.port);
    request.LaneMask = LaneMask(in.lanes);
    request.ErrorCountLimit = static_cast<uint32_t>(in.errorLimit);
    request.NumTimeSteps = static_cast<uint32_t>(in.timeSteps);
    request.NumVoltageSteps = static_cast<uint32_t>(in.voltageSteps);
    auto *results = static_cast<PTR_ZENTREL_SWITCH_LANE_MARGIN_RESULT>(
        AllocZeroed(lanes * sizeof(ZENTREL_SWITCH_LANE_MARGIN_RESULT)));
    printf("Measuring the lane margining, it's going to take a while...\n");
    ZENTREL_STATUS status = ZentrelSwitchPerformLaneMargining(device, &request, results);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to perform lane margin port %d - status %x\n", in.port, status);
        return 0;  // the result buffer has always been left unreleased on this path
    }
    for (uint32_t k = 0; results != nullptr && k < lanes; ++k) {
        const ZENTREL_SWITCH_LANE_MARGIN_RESULT &r = results[k];
        printf("Result for lane %d at port %d\n", static_cast<int>(k), in.port);
        printf("    RightTimeMarginStatus %x RightTimeMarginStep %x\n", r.RightTimeMarginStatus, r.RightTimeMarginStep);
        printf("    LeftTimeMarginStatus %x LeftTimeMarginStep %x\n", r.LeftTimeMarginStatus, r.LeftTimeMarginStep);
        printf("    UpVoltageMarginStatus %x UpVoltageMarginStep %x\n", r.UpVoltageMarginStatus, r.UpVoltageMarginStep);
        printf("    DownVoltageMarginStatus %x DownVoltageMarginStep %x\n", r.DownVoltageMarginStatus,
               r.DownVoltageMarginStep);
    }
    FreeBuffer(results);
    return 0;
}

uint32_t HardwareEyeScan(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    EyeInput in;
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -hweye startPort numberOfPort targetBER timeout\n");
        return 0;
    }
    if (WordAt(words, 0) != nullptr) {
        if (!ReadEyeWords(words, &in)) return 1;
    } else {
        AskEye(&in);
    }
    auto *eye = static_cast<PTR_ZENTREL_SWITCH_HW_EYE>(AllocZeroed(sizeof(ZENTREL_SWITCH_HW_EYE)));
    if (eye == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n");
        return 1;
    }
    uint32_t start = static_cast<uint32_t>(in.startLane), count = static_cast<uint32_t>(in.laneCount);
    ZENTREL_STATUS status = ZentrelSwitchHardwareEyeStart(device, start, count, static_cast<uint32_t>(in.targetBer), eye);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchHardwareEyeStart failed, libstatus = %d\n", static_cast<int>(status));
        FreeBuffer(eye);
        return 1;
    }
    // The timeout counts one-second polls.
    for (int32_t poll = 0; poll < in.polls; ++poll) {
        status = ZentrelSwitchHardwareEyePoll(device, start, count, eye);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("ZentrelSwitchHardwareEyePoll failed, libstatus = %d\n", static_cast<int>(status));
            FreeBuffer(eye);
            return 1;
        }
        SleepMs(kEyePollMs);
    }
    status = ZentrelSwitchHardwareEyeGet(device, start, count, eye);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchHardwareEyeGet failed, libstatus = %d\n", static_cast<int>(status));
        FreeBuffer(eye);
        return 1;
    }
    LaneRange range = LanesInBuffer(in.startLane, in.laneCount);
    for (uint32_t lane = range.first; lane < range.end; ++lane) {
        const ZENTREL_SWITCH_HW_EYE_LANE &e = eye->Lanes[lane];
        printf("Lane %d, EyeLeft = %.1f%%UI, EyeRight = %.1f%%UI, EyeUp = %.1fmV, EyeDown = %.1fmV \n",
               static_cast<int>(lane), e.EyeLeft, e.EyeRight, e.EyeUp, e.EyeDown);
    }
    uint32_t result = 0;
    status = ZentrelSwitchHardwareEyeClean(device, start, count, eye);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchHardwareEyeClean failed, libstatus = %d\n", static_cast<int>(status));
        result = 1;
    }
    FreeBuffer(eye);
    return result;
}
