#include "cbor.h"

namespace sim::cbor {

namespace {

constexpr size_t kMaxDepth = 16;
constexpr uint64_t kCtiKey = 7;
constexpr uint64_t kAlgKey = 1;
constexpr uint64_t kCoseSign1Tag = 18;

void PutHead(Bytes *out, uint8_t major, uint64_t argument) {
    uint8_t type = static_cast<uint8_t>(major << 5);
    int width = 0;
    if (argument < 24) {
        out->push_back(static_cast<uint8_t>(type | argument));
        return;
    }
    if (argument <= 0xFF) {
        out->push_back(type | 24);
        width = 1;
    } else if (argument <= 0xFFFF) {
        out->push_back(type | 25);
        width = 2;
    } else if (argument <= 0xFFFFFFFFu) {
        out->push_back(type | 26);
        width = 4;
    } else {
        out->push_back(type | 27);
        width = 8;
    }
    for (int i = width - 1; i >= 0; --i) out->push_back(static_cast<uint8_t>(argument >> (8 * i)));
}

class Reader {
public:
    Reader(const uint8_t *data, size_t size) : p_(data), end_(data + size) {}

    bool Item(cbor::Item *out, size_t depth) {
        if (depth > kMaxDepth || p_ == end_) return false;
        uint8_t initial = *p_++;
        uint8_t major = initial >> 5, info = initial & 0x1F;
        uint64_t argument = 0;
        if (info < 24) {
            argument = info;
        } else if (info <= 27) {
            size_t width = size_t{1} << (info - 24);
            if (Left() < width) return false;
            for (size_t i = 0; i < width; ++i) argument = argument << 8 | *p_++;
        } else {
            return false;  // reserved, or an indefinite length
        }
        out->type = static_cast<Type>(major);
        out->number = argument;
        switch (major) {
        case 0:
        case 1:
            return true;
        case 2:
        case 3:
            if (Left() < argument) return false;
            out->bytes.assign(p_, p_ + argument);
            p_ += argument;
            return true;
        case 4:
        case 5: {
            // Every element takes at least one byte.
            uint64_t count = major == 4 ? argument : argument * 2;
            if (argument > Left() || count > Left()) return false;
            out->items.resize(count);
            for (cbor::Item &item : out->items)
                if (!Item(&item, depth + 1)) return false;
            return true;
        }
        case 6:
            out->items.resize(1);
            return Item(&out->items[0], depth + 1);
        default:  // false, true, null and undefined only; no floating point
            return info < 24;
        }
    }

    bool AtEnd() const { return p_ == end_; }

private:
    size_t Left() const { return static_cast<size_t>(end_ - p_); }
    const uint8_t *p_;
    const uint8_t *end_;
};

bool DecodeBytes(const Bytes &bytes, cbor::Item *out) {
    return Decode(bytes.data(), bytes.size(), out);
}

}  // namespace

void PutInt(Bytes *out, int64_t value) {
    if (value >= 0)
        PutHead(out, 0, static_cast<uint64_t>(value));
    else
        PutHead(out, 1, static_cast<uint64_t>(-(value + 1)));
}

void PutBytes(Bytes *out, const Bytes &bytes) {
    PutHead(out, 2, bytes.size());
    out->insert(out->end(), bytes.begin(), bytes.end());
}

void PutText(Bytes *out, const std::string &text) {
    PutHead(out, 3, text.size());
    out->insert(out->end(), text.begin(), text.end());
}

void PutArray(Bytes *out, uint64_t count) {
    PutHead(out, 4, count);
}

void PutMap(Bytes *out, uint64_t pairs) {
    PutHead(out, 5, pairs);
}

void PutTag(Bytes *out, uint64_t tag) {
    PutHead(out, 6, tag);
}

bool Item::Int(int64_t *value) const {
    if (number > static_cast<uint64_t>(INT64_MAX)) return false;
    if (type == Type::kUnsigned) {
        *value = static_cast<int64_t>(number);
        return true;
    }
    if (type == Type::kNegative) {
        *value = -1 - static_cast<int64_t>(number);
        return true;
    }
    return false;
}

const Item *Item::Find(int64_t key) const {
    if (type != Type::kMap) return nullptr;
    for (size_t i = 0; i + 1 < items.size(); i += 2) {
        int64_t k = 0;
        if (items[i].Int(&k) && k == key) return &items[i + 1];
    }
    return nullptr;
}

bool Decode(const uint8_t *data, size_t size, Item *out) {
    if (data == nullptr) return false;
    Reader reader(data, size);
    *out = Item();
    return reader.Item(out, 0) && reader.AtEnd();
}

Bytes EncodeClaims(uint64_t cti, const Claims &claims) {
    Bytes out;
    PutMap(&out, claims.size() + 1);
    PutInt(&out, kCtiKey);
    Bytes id(8);
    for (int i = 0; i < 8; ++i) id[i] = static_cast<uint8_t>(cti >> (56 - 8 * i));
    PutBytes(&out, id);
    for (const auto &[key, value] : claims) {
        PutInt(&out, key);
        PutInt(&out, value);
    }
    return out;
}

Bytes EncodeProtected(int64_t algorithm) {
    Bytes out;
    PutMap(&out, 1);
    PutInt(&out, kAlgKey);
    PutInt(&out, algorithm);
    return out;
}

Bytes SigStructure(const Bytes &protectedHeader, const Bytes &payload) {
    Bytes out;
    PutArray(&out, 4);
    PutText(&out, "Signature1");
    PutBytes(&out, protectedHeader);
    PutBytes(&out, {});
    PutBytes(&out, payload);
    return out;
}

Bytes Sign1(const Bytes &protectedHeader, const Bytes &payload, const Bytes &signature) {
    Bytes out;
    PutTag(&out, kCoseSign1Tag);
    PutArray(&out, 4);
    PutBytes(&out, protectedHeader);
    PutMap(&out, 0);
    PutBytes(&out, payload);
    PutBytes(&out, signature);
    return out;
}

bool ParseSign1(const uint8_t *data, size_t size, Token *out) {
    Item top;
    if (!Decode(data, size, &top)) return false;
    const Item *sign1 = &top;
    if (top.type == Type::kTag) {
        if (top.number != kCoseSign1Tag) return false;
        sign1 = &top.items[0];
    }
    if (sign1->type != Type::kArray || sign1->items.size() != 4) return false;
    const Item &prot = sign1->items[0], &unprotected = sign1->items[1], &payload = sign1->items[2],
               &signature = sign1->items[3];
    if (prot.type != Type::kBytes || unprotected.type != Type::kMap || payload.type != Type::kBytes ||
        signature.type != Type::kBytes || signature.bytes.empty())
        return false;
    Item header, claims;
    if (!DecodeBytes(prot.bytes, &header) || !DecodeBytes(payload.bytes, &claims)) return false;
    const Item *alg = header.Find(kAlgKey);
    if (alg == nullptr || !alg->Int(&out->algorithm)) return false;
    const Item *cti = claims.Find(kCtiKey);
    if (cti == nullptr || cti->type != Type::kBytes || cti->bytes.size() != 8) return false;
    out->cti = 0;
    for (uint8_t b : cti->bytes) out->cti = out->cti << 8 | b;
    out->claims.clear();
    for (size_t i = 0; i < claims.items.size(); i += 2) {
        int64_t key = 0, value = 0;
        if (!claims.items[i].Int(&key) || key == static_cast<int64_t>(kCtiKey)) continue;
        if (claims.items[i + 1].Int(&value)) out->claims.emplace_back(key, value);
    }
    out->signature = signature.bytes;
    return true;
}

}  // namespace sim::cbor
