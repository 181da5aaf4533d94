// The number parsers of the command line and the readers of answers.
//
// Each parser gets the input as one text. A text that is one plain word
// short enough for an answer must read the same at a prompt as on the
// command line. Then the whole input is read as answers, the readers taken
// in turn, until it ends.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "harness.h"

namespace {

// One plain word that a prompt keeps whole (it cuts longer words).
bool IsPlainWord(const std::string &text) {
    if (text.empty() || text.size() >= 80) return false;
    for (char c : text)
        if (c == '\0' || isspace(static_cast<unsigned char>(c))) return false;
    return true;
}

template <typename T, typename Scan>
void ExpectSameAnswer(const std::string &text, T parsed, Scan scan) {
    fuzz::Begin(reinterpret_cast<const uint8_t *>(text.data()), text.size(), false);
    T answered = 0;
    int r = scan(&answered);
    fuzz::End();
    if (r != 1 || answered != parsed) {
        fprintf(stderr, "\"%s\": parsed %lld, answered %lld (result %d)\n", text.c_str(),
                static_cast<long long>(parsed), static_cast<long long>(answered), r);
        abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Setup();
    std::string text(reinterpret_cast<const char *>(data), size);
    int32_t s = 0;
    uint32_t u = 0;
    int decimal = ParseDecimal(text.c_str(), &s);
    ParseUnsignedDecimal(text.c_str(), &u);
    ParseHex(text.c_str(), &s);
    int hex = ParseUnsignedHex(text.c_str(), &u);
    if (IsPlainWord(text)) {
        if (decimal == 0) {
            ParseDecimal(text.c_str(), &s);
            ExpectSameAnswer(text, s, [](int32_t *v) { return ScanDecimal(v); });
        }
        if (hex == 0) ExpectSameAnswer(text, u, [](uint32_t *v) { return ScanHex(v); });
    }

    fuzz::Begin(data, size, false);
    char word[16] = {};  // checked after every turn, read or not
    for (unsigned turn = 0; !InputEnded(); ++turn) {
        uint32_t u32 = 0;
        uint64_t u64 = 0;
        uint8_t byte = 0;
        switch (turn % 7) {
        case 0: ScanDecimal(&s); break;
        case 1: ScanDecimal(&u32); break;
        case 2: ScanUnsigned(&u32); break;
        case 3: ScanHex(&u32); break;
        case 4: ScanHexByte(&byte); break;
        case 5: ScanHex64(&u64); break;
        default: ScanWord(word, sizeof word); break;
        }
        if (strlen(word) >= sizeof word) abort();
    }
    fuzz::End();
    return 0;
}
