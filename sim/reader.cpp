// The bounded, strict reader of the simulator's JSON files.
#include "reader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sim {

namespace {

// Keys and texts quoted in a message are cut to this many bytes.
constexpr size_t kExcerptBytes = 40;

// The first few dozen bytes of a text, quoted as JSON writes it, so that
// control characters and broken UTF-8 cannot break the message's line.
std::string Cut(const std::string &text) {
    bool cut = text.size() > kExcerptBytes;
    std::string quoted = Json(cut ? text.substr(0, kExcerptBytes) : text).dump(-1, ' ', false, Json::error_handler_t::replace);
    if (cut) quoted.insert(quoted.size() - 1, "...");
    return quoted;
}

// Checks the syntax and the nesting depth in one pass, without building
// anything, so that a hostile file is refused before it is turned into a tree.
class Checker : public nlohmann::json_sax<Json> {
public:
    std::string message;
    size_t depth = 0;

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool start_object(std::size_t) override { return Enter(); }
    bool key(string_t &) override { return true; }
    bool end_object() override { return Leave(); }
    bool start_array(std::size_t) override { return Enter(); }
    bool end_array() override { return Leave(); }
    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &error) override {
        message = std::string("is not valid JSON: ") + error.what();
        return false;
    }

private:
    bool Enter() {
        if (++depth <= kMaxJsonDepth) return true;
        message = "nests deeper than " + std::to_string(kMaxJsonDepth) + " levels";
        return false;
    }
    bool Leave() {
        --depth;
        return true;
    }
};

// Reads at most limit + 1 bytes, so that a larger file is known to be one.
bool ReadBounded(int fd, size_t limit, std::string *text, std::string *why) {
    text->clear();
    char chunk[65536];
    for (;;) {
        ssize_t n = read(fd, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            *why = std::string("cannot be read: ") + strerror(errno);
            return false;
        }
        if (n == 0) return true;
        text->append(chunk, static_cast<size_t>(n));
        if (text->size() > limit) {
            *why = "is larger than " + std::to_string(limit >> 20) + " MiB";
            return false;
        }
    }
}

bool IsPlainText(const char *text, size_t size) {
    for (size_t i = 0; i < size; ++i)
        if (text[i] < 0x20 || text[i] > 0x7E) return false;
    return true;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

bool Problem::In(const std::string &key) {
    std::string segment = Cut(key);
    segment = segment.substr(1, segment.size() - 2);  // a path's names go unquoted
    if (path.empty())
        path = segment;
    else if (path[0] == '[')
        path = segment + path;
    else
        path = segment + "." + path;
    return false;
}

bool Problem::At(size_t index) {
    path = "[" + std::to_string(index) + "]" + (path.empty() || path[0] == '[' ? "" : ".") + path;
    return false;
}

std::string Quote(const std::string &key) {
    return Cut(key);
}

std::string Excerpt(const Json &value) {
    switch (value.type()) {
    case Json::value_t::object:
        return "an object";
    case Json::value_t::array:
        return "a list";
    case Json::value_t::string:
        return Quote(value.get<std::string>());
    default:
        return value.dump();  // a number, true, false or null: short
    }
}

bool ReadJsonFile(const char *path, Json *doc, std::string *why) {
    // Opened without blocking, so that a FIFO is refused instead of waited on.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        *why = std::string("cannot be opened: ") + strerror(errno);
        return false;
    }
    struct stat st;
    std::string text;
    bool ok = false;
    if (fstat(fd, &st) != 0)
        *why = std::string("cannot be read: ") + strerror(errno);
    else if (S_ISDIR(st.st_mode))
        *why = "is a directory";
    else if (!S_ISREG(st.st_mode))
        *why = "is not a regular file";
    else if (static_cast<uint64_t>(st.st_size) > kMaxJsonFileBytes)
        *why = "is larger than " + std::to_string(kMaxJsonFileBytes >> 20) + " MiB";
    else
        ok = ReadBounded(fd, kMaxJsonFileBytes, &text, why);
    close(fd);
    if (!ok) return false;
    Checker checker;
    if (!Json::sax_parse(text, &checker, nlohmann::detail::input_format_t::json, true, true)) {
        *why = checker.message.empty() ? "is not valid JSON" : checker.message;
        return false;
    }
    *doc = Json::parse(text, nullptr, false, true);
    if (doc->is_discarded()) {
        *why = "is not valid JSON";
        return false;
    }
    return true;
}

bool ReadNumber(const Json &value, uint64_t max, uint64_t *out, Problem *error) {
    uint64_t v = 0;
    bool tooLarge = false;
    if (value.is_number_unsigned()) {
        v = value.get<uint64_t>();
    } else if (value.is_number_integer()) {
        if (value.get<int64_t>() < 0) {
            *error = "a negative number is not allowed here";
            return false;
        }
        v = static_cast<uint64_t>(value.get<int64_t>());
    } else if (value.is_number_float()) {
        // Whole numbers beyond 64 bits arrive as floating point.
        double d = value.get<double>();
        if (!(d >= 18446744073709551616.0)) {
            *error = value.dump() + " is not a whole number";
            return false;
        }
        tooLarge = true;
    } else if (value.is_string()) {
        const std::string &text = value.get_ref<const std::string &>();
        bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
        size_t first = hex ? 2 : 0;
        unsigned base = hex ? 16 : 10;
        if (text.size() == first) {
            *error = Excerpt(value) + " is not a number";
            return false;
        }
        for (size_t i = first; i < text.size(); ++i) {
            char c = text[i];
            unsigned digit;
            if (c >= '0' && c <= '9')
                digit = static_cast<unsigned>(c - '0');
            else if (hex && c >= 'a' && c <= 'f')
                digit = static_cast<unsigned>(c - 'a' + 10);
            else if (hex && c >= 'A' && c <= 'F')
                digit = static_cast<unsigned>(c - 'A' + 10);
            else {
                *error = Excerpt(value) + " is not a number";
                return false;
            }
            if (v > (UINT64_MAX - digit) / base) tooLarge = true;
            v = v * base + digit;
        }
    } else {
        *error = Excerpt(value) + " is not a number";
        return false;
    }
    if (tooLarge) {
        *error = Excerpt(value) + " does not fit in 64 bits";
        return false;
    }
    if (v > max) {
        *error = std::to_string(v) + " is larger than " + std::to_string(max);
        return false;
    }
    *out = v;
    return true;
}

bool ReadVersion(const Json &value, uint32_t *out, Problem *error) {
    if (value.is_string() && value.get_ref<const std::string &>().find('.') != std::string::npos) {
        const std::string &text = value.get_ref<const std::string &>();
        uint32_t parts[4] = {};
        size_t count = 0, i = 0;
        bool ok = true;
        while (ok && count < 4) {
            size_t start = i;
            uint32_t part = 0;
            while (i < text.size() && text[i] >= '0' && text[i] <= '9' && part <= 255)
                part = part * 10 + static_cast<uint32_t>(text[i++] - '0');
            ok = i > start && part <= 255;
            parts[count++] = part;
            if (i == text.size()) break;
            ok = ok && text[i++] == '.';
        }
        if (ok && i == text.size() && count >= 2 && text.back() != '.') {
            *out = parts[0] << 24 | parts[1] << 16 | parts[2] << 8 | parts[3];
            return true;
        }
        *error = "a version is \"a.b.c.d\" with parts up to 255, or a number, not " + Excerpt(value);
        return false;
    }
    uint64_t v = 0;
    if (!ReadNumber(value, UINT32_MAX, &v, error)) {
        error->message = "a version is \"a.b.c.d\" or a number; " + error->message;
        return false;
    }
    *out = static_cast<uint32_t>(v);
    return true;
}

bool ReadFields(const Json &value, Field *fields, size_t count, Problem *error,
                std::initializer_list<const char *> skip) {
    if (!value.is_object()) {
        *error = "must be an object, not " + Excerpt(value);
        return false;
    }
    for (auto it = value.begin(); it != value.end(); ++it) {
        bool skipped = false;
        for (const char *name : skip) skipped = skipped || it.key() == name;
        if (skipped) continue;
        Field *field = nullptr;
        for (size_t i = 0; i < count; ++i)
            if (it.key() == fields[i].name) field = &fields[i];
        if (field == nullptr) {
            *error = "unknown field " + Quote(it.key());
            return false;
        }
        uint64_t v = 0;
        if (!ReadNumber(*it, field->max, &v, error)) return error->In(it.key());
        *field->place = static_cast<uint32_t>(v);
    }
    return true;
}

bool ReadText(const Json &value, char *field, size_t width, Problem *error) {
    std::string text;
    if (value.is_string()) {
        text = value.get<std::string>();
    } else if (value.is_array()) {
        for (size_t i = 0; i < value.size(); ++i) {
            uint64_t byte = 0;
            if (!ReadNumber(value[i], 0xFF, &byte, error)) return error->At(i);
            text += static_cast<char>(byte);
        }
    } else {
        *error = "must be a text, not " + Excerpt(value);
        return false;
    }
    if (text.size() > width) {
        *error = "must be a text of at most " + std::to_string(width) + " characters";
        return false;
    }
    memset(field, 0, width);
    memcpy(field, text.data(), text.size());
    return true;
}

Json WriteText(const char *field, size_t width) {
    size_t size = strnlen(field, width);
    if (IsPlainText(field, size)) return std::string(field, size);
    Json bytes = Json::array();
    for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(field[i]));
    return bytes;
}

const Json *Member(const Json &object, const char *key) {
    if (!object.is_object()) return nullptr;
    auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

bool ReadHexBytes(const Json &value, size_t max, std::vector<uint8_t> *bytes, Problem *error) {
    if (!value.is_string() || value.get_ref<const std::string &>().size() % 2 != 0) {
        *error = "must be a text of hex digit pairs, not " + Excerpt(value);
        return false;
    }
    const std::string &text = value.get_ref<const std::string &>();
    if (text.size() / 2 > max) {
        *error = "must be at most " + std::to_string(max) + " bytes";
        return false;
    }
    std::vector<uint8_t> out;
    out.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size(); i += 2) {
        int high = HexDigit(text[i]), low = HexDigit(text[i + 1]);
        if (high < 0 || low < 0) {
            *error = "must be a text of hex digit pairs, not " + Excerpt(value);
            return false;
        }
        out.push_back(static_cast<uint8_t>(high << 4 | low));
    }
    *bytes = std::move(out);
    return true;
}

Json WriteHexBytes(const std::vector<uint8_t> &bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (uint8_t b : bytes) {
        text += kDigits[b >> 4];
        text += kDigits[b & 0xF];
    }
    return text;
}

}  // namespace sim
