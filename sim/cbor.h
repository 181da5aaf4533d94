// CBOR (RFC 8949), as much as the debug tokens need: integers, byte and
// text strings, arrays, maps and tags of definite length, and the two COSE
// structures (RFC 9052) a debug token is made of.
#ifndef ZENTREL_SIM_CBOR_H
#define ZENTREL_SIM_CBOR_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace sim::cbor {

using Bytes = std::vector<uint8_t>;

// Encoding, appended to *out in the shortest form.
void PutInt(Bytes *out, int64_t value);
void PutBytes(Bytes *out, const Bytes &bytes);
void PutText(Bytes *out, const std::string &text);
void PutArray(Bytes *out, uint64_t count);
void PutMap(Bytes *out, uint64_t pairs);
void PutTag(Bytes *out, uint64_t tag);

enum class Type { kUnsigned, kNegative, kBytes, kText, kArray, kMap, kTag, kSimple };

// One decoded data item. number: the value of an unsigned integer, -1 - n
// of a negative one, the tag or the simple value; bytes: the contents of a
// string; items: the elements of an array, a map's keys and values in turn,
// or the one item a tag encloses.
struct Item {
    Type type = Type::kSimple;
    uint64_t number = 0;
    Bytes bytes;
    std::vector<Item> items;

    // True for an integer that fits int64_t, stored in *value.
    bool Int(int64_t *value) const;
    // The value of an integer key of a map, or null.
    const Item *Find(int64_t key) const;
};

// Decodes exactly one item that fills all the bytes. False for truncated
// input, trailing bytes, indefinite lengths, floating-point values, nesting
// deeper than 16, or more elements than the input could hold.
bool Decode(const uint8_t *data, size_t size, Item *out);

// A debug token's claims: integer keys with integer values, in order.
using Claims = std::vector<std::pair<int64_t, int64_t>>;

// The claims map of a token: the token identity as claim 7 (cti, the eight
// bytes high word first), then the claims.
Bytes EncodeClaims(uint64_t cti, const Claims &claims);
// The protected header of a token: {1 (alg): algorithm}.
Bytes EncodeProtected(int64_t algorithm);
// ["Signature1", protected, external_aad (empty), payload]: the bytes to sign.
Bytes SigStructure(const Bytes &protectedHeader, const Bytes &payload);
// 18([protected, {}, payload, signature]): the signed token.
Bytes Sign1(const Bytes &protectedHeader, const Bytes &payload, const Bytes &signature);

// What a signed token carries.
struct Token {
    int64_t algorithm = 0;
    uint64_t cti = 0;
    Claims claims;  // the integer claims other than cti, in order
    Bytes signature;
};

// Reads a COSE_Sign1 object (tagged 18 or not) whose protected header names
// an algorithm and whose payload is a claims map with a cti of eight bytes;
// false for anything else, or an empty signature.
bool ParseSign1(const uint8_t *data, size_t size, Token *out);

}  // namespace sim::cbor

#endif
