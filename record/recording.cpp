// The recording format, and the list of library functions as data.
#include "recording.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zrec {

const char kHeader[] = "zentrel-recording 1";
const char kMfgObjectName[] = "switchMfgInfo_temp";
const char kFilePrefix[] = "file:";

namespace {

#define ZENTREL_FUNCTION(name, ...) \
    const ParamInfo kParams_##name[] = {{Kind::Scalar, "", 0} ZI_FOR_EACH(ZI_INFO, __VA_ARGS__)};
#include "zentrel_interface.def"
#undef ZENTREL_FUNCTION

const char kHexDigits[] = "0123456789abcdef";

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool IsOutKind(Kind kind) { return kind == Kind::Out || kind == Kind::InOut || kind == Kind::OutFilled; }

// The value an argument has in the call's text.
std::string InValue(const Arg &arg) {
    switch (arg.kind) {
    case Kind::Device: {
        if (!arg.present) return "null";
        char text[16];
        snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(arg.value));
        return text;
    }
    case Kind::Scalar:
        return std::to_string(arg.value);
    case Kind::In:
    case Kind::InOut: {
        if (!arg.present) return "null";
        std::vector<uint8_t> bytes = HeldBytes(arg);
        std::string out = "x";
        AppendHex(out, bytes.data(), bytes.size());
        return out;
    }
    case Kind::Out:
    case Kind::OutFilled:
        return arg.present ? "*" : "null";
    case Kind::Text:
        return EncodeText(static_cast<const char *>(arg.bytes), arg.size == 0 ? 4096 : arg.size);
    case Kind::FileOut:
    case Kind::DirOut:
        return EncodeText(static_cast<const char *>(arg.bytes));
    }
    return "";
}

bool IsNumber(const std::string &text) {
    if (text.empty()) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    return true;
}

// 0x and one to eight hex digits.
bool IsHexNumber(const std::string &text) {
    if (text.size() < 3 || text.size() > 10 || text.compare(0, 2, "0x") != 0) return false;
    for (size_t i = 2; i < text.size(); ++i)
        if (HexValue(text[i]) < 0) return false;
    return true;
}

// Whether value is a well-formed in-value of a parameter of this kind.
bool CheckInValue(const ParamInfo &param, const std::string &value, std::string *error) {
    if (value == "null" && param.kind != Kind::Scalar) return true;
    std::vector<uint8_t> bytes;
    std::string text;
    switch (param.kind) {
    case Kind::Device:
        if (IsHexNumber(value)) return true;
        break;
    case Kind::Scalar:
        if (IsNumber(value)) return true;
        break;
    case Kind::In:
    case Kind::InOut:
        if (value[0] == 'x' && DecodeHex(value.substr(1), &bytes)) {
            if (param.fixedSize == 0 || bytes.size() == param.fixedSize) return true;
            *error = std::string(param.name) + " holds " + std::to_string(bytes.size()) + " bytes, not " +
                     std::to_string(param.fixedSize);
            return false;
        }
        break;
    case Kind::Out:
    case Kind::OutFilled:
        if (value == "*") return true;
        break;
    case Kind::Text:
    case Kind::FileOut:
    case Kind::DirOut:
        if (DecodeText(value, &text)) return true;
        break;
    }
    *error = "bad value of " + std::string(param.name) + ": " + value.substr(0, 40);
    return false;
}

bool CheckOutValue(const FunctionInfo &function, const std::string &name, const std::string &value,
                   std::string *error) {
    std::vector<uint8_t> bytes;
    if (value.empty() || value[0] != 'x' || !DecodeHex(value.substr(1), &bytes)) {
        *error = "bad bytes of " + name;
        return false;
    }
    if (name == kMfgObjectName) {
        if (bytes.size() == sizeof(ZENTREL_SWITCH_MFG_INFO)) return true;
        *error = name + " holds " + std::to_string(bytes.size()) + " bytes, not " +
                 std::to_string(sizeof(ZENTREL_SWITCH_MFG_INFO));
        return false;
    }
    std::string path;
    if (name.compare(0, strlen(kFilePrefix), kFilePrefix) == 0) {
        if (DecodeText(name.substr(strlen(kFilePrefix)), &path) && !path.empty()) return true;
        *error = "bad file name " + name;
        return false;
    }
    for (size_t i = 1; i < function.count; ++i) {
        const ParamInfo &param = function.params[i];
        if (name != param.name || !IsOutKind(param.kind)) continue;
        if (param.fixedSize == 0 || bytes.size() == param.fixedSize) return true;
        *error = name + " holds " + std::to_string(bytes.size()) + " bytes, not " + std::to_string(param.fixedSize);
        return false;
    }
    *error = std::string(function.name) + " has no out-value " + name;
    return false;
}

}  // namespace

#define ZENTREL_FUNCTION(name, ...) {#name, kParams_##name, sizeof kParams_##name / sizeof kParams_##name[0]},
const FunctionInfo kFunctions[] = {
#include "zentrel_interface.def"
};
#undef ZENTREL_FUNCTION
const size_t kFunctionCount = sizeof kFunctions / sizeof kFunctions[0];

const FunctionInfo *FindFunction(const char *name) {
    for (const FunctionInfo &f : kFunctions)
        if (strcmp(f.name, name) == 0) return &f;
    return nullptr;
}

// The count answer, or a 16-byte head and the port blocks it counts, each
// BlockSize bytes long; never past the longest list the library writes.
size_t DsListFilled(const Arg &buffer) {
    if (!buffer.present) return 0;
    if (buffer.context == ZENTREL_DS_SELECT_COUNT) return sizeof(ZENTREL_DS_DEVICE_COUNT);
    if (buffer.context != ZENTREL_DS_SELECT_ALL) return 0;
    const uint8_t *bytes = static_cast<const uint8_t *>(buffer.bytes);
    const size_t max = 0xFFFF;
    ZENTREL_DS_LIST_HEAD head;
    memcpy(&head, bytes, sizeof head);
    size_t end = sizeof head;
    for (uint32_t i = 0; i < head.NumBlocks && end + sizeof(ZENTREL_DS_PORT_BLOCK) <= max; ++i) {
        ZENTREL_DS_PORT_BLOCK block;
        memcpy(&block, bytes + end, sizeof block);
        if (block.BlockSize < sizeof block || end + block.BlockSize > max) break;
        end += block.BlockSize;
    }
    return end;
}

void AppendHex(std::string &out, const void *bytes, size_t count) {
    const uint8_t *p = static_cast<const uint8_t *>(bytes);
    out.reserve(out.size() + 2 * count);
    for (size_t i = 0; i < count; ++i) {
        out += kHexDigits[p[i] >> 4];
        out += kHexDigits[p[i] & 15];
    }
}

std::string EncodeText(const char *text, size_t max) {
    if (text == nullptr) return "null";
    std::string out = "\"";
    for (size_t i = 0; i < max && text[i] != '\0'; ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        if (c <= ' ' || c >= 0x7F || c == '"' || c == '%') {
            out += '%';
            out += kHexDigits[c >> 4];
            out += kHexDigits[c & 15];
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

bool DecodeHex(const std::string &hex, std::vector<uint8_t> *bytes) {
    if (hex.size() % 2 != 0) return false;
    bytes->clear();
    bytes->reserve(hex.size() / 2);
    for (size_t i = 0; i < hex.size(); i += 2) {
        int high = HexValue(hex[i]), low = HexValue(hex[i + 1]);
        if (high < 0 || low < 0) return false;
        bytes->push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return true;
}

bool DecodeText(const std::string &quoted, std::string *text) {
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') return false;
    text->clear();
    for (size_t i = 1; i + 1 < quoted.size(); ++i) {
        char c = quoted[i];
        if (c == '"') return false;
        if (c != '%') {
            *text += c;
            continue;
        }
        if (i + 3 >= quoted.size()) return false;
        int high = HexValue(quoted[i + 1]), low = HexValue(quoted[i + 2]);
        if (high < 0 || low < 0) return false;
        *text += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return true;
}

std::vector<uint8_t> HeldBytes(const Arg &arg) {
    const uint8_t *p = static_cast<const uint8_t *>(arg.bytes);
    if (arg.segments == nullptr || p == nullptr) return std::vector<uint8_t>(p, p + arg.size);
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < arg.segmentCount; ++i) {
        const Segment &s = arg.segments[i];
        if (!s.pointer) {
            bytes.insert(bytes.end(), p + s.offset, p + s.offset + s.size);
            continue;
        }
        void *pointer = nullptr;
        memcpy(&pointer, p + s.offset, sizeof pointer);
        uint8_t marker[kPortablePointerBytes] = {static_cast<uint8_t>(pointer != nullptr ? 1 : 0)};
        bytes.insert(bytes.end(), marker, marker + sizeof marker);
    }
    return bytes;
}

void StoreHeldBytes(Arg &arg, const std::vector<uint8_t> &bytes) {
    uint8_t *p = static_cast<uint8_t *>(arg.bytes);
    if (p == nullptr) return;
    if (arg.segments == nullptr) {
        size_t n = arg.kind == Kind::OutFilled || bytes.size() < arg.size ? bytes.size() : arg.size;
        if (n > 0) memcpy(p, bytes.data(), n);
        return;
    }
    size_t held = 0;
    for (size_t i = 0; i < arg.segmentCount; ++i) {
        const Segment &s = arg.segments[i];
        size_t length = s.pointer ? kPortablePointerBytes : s.size;
        if (held + length > bytes.size()) return;
        if (!s.pointer) {
            memcpy(p + s.offset, bytes.data() + held, s.size);
        } else if (std::all_of(bytes.begin() + held, bytes.begin() + held + length, [](uint8_t b) { return b == 0; })) {
            memset(p + s.offset, 0, s.size);  // the library left it null; a set one keeps the caller's pointer
        }
        held += length;
    }
}

std::string EncodeCall(const char *function, const Arg *args, size_t count) {
    std::string out = function;
    out += '(';
    for (size_t i = 0; i < count; ++i) {
        if (i > 0) out += ' ';
        out += args[i].name;
        out += '=';
        out += InValue(args[i]);
    }
    return out + ')';
}

bool ParseLine(const std::string &text, Entry *entry, std::string *error) {
    size_t open = text.find('(');
    size_t close = text.find(") = 0x");
    if (open == std::string::npos || close == std::string::npos || close < open) {
        *error = "not a call: " + text.substr(0, 40);
        return false;
    }
    std::string name = text.substr(0, open);
    entry->function = FindFunction(name.c_str());
    if (entry->function == nullptr) {
        *error = "unknown function " + name.substr(0, 60);
        return false;
    }
    const FunctionInfo &function = *entry->function;
    entry->call = text.substr(0, close + 1);
    // The arguments, in the order of the list.
    std::string args = text.substr(open + 1, close - open - 1);
    size_t pos = 0;
    for (size_t i = 1; i < function.count; ++i) {
        const ParamInfo &param = function.params[i];
        size_t end = args.find(' ', pos);
        std::string token = args.substr(pos, end == std::string::npos ? std::string::npos : end - pos);
        std::string prefix = std::string(param.name) + "=";
        if (token.compare(0, prefix.size(), prefix) != 0) {
            *error = name + " needs " + param.name + " as its argument " + std::to_string(i);
            return false;
        }
        std::string value = token.substr(prefix.size());
        if (!CheckInValue(param, value, error)) return false;
        if (param.kind == Kind::Device) entry->device = value;
        if ((end == std::string::npos) != (i + 1 == function.count)) {
            *error = name + " takes " + std::to_string(function.count - 1) + " arguments";
            return false;
        }
        pos = end + 1;
    }
    if (function.count == 1 && !args.empty()) {
        *error = name + " takes no arguments";
        return false;
    }
    // The status, then the values the call handed out.
    size_t statusStart = close + 6;
    size_t statusEnd = text.find(' ', statusStart);
    std::string status = text.substr(statusStart - 2, statusEnd == std::string::npos ? std::string::npos
                                                                                     : statusEnd - statusStart + 2);
    if (!IsHexNumber(status)) {
        *error = "bad status " + status.substr(0, 20);
        return false;
    }
    entry->status = static_cast<ZENTREL_STATUS>(strtoul(status.c_str() + 2, nullptr, 16));
    entry->outs.clear();
    for (pos = statusEnd; pos != std::string::npos;) {
        size_t end = text.find(' ', pos + 1);
        std::string token = text.substr(pos + 1, end == std::string::npos ? std::string::npos : end - pos - 1);
        size_t equals = token.rfind('=');
        if (equals == std::string::npos || equals == 0) {
            *error = "bad out-value " + token.substr(0, 40);
            return false;
        }
        std::string outName = token.substr(0, equals), value = token.substr(equals + 1);
        if (!CheckOutValue(function, outName, value, error)) return false;
        entry->outs.emplace_back(outName, value);
        pos = end;
    }
    return true;
}

}  // namespace zrec
