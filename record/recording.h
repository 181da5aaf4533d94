// The recording file: a header line, then one line per library call,
//   Function(In=value ...) = 0xSTATUS Out=value ...
// (see doc/recording.md). Written by the recording library, read by the
// simulator's replay; both encode a call's arguments with EncodeCall, so a
// replayed call matches its line when the two texts are equal.
#ifndef ZENTREL_RECORD_RECORDING_H
#define ZENTREL_RECORD_RECORDING_H

#include <string>
#include <utility>
#include <vector>

#include "interface.h"

namespace zrec {

extern const char kHeader[];           // the first line, without its newline
extern const char kMfgObjectName[];    // out-value name of switchMfgInfo_temp
extern const char kFilePrefix[];       // out-value name prefix of a written file

void AppendHex(std::string &out, const void *bytes, size_t count);
// A text as "...", with %XX for '"', '%', blanks and bytes outside ASCII's
// printable range; "null" for a null pointer.
std::string EncodeText(const char *text, size_t max = 4096);
bool DecodeHex(const std::string &hex, std::vector<uint8_t> *bytes);
bool DecodeText(const std::string &quoted, std::string *text);

// The bytes an In, Out or InOut argument holds now, as recordings and
// traces hold them (a record in the controller's layout, see Portable).
std::vector<uint8_t> HeldBytes(const Arg &arg);
// Held bytes written back where the argument points: a record's fields, its
// pointers kept as the caller set them or made null as held; a buffer's
// bytes up to its size (all of them for one the library fills and counts).
void StoreHeldBytes(Arg &arg, const std::vector<uint8_t> &bytes);

// "Function(Name=value ...)": the call as the library sees it when called.
std::string EncodeCall(const char *function, const Arg *args, size_t count);

// A parsed line of a recording.
struct Entry {
    size_t line = 0;
    const FunctionInfo *function = nullptr;
    std::string call;    // as EncodeCall writes it
    std::string device;  // the device argument's value, "" without one
    ZENTREL_STATUS status = 0;
    std::vector<std::pair<std::string, std::string>> outs;  // name, value as written
};

// False, with *error saying what is wrong, for a line that is not a call
// of the list with its arguments of the right kinds and sizes.
bool ParseLine(const std::string &text, Entry *entry, std::string *error);

}  // namespace zrec

#endif
