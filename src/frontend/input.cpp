#include "input.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdio_ext.h>
#include <termios.h>
#include <unistd.h>

#include "output.h"

namespace {

// Longest number text kept; longer digit runs saturate anyway.
constexpr size_t kNumberText = 80;

// Skips blanks and newlines, then reads one word, keeping at most size-1
// characters. The character that ends the word stays unread, as with scanf.
// Every answer is read here, so this is where the prompt is written out.
int ReadToken(char *buffer, size_t size) {
    FlushOutput();
    int c;
    do {
        c = getchar();
    } while (c != EOF && isspace(c));
    if (c == EOF) return EOF;
    size_t n = 0;
    while (c != EOF && !isspace(c)) {
        if (n + 1 < size) buffer[n++] = static_cast<char>(c);
        c = getchar();
    }
    if (c != EOF) ungetc(c, stdin);
    buffer[n] = '\0';
    return 1;
}

void DropRestOfLine() {
    int c;
    do {
        c = getchar();
    } while (c != EOF && c != '\n');
}

// Converts the number at the start of the token; returns 0 when there is
// none, so that the caller's value stays untouched.
// Standard input stays locked for the whole answer (and the rest of its
// line when it is dropped), so that threads prompting at once each read
// whole answers, never characters of each other's.
class InputLock {
public:
    InputLock() { flockfile(stdin); }
    ~InputLock() { funlockfile(stdin); }
    InputLock(const InputLock &) = delete;
    InputLock &operator=(const InputLock &) = delete;
};

template <typename T, typename Convert>
int ScanNumber(T *value, Convert convert) {
    InputLock lock;
    char text[kNumberText];
    int r = ReadToken(text, sizeof text);
    if (r == EOF) return EOF;
    char *end = nullptr;
    errno = 0;
    T v = convert(text, &end);
    if (end == text) {
        DropRestOfLine();
        return 0;
    }
    *value = v;
    return 1;
}

int32_t Signed32(const char *text, char **end) {
    long long v = strtoll(text, end, 10);
    if (v > INT32_MAX) return INT32_MAX;
    if (v < INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(v);
}

template <typename T>
T UnsignedN(const char *text, char **end, int base) {
    unsigned long long v = strtoull(text, end, base);
    bool overflow = errno == ERANGE;
    const char *p = text;
    while (isspace(static_cast<unsigned char>(*p))) ++p;
    unsigned long long magnitude = *p == '-' ? 0ULL - v : v;
    T max = static_cast<T>(~static_cast<T>(0));
    if (overflow || magnitude > max) return max;
    return static_cast<T>(v);
}

}  // namespace

void FlushInput() {
    if (isatty(STDIN_FILENO)) {
        __fpurge(stdin);
        tcflush(STDIN_FILENO, TCIFLUSH);
    }
}

int ScanDecimal(int32_t *value) {
    return ScanNumber(value, Signed32);
}

int ScanDecimal(uint32_t *value) {
    return ScanNumber(value, [](const char *t, char **e) { return static_cast<uint32_t>(Signed32(t, e)); });
}

int ScanUnsigned(uint32_t *value) {
    return ScanNumber(value, [](const char *t, char **e) { return UnsignedN<uint32_t>(t, e, 10); });
}

int ScanHex(uint32_t *value) {
    return ScanNumber(value, [](const char *t, char **e) { return UnsignedN<uint32_t>(t, e, 16); });
}

int ScanHexByte(uint8_t *value) {
    return ScanNumber(value, [](const char *t, char **e) { return static_cast<uint8_t>(UnsignedN<uint32_t>(t, e, 16)); });
}

int ScanHex64(uint64_t *value) {
    return ScanNumber(value, [](const char *t, char **e) { return UnsignedN<uint64_t>(t, e, 16); });
}

int ScanWord(char *buffer, size_t size) {
    if (size == 0) return 0;
    InputLock lock;
    return ReadToken(buffer, size);
}

uint32_t AskDecimal(std::initializer_list<const char *> lines) {
    for (const char *line : lines) printf("%s\n", line);
    FlushInput();
    uint32_t answer = 0;
    ScanDecimal(&answer);
    return answer;
}

int32_t AskSigned(const char *prompt, bool flush) {
    printf("%s", prompt);
    if (flush) FlushInput();
    int32_t answer = 0;
    ScanDecimal(&answer);
    return answer;
}

uint32_t AskHex(const char *prompt) {
    printf("%s", prompt);
    FlushInput();
    uint32_t answer = 0;
    ScanHex(&answer);
    return answer;
}

// A read error (standard input closed, a directory, a descriptor that
// would block) ends the input as its end does: no answer can come.
bool InputEnded() {
    return feof(stdin) != 0 || ferror(stdin) != 0;
}
