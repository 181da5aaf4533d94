// The downstream list walk over buffers the library may have filled badly,
// the list and dump sizes, and the descriptor packing.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "topology/topology.h"

namespace {

// A list buffer: the head with its block count, then the blocks written.
class ListBuffer {
public:
    explicit ListBuffer(size_t size) : bytes_(size, 0) {}
    void Count(uint32_t blocks) { memcpy(bytes_.data(), &blocks, sizeof blocks); }
    // A block at `at` with `devices` records numbered from `first`.
    void Block(size_t at, uint16_t size, uint8_t valid, uint16_t port, uint16_t devices, uint32_t first = 1) {
        ZENTREL_DS_PORT_BLOCK b = {};
        b.BlockSize = size;
        b.Valid = valid;
        b.PortId = port;
        b.NumDevices = devices;
        memcpy(bytes_.data() + at, &b, sizeof b);
        for (uint16_t i = 0; i < devices; ++i) {
            size_t r = at + sizeof b + i * sizeof(ZENTREL_DS_DEVICE_RECORD);
            if (r + sizeof(ZENTREL_DS_DEVICE_RECORD) > bytes_.size()) break;
            ZENTREL_DS_DEVICE_RECORD rec = {};
            rec.Gid = first + i;
            memcpy(bytes_.data() + r, &rec, sizeof rec);
        }
    }
    // (port, gid) of every record the walk gives.
    std::vector<std::pair<uint16_t, uint32_t>> Walk() const {
        std::vector<std::pair<uint16_t, uint32_t>> seen;
        WalkDownstreamList(bytes_.data(), bytes_.size(),
                           [&](uint16_t port, const ZENTREL_DS_DEVICE_RECORD &r) { seen.push_back({port, r.Gid}); });
        return seen;
    }

private:
    std::vector<uint8_t> bytes_;
};

using Seen = std::vector<std::pair<uint16_t, uint32_t>>;

TEST(DownstreamWalk, StepsByBlockSizeAndSkipsInvalidAndEmptyBlocks) {
    ListBuffer list(400);
    list.Count(4);
    list.Block(16, 12 + 2 * 36, 1, 0x10, 2, 1);
    list.Block(100, 12 + 36, 0, 0x14, 1, 7);  // not valid: stepped over
    list.Block(148, 12, 1, 0x18, 0);          // no devices
    // A block larger than its records: the next starts where its size says.
    list.Block(160, 12 + 36 + 20, 1, 0x1c, 1, 9);
    EXPECT_EQ(list.Walk(), (Seen{{0x10, 1}, {0x10, 2}, {0x1c, 9}}));
}

TEST(DownstreamWalk, StopsAtTheBlockCount) {
    ListBuffer list(200);
    list.Count(1);
    list.Block(16, 48, 1, 1, 1, 1);
    list.Block(64, 48, 1, 2, 1, 2);
    EXPECT_EQ(list.Walk(), (Seen{{1, 1}}));
}

TEST(DownstreamWalk, NeverReadsPastTheBuffer) {
    // The count claims more blocks than the buffer holds, and the last
    // block claims more records than fit.
    ListBuffer list(16 + 48 + 12 + 36 + 10);
    list.Count(50);
    list.Block(16, 48, 1, 1, 1, 1);
    list.Block(64, 12 + 3 * 36, 1, 2, 3, 5);
    EXPECT_EQ(list.Walk(), (Seen{{1, 1}, {2, 5}}));
}

TEST(DownstreamWalk, ABlockTooShortToStepOverEndsTheWalk) {
    ListBuffer list(200);
    list.Count(1000);
    list.Block(16, 0, 1, 3, 1, 4);  // size 0 would never advance
    EXPECT_EQ(list.Walk(), (Seen{{3, 4}}));
}

TEST(DownstreamWalk, ABufferShorterThanItsHeadGivesNothing) {
    ListBuffer list(8);
    EXPECT_TRUE(list.Walk().empty());
}

TEST(DownstreamListLength, IsCutTo16Bits) {
    EXPECT_EQ(DownstreamListLength({7, 6, 9}), (7 + 9 - 6) * 48 + 528);
    EXPECT_EQ(DownstreamListLength({0, 0, 0}), 528);
    // 1407 * 48 + 528 = 68064, which wraps to 2528.
    EXPECT_EQ(DownstreamListLength({7, 6, 1406}), 2528);
}

TEST(CsrDumpLength, NeverPassesTheDataArea) {
    EXPECT_EQ(CsrDumpLength(4), 4);
    EXPECT_EQ(CsrDumpLength(8), 8);
    EXPECT_EQ(CsrDumpLength(256), 256);
    EXPECT_EQ(CsrDumpLength(300), 256);
    EXPECT_EQ(CsrDumpLength(-1), -1);  // the dump prints a line end only
}

TEST(PortDescriptor, KeepsSevenSwitchBitsAndTheLowPortByte) {
    EXPECT_EQ(ZENTREL_PORT_DESCRIPTOR(0, 64), 0x40000000u);
    EXPECT_EQ(ZENTREL_PORT_DESCRIPTOR(127, 143), 0x8F00007Fu);
    EXPECT_EQ(ZENTREL_PORT_DESCRIPTOR(128, 16), 0x10000000u);
    EXPECT_EQ(ZENTREL_PORT_DESCRIPTOR(255, 320), 0x4000007Fu);
    EXPECT_EQ(ZENTREL_BDF(0x21, 1, 0), 0x2108);
    EXPECT_EQ(ZENTREL_BDF(1, 0x22, 8), 0x0110);
}

}  // namespace
