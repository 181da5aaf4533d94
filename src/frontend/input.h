// Reading the operator's answers from standard input.
//
// Every prompt prints its text without a newline and reads one value. The
// readers behave like scanf with "%d", "%u", "%x", "%hhx", "%llX" and "%s",
// but never overflow: a word is cut to its buffer (the rest of it is
// dropped), and digits beyond the value's range saturate. An answer that
// is not a number leaves the value untouched and is consumed with the rest
// of its line, so the next prompt reads the next answer. Each returns 1
// when a value was stored, 0 for an answer that is not a number, EOF at
// the end of input or on a read error.
#ifndef ZENTRELLIBTEST_INPUT_H
#define ZENTRELLIBTEST_INPUT_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>

// Discards what an operator typed ahead at a terminal. Input from a pipe
// or a file is left alone, so scripted answers are never lost.
void FlushInput();

int ScanDecimal(int32_t *value);     // "%d"
int ScanDecimal(uint32_t *value);    // "%d" into an unsigned place
int ScanUnsigned(uint32_t *value);   // "%u"
int ScanHex(uint32_t *value);        // "%x"
int ScanHexByte(uint8_t *value);     // "%hhx"
int ScanHex64(uint64_t *value);      // "%llX"
int ScanWord(char *buffer, size_t size);  // "%s", cut to size - 1 characters

// Prints each line of a question (the question, then its choices), then
// reads one "%d" answer; an answer that is not a number gives 0.
uint32_t AskDecimal(std::initializer_list<const char *> lines);

// Prints the prompt as it is (no newline), discards typed-ahead input
// (unless told not to), then reads one "%d" (AskSigned) or "%x" (AskHex)
// answer; an answer that is not a number gives 0.
int32_t AskSigned(const char *prompt, bool flush = true);
uint32_t AskHex(const char *prompt);

// True once standard input has reached its end or failed to read.
bool InputEnded();

#endif
