// What the PHY handlers share: the lanes a per-lane buffer holds.
#include "phy.h"

LaneRange LanesInBuffer(int32_t start, int32_t count) {
    int64_t first = start < 0 ? 0 : start;
    int64_t end = static_cast<int64_t>(start) + count;
    if (first > ZENTREL_LANE_COUNT) first = ZENTREL_LANE_COUNT;
    if (end > ZENTREL_LANE_COUNT) end = ZENTREL_LANE_COUNT;
    if (end < first) end = first;
    return {static_cast<uint32_t>(first), static_cast<uint32_t>(end)};
}
