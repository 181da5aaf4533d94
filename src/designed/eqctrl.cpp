// Equalization control: a lane's transmitter cursors and receiver CTLE and
// VGA fixed by hand or left adaptive, and the settings in force on a range
// of lanes.
#include <cstdio>
#include <cstring>

#include "designed.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

namespace {

// A value for a one-byte field; false after the message when it does not fit.
bool ByteValue(const char *prompt, uint8_t *field) {
    int32_t value = AskSigned(prompt);
    if (value < 0 || value > UINT8_MAX) {
        printf("Invalid value %d, valid values are 0 to 255\n", value);
        return false;
    }
    *field = static_cast<uint8_t>(value);
    return true;
}

}  // namespace

uint32_t SetEqualizationCtrlMenu(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_EQ_CTRL_REQ request;
    memset(&request, 0, sizeof request);
    int32_t lane = AskSigned("Input the Lane number:");
    if (lane < 0 || lane > UINT16_MAX) {
        printf("Invalid Lane number %d\n", lane);
        return 1;
    }
    request.Lane = static_cast<uint16_t>(lane);
    int32_t mode = AskSigned("Input the Mode (0 - Adaptive, 1 - Fixed):");
    if (mode != ZENTREL_EQ_CTRL_ADAPTIVE && mode != ZENTREL_EQ_CTRL_FIXED) {
        printf(" Invalid option %d, valid options are 0/1\n", mode);
        return 1;
    }
    request.Mode = static_cast<uint8_t>(mode);
    if (mode == ZENTREL_EQ_CTRL_FIXED &&
        (!ByteValue("Input the TX Pre-cursor:", &request.PreCursor) ||
         !ByteValue("Input the TX Main-cursor:", &request.MainCursor) ||
         !ByteValue("Input the TX Post-cursor:", &request.PostCursor) || !ByteValue("Input the RX CTLE:", &request.Ctle) ||
         !ByteValue("Input the RX VGA:", &request.Vga)))
        return 1;
    ZENTREL_STATUS status = ZentrelSwitchSetEqualizationCtrl(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchSetEqualizationCtrl failed with status %x\n", status);
        return 1;
    }
    printf("Lane %d equalization set to %s\n", lane, mode == ZENTREL_EQ_CTRL_FIXED ? "fixed" : "adaptive");
    return 0;
}

uint32_t ShowEqualizationCtrlMenu(PTR_ZENTREL_DEVICE device) {
    int32_t start = AskSigned("Input the Start Lane:");
    int32_t count = AskSigned("Input the Number of Lanes:");
    uint32_t size = 0;
    ZENTREL_STATUS status =
        ZentrelSwitchEqualizationCtrlGetBufSize(device, static_cast<uint32_t>(start), static_cast<uint32_t>(count), &size);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchEqualizationCtrlGetBufSize failed with status %x\n", status);
        return 1;
    }
    if (size < sizeof(ZENTREL_SWITCH_EQ_CTRL_HEADER)) {
        printf("ZentrelSwitchEqualizationCtrlGetBufSize returned a size of %u bytes\n", size);
        return 1;
    }
    auto *buffer = static_cast<uint8_t *>(AllocZeroed(size));
    if (buffer == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_EQ_CTRL_HEADER\n");
        return 1;
    }
    status = ZentrelSwitchGetEqualizationCtrl(device, static_cast<uint32_t>(start), static_cast<uint32_t>(count), buffer,
                                              size);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetEqualizationCtrl failed with status %x\n", status);
        FreeBuffer(buffer);
        return 1;
    }
    ZENTREL_SWITCH_EQ_CTRL_HEADER header;
    memcpy(&header, buffer, sizeof header);
    // Never past the size the library reported.
    uint32_t fits = (size - sizeof header) / sizeof(ZENTREL_SWITCH_EQ_CTRL_REQ);
    uint32_t lanes = header.LaneCount < fits ? header.LaneCount : fits;
    printf("Lane  Mode      Pre  Main  Post  CTLE  VGA\n");
    for (uint32_t i = 0; i < lanes; ++i) {
        ZENTREL_SWITCH_EQ_CTRL_REQ lane;
        memcpy(&lane, buffer + sizeof header + i * sizeof lane, sizeof lane);
        printf("%4u  %-8s  %3u  %4u  %4u  %4u  %3u\n", lane.Lane,
               lane.Mode == ZENTREL_EQ_CTRL_FIXED ? "Fixed" : "Adaptive", lane.PreCursor, lane.MainCursor,
               lane.PostCursor, lane.Ctle, lane.Vga);
    }
    FreeBuffer(buffer);
    return 0;
}
