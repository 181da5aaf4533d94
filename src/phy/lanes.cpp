// What the PHY handlers share: their prompts and the lanes a per-lane
// buffer holds.
#include <cstdio>

#include "frontend/input.h"
#include "phy.h"
#include "phy_prompt.h"

int32_t AskLaneValue(const char *prompt, bool flush) {
    printf("%s", prompt);
    if (flush) FlushInput();
    int32_t value = 0;
    ScanDecimal(&value);
    return value;
}

uint32_t AskLaneHex(const char *prompt) {
    printf("%s", prompt);
    FlushInput();
    uint32_t value = 0;
    ScanHex(&value);
    return value;
}

LaneRange LanesInBuffer(int32_t start, int32_t count) {
    int64_t first = start < 0 ? 0 : start;
    int64_t end = static_cast<int64_t>(start) + count;
    if (first > ZENTREL_LANE_COUNT) first = ZENTREL_LANE_COUNT;
    if (end > ZENTREL_LANE_COUNT) end = ZENTREL_LANE_COUNT;
    if (end < first) end = first;
    return {static_cast<uint32_t>(first), static_cast<uint32_t>(end)};
}
