// The one reader of the simulator's JSON files (scenarios and the state
// file): bounded in size and depth, strict about numbers, and naming the
// whole path of a bad field with at most a short excerpt of its value.
#ifndef ZENTREL_SIM_READER_H
#define ZENTREL_SIM_READER_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace sim {

using Json = nlohmann::json;

// Larger files are refused rather than read.
constexpr size_t kMaxJsonFileBytes = 4u << 20;
// No valid file nests deeper than this; deeper input is refused.
constexpr size_t kMaxJsonDepth = 16;

// What is wrong with a file, and where: "devices[0].healthConfig.severity".
// A reader that finds a problem sets the message (error = "...") and returns
// false; each enclosing reader puts its key or index in front of the path.
struct Problem {
    std::string path;
    std::string message;

    Problem &operator=(std::string text) {
        message = std::move(text);
        return *this;
    }
    // Both return false, so that a reader can `return error->In(key);`.
    bool In(const std::string &key);
    bool At(size_t index);
    std::string Text() const { return path.empty() ? message : path + ": " + message; }
};

// A key, quoted and cut to a few dozen characters, for a message.
std::string Quote(const std::string &key);
// A value for a message: a number or a short text excerpt, never a whole
// object or list.
std::string Excerpt(const Json &value);

// Reads and parses a JSON file (comments allowed). False, with *why set,
// when it is not a readable regular file, is larger than kMaxJsonFileBytes,
// nests deeper than kMaxJsonDepth or is not JSON.
bool ReadJsonFile(const char *path, Json *doc, std::string *why);

// One number: a JSON integer, or a text of decimal digits or of "0x" and
// hex digits, nothing else. False, with the message set, when it is none of
// these or is larger than max.
bool ReadNumber(const Json &value, uint64_t max, uint64_t *out, Problem *error);

// A number into a field of its own width.
template <typename T>
bool Store(const Json &value, T *field, Problem *error, uint64_t max = static_cast<T>(~static_cast<T>(0))) {
    uint64_t v = 0;
    if (!ReadNumber(value, max, &v, error)) return false;
    *field = static_cast<T>(v);
    return true;
}

// "a.b.c.d" (or "a.b") with parts up to 255, packed most significant byte
// first, or a plain number.
bool ReadVersion(const Json &value, uint32_t *out, Problem *error);

// A field of a JSON object and where its number goes.
struct Field {
    const char *name;
    uint32_t *place;
    uint64_t max;
};
// {"field": number, ...}: only the fields given change; unknown ones are
// refused. The fields named in `skip` are left for the caller.
bool ReadFields(const Json &value, Field *fields, size_t count, Problem *error,
                std::initializer_list<const char *> skip = {});

// A text of at most width bytes into a fixed field, zero-padded and
// unterminated when full. The text is a JSON string, or a list of byte
// values for texts that are not plain printable ASCII (as WriteText saves them).
bool ReadText(const Json &value, char *field, size_t width, Problem *error);
Json WriteText(const char *field, size_t width);

// Bytes as a text of hex digit pairs ("3082..."), at most max bytes.
bool ReadHexBytes(const Json &value, size_t max, std::vector<uint8_t> *bytes, Problem *error);
Json WriteHexBytes(const std::vector<uint8_t> &bytes);

// The answer of a part's applyKey for a key it owns: 1 when the value was
// taken, -1 when it was bad.
inline int Took(bool ok) {
    return ok ? 1 : -1;
}

// [{"<key>": n, ...}, ...]: a list whose entries each name, by a number up
// to max, the item (pin, station, port...) they change; each(n, entry,
// error) reads the rest of the entry, skipping the key.
template <typename Each>
bool ReadNumberedList(const Json &list, const char *key, uint64_t max, Problem *error, Each each);

// The object's member, or null when it has none.
const Json *Member(const Json &object, const char *key);

template <typename Each>
bool ReadNumberedList(const Json &list, const char *key, uint64_t max, Problem *error, Each each) {
    if (!list.is_array()) {
        *error = "must be a list, not " + Excerpt(list);
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        const Json *number = Member(list[i], key);
        uint64_t n = 0;
        if (number == nullptr) {
            *error = std::string("needs \"") + key + "\" from 0 to " + std::to_string(max);
            return error->At(i);
        }
        if (!ReadNumber(*number, max, &n, error)) return error->In(key), error->At(i);
        if (!each(n, list[i], error)) return error->At(i);
    }
    return true;
}

}  // namespace sim

#endif
