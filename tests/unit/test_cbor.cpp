// The simulator's CBOR encoder and decoder, and the COSE structures of a
// debug token built and read with them.
#include <gtest/gtest.h>

#include "cbor.h"
#include "debugtoken/debugtoken.h"

namespace {

using sim::cbor::Bytes;

std::string Hex(const Bytes &bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    for (uint8_t b : bytes) {
        out += kDigits[b >> 4];
        out += kDigits[b & 0xF];
    }
    return out;
}

Bytes FromHex(const std::string &hex) {
    Bytes out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) out.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return out;
}

std::string Int(int64_t value) {
    Bytes out;
    sim::cbor::PutInt(&out, value);
    return Hex(out);
}

bool Decodes(const std::string &hex, sim::cbor::Item *item) {
    Bytes bytes = FromHex(hex);
    return sim::cbor::Decode(bytes.data(), bytes.size(), item);
}

// The examples of the CBOR standard's appendix.
TEST(Cbor, IntegersTakeTheShortestHead) {
    EXPECT_EQ(Int(0), "00");
    EXPECT_EQ(Int(23), "17");
    EXPECT_EQ(Int(24), "1818");
    EXPECT_EQ(Int(100), "1864");
    EXPECT_EQ(Int(1000), "1903e8");
    EXPECT_EQ(Int(1000000), "1a000f4240");
    EXPECT_EQ(Int(1000000000000), "1b000000e8d4a51000");
    EXPECT_EQ(Int(-1), "20");
    EXPECT_EQ(Int(-100), "3863");
    EXPECT_EQ(Int(-1000), "3903e7");
    EXPECT_EQ(Int(-68100), "3a00010a03");
}

TEST(Cbor, StringsArraysMapsAndTags) {
    Bytes out;
    sim::cbor::PutBytes(&out, {1, 2, 3, 4});
    sim::cbor::PutText(&out, "IETF");
    sim::cbor::PutArray(&out, 25);
    sim::cbor::PutMap(&out, 2);
    sim::cbor::PutTag(&out, 18);
    EXPECT_EQ(Hex(out), "4401020304" "6449455446" "9819" "a2" "d2");
}

TEST(Cbor, DecodesNestedItems) {
    sim::cbor::Item item;
    ASSERT_TRUE(Decodes("8301820203820405", &item));  // [1, [2, 3], [4, 5]]
    ASSERT_EQ(item.type, sim::cbor::Type::kArray);
    ASSERT_EQ(item.items.size(), 3u);
    EXPECT_EQ(item.items[1].items[1].number, 3u);
    ASSERT_TRUE(Decodes("a201020304", &item));  // {1: 2, 3: 4}
    ASSERT_NE(item.Find(3), nullptr);
    EXPECT_EQ(item.Find(3)->number, 4u);
    EXPECT_EQ(item.Find(2), nullptr);
    int64_t value = 0;
    ASSERT_TRUE(Decodes("3a00010a03", &item));
    ASSERT_TRUE(item.Int(&value));
    EXPECT_EQ(value, -68100);
    ASSERT_TRUE(Decodes("d24101", &item));  // 18(h'01')
    EXPECT_EQ(item.type, sim::cbor::Type::kTag);
    EXPECT_EQ(item.items[0].bytes, Bytes{1});
    ASSERT_TRUE(Decodes("f6", &item));  // null
}

TEST(Cbor, RefusesWhatItCannotReadWhole) {
    sim::cbor::Item item;
    EXPECT_FALSE(Decodes("", &item));
    EXPECT_FALSE(Decodes("0000", &item));          // trailing bytes
    EXPECT_FALSE(Decodes("19e8", &item));          // truncated head
    EXPECT_FALSE(Decodes("440102", &item));        // string longer than the input
    EXPECT_FALSE(Decodes("9bffffffffffffffff", &item));  // more elements than bytes
    EXPECT_FALSE(Decodes("bb7fffffffffffffff00", &item));
    EXPECT_FALSE(Decodes("9f01ff", &item));        // indefinite length
    EXPECT_FALSE(Decodes("fb3ff0000000000000", &item));  // floating point
    EXPECT_FALSE(Decodes("1c", &item));            // reserved
    EXPECT_FALSE(Decodes(std::string(40, '8') + "1", &item));  // nested too deep
    EXPECT_FALSE(sim::cbor::Decode(nullptr, 0, &item));
}

TEST(CoseToken, SignedTokenCarriesThePayloadThatWasSigned) {
    Bytes header = sim::cbor::EncodeProtected(-8);
    Bytes payload = sim::cbor::EncodeClaims(0x0102030405060708u, {{-67001, 1}, {-68100, 3}});
    EXPECT_EQ(Hex(header), "a10127");
    EXPECT_EQ(Hex(payload), "a307480102030405060708" "3a000105b801" "3a00010a0303");
    EXPECT_EQ(Hex(sim::cbor::SigStructure(header, payload)),
              "846a5369676e617475726531" "43a10127" "40" "57" + Hex(payload));
    Bytes token = sim::cbor::Sign1(header, payload, {0xAA, 0xBB});
    EXPECT_EQ(Hex(token), "d284" "43a10127" "a0" "57" + Hex(payload) + "42aabb");
    sim::cbor::Token parsed;
    ASSERT_TRUE(sim::cbor::ParseSign1(token.data(), token.size(), &parsed));
    EXPECT_EQ(parsed.algorithm, -8);
    EXPECT_EQ(parsed.cti, 0x0102030405060708u);
    EXPECT_EQ(parsed.claims, (sim::cbor::Claims{{-67001, 1}, {-68100, 3}}));
    EXPECT_EQ(parsed.signature, (Bytes{0xAA, 0xBB}));
}

TEST(CoseToken, RefusesWhatIsNoSignedToken) {
    Bytes header = sim::cbor::EncodeProtected(-35);
    Bytes payload = sim::cbor::EncodeClaims(1, {});
    sim::cbor::Token parsed;
    Bytes sigStructure = sim::cbor::SigStructure(header, payload);  // not yet signed
    EXPECT_FALSE(sim::cbor::ParseSign1(sigStructure.data(), sigStructure.size(), &parsed));
    Bytes unsigned_ = sim::cbor::Sign1(header, payload, {});
    EXPECT_FALSE(sim::cbor::ParseSign1(unsigned_.data(), unsigned_.size(), &parsed));
    Bytes noCti;
    sim::cbor::PutMap(&noCti, 0);
    Bytes anonymous = sim::cbor::Sign1(header, noCti, {1});
    EXPECT_FALSE(sim::cbor::ParseSign1(anonymous.data(), anonymous.size(), &parsed));
    Bytes otherTag = sim::cbor::Sign1(header, payload, {1});
    otherTag[0] = 0xD1;  // 17: COSE_Mac0
    EXPECT_FALSE(sim::cbor::ParseSign1(otherTag.data(), otherTag.size(), &parsed));
    Bytes untagged(otherTag.begin() + 1, otherTag.end());
    EXPECT_TRUE(sim::cbor::ParseSign1(untagged.data(), untagged.size(), &parsed));
    EXPECT_TRUE(parsed.claims.empty());
}

TEST(ClaimNames, FirstRowWithTheKeyOrNone) {
    EXPECT_STREQ(ClaimName(-67001), "Persist");
    EXPECT_STREQ(ClaimName(-68000), "Serial Debug ");
    EXPECT_STREQ(ClaimName(-68200), "RWNonSecReg");
    EXPECT_EQ(ClaimName(7), nullptr);
    EXPECT_EQ(ClaimName(-68006), nullptr);
}

}  // namespace
