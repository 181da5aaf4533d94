// Records as recordings and traces hold them: in the controller's 32-bit
// layout on every machine, so that a recording made on the controller
// replays on a 64-bit machine and the other way round.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "recording.h"

namespace {

std::string Hex(const std::vector<uint8_t> &bytes) {
    std::string out;
    zrec::AppendHex(out, bytes.data(), bytes.size());
    return out;
}

std::vector<uint8_t> Bytes(const std::string &hex) {
    std::vector<uint8_t> bytes;
    EXPECT_TRUE(zrec::DecodeHex(hex, &bytes)) << hex;
    return bytes;
}

TEST(Recording, LibraryParametersAreHeldInTheControllersLayout) {
    char path[260] = "/var/log/zentrel.log";
    ZENTREL_LIB_PARAMETERS params = {};
    params.DebugLogLevelAll = 0x2c;
    params.DebugLogLevelSwitch = 0xff;
    params.DebugLogSize = 0x11223344;
    params.DebugLogCount = 3;
    params.DebugLogOverwrite = 1;
    params.DebugLogFilePath = path;
    params.Reserved24[0] = 0xab;
    params.Reserved24[255] = 0xcd;
    zrec::Arg arg = zrec::RecordArg(zrec::Kind::In, "Params", &params);

    std::vector<uint8_t> held = zrec::HeldBytes(arg);
    ASSERT_EQ(held.size(), 280u);
    EXPECT_EQ(Hex(held).substr(0, 56), "2c000000ff000000443322110300000001000000" "01000000" "ab000000");
    EXPECT_EQ(held[279], 0xcd);

    params.DebugLogFilePath = nullptr;
    EXPECT_EQ(Hex(zrec::HeldBytes(arg)).substr(40, 8), "00000000");
}

TEST(Recording, HeldBytesGoBackIntoTheRecordAroundTheCallersPointers) {
    // What GetLibParameters answered on the controller: levels 1 and 2, a
    // log of 0x1000 bytes, 4 of them, no overwrite, a path (pointer set).
    std::string answer = "0100000002000000001000000400000000000000" "01000000" + std::string(512, '0');
    char path[256] = {};
    ZENTREL_LIB_PARAMETERS params = {};
    params.DebugLogFilePath = path;
    zrec::Arg arg = zrec::RecordArg(zrec::Kind::InOut, "Params", &params);
    zrec::StoreHeldBytes(arg, Bytes(answer));
    EXPECT_EQ(params.DebugLogLevelAll, 1);
    EXPECT_EQ(params.DebugLogLevelSwitch, 2);
    EXPECT_EQ(params.DebugLogSize, 0x1000u);
    EXPECT_EQ(params.DebugLogCount, 4u);
    EXPECT_EQ(params.DebugLogOverwrite, 0u);
    EXPECT_EQ(params.DebugLogFilePath, path);  // the caller's buffer, not a marker

    // The library left it null (it logs to the console).
    answer.replace(40, 8, "00000000");
    zrec::StoreHeldBytes(arg, Bytes(answer));
    EXPECT_EQ(params.DebugLogFilePath, nullptr);
}

TEST(Recording, EachPointerOfARequestIsAMarkerOfItsOwn) {
    uint32_t selected = 0;
    ZENTREL_SWITCH_SBR_MFG_CFG_REQ request = {};
    request.Operation = ZENTREL_SBR_MFG_CFG_SET;
    request.Configuration = 4;
    request.Selected = &selected;
    zrec::Arg arg = zrec::RecordArg(zrec::Kind::In, "Request", &request);
    EXPECT_EQ(Hex(zrec::HeldBytes(arg)), "00040000" "00000000" "01000000" "00000000");

    uint8_t image[8] = {};
    ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ pldm = {};
    pldm.Image = image;
    pldm.ImageLength = 0x2020;
    EXPECT_EQ(Hex(zrec::HeldBytes(zrec::RecordArg(zrec::Kind::In, "Request", &pldm))),
              "000000000000000000000000" "01000000" "20200000");

    ZENTREL_SWITCH_DEBUG_TOKEN_REQ token = {};
    token.FwCliAccess = 2;
    token.SignatureLength = 71;
    std::vector<uint8_t> held = zrec::HeldBytes(zrec::RecordArg(zrec::Kind::InOut, "Request", &token));
    ASSERT_EQ(held.size(), 104u);
    EXPECT_EQ(Hex(held).substr(184), "02000000" "00000000" "47000000");
}

TEST(Recording, RecordsWithoutPointersAndBuffersAreHeldAsTheyAre) {
    uint32_t count = 0x01020304;
    EXPECT_EQ(Hex(zrec::HeldBytes(zrec::RecordArg(zrec::Kind::Out, "Count", &count))), "04030201");
    uint8_t buffer[3] = {1, 2, 3};
    zrec::Arg arg = zrec::BytesArg(zrec::Kind::Out, "Buffer", buffer, sizeof buffer);
    EXPECT_EQ(Hex(zrec::HeldBytes(arg)), "010203");
    zrec::StoreHeldBytes(arg, Bytes("0908070605"));  // never past the buffer
    EXPECT_EQ(Hex(std::vector<uint8_t>(buffer, buffer + 3)), "090807");
}

// A line holds the record's bytes as the controller lays it out; the
// 64-bit machine's memory layout (288 bytes) is not a recording's.
TEST(Recording, ALineIsCheckedAgainstTheHeldSize) {
    std::string line = "ZentrelSetLibParameters(Params=x" + std::string(560, '0') + " Params.DebugLogFilePath=\"a\") = 0x0";
    zrec::Entry entry;
    std::string error;
    EXPECT_TRUE(zrec::ParseLine(line, &entry, &error)) << error;

    line = "ZentrelSetLibParameters(Params=x" + std::string(576, '0') + " Params.DebugLogFilePath=\"a\") = 0x0";
    EXPECT_FALSE(zrec::ParseLine(line, &entry, &error));
    EXPECT_EQ(error, "Params holds 288 bytes, not 280");

    line = "ZentrelGetLibParameters(Params=x" + std::string(560, '0') + " Params.DebugLogFilePath=*) = 0x0 Params=x" +
           std::string(558, '0');
    EXPECT_FALSE(zrec::ParseLine(line, &entry, &error));
    EXPECT_EQ(error, "Params holds 279 bytes, not 280");
}

}  // namespace
