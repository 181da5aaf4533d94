// The library's functions as data: what include/zentrel_interface.def says
// of each argument, turned into a list of Arg entries a call builds of its
// own arguments. The recording library, the simulator's replay and its
// exported functions are generated from the list with the macros below.
#ifndef ZENTREL_RECORD_INTERFACE_H
#define ZENTREL_RECORD_INTERFACE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "zentrel.h"

namespace zrec {

enum class Kind : uint8_t {
    Device,    // the device argument: value is its handle
    Scalar,    // a value
    In,        // bytes the library reads
    Out,       // bytes the library writes
    InOut,     // bytes the library reads and writes
    OutFilled, // bytes the library writes, counted after the call
    Text,      // a NUL-terminated text the library reads
    FileOut,   // a file the library writes, by the name given
    DirOut,    // a directory the library writes files into
};

// A record's bytes as recordings and traces hold them: the layout of the
// 32-bit controller, whatever machine runs the library. A record that holds
// pointers is laid out differently on a 64-bit machine (wider pointers, and
// padding before them and at its end); each of its pointers is held as four
// bytes, 01 00 00 00 when set and zeros when null, and the bytes it points
// at are an argument of their own. Other records and buffers are held as
// they are in memory.
constexpr size_t kPortablePointerBytes = 4;

// A run of a record: bytes copied as they are, or one pointer.
struct Segment {
    size_t offset;  // in the record in memory
    size_t size;    // in memory
    bool pointer;
};

// The runs of a record, in order. Without pointers: the whole record.
template <typename Record>
struct Portable {
    static constexpr Segment segments[] = {{0, sizeof(Record), false}};
};

// The fields from First to Last, copied; one pointer field.
#define ZI_FIELDS(Record, First, Last) \
    zrec::Segment { offsetof(Record, First), offsetof(Record, Last) + sizeof(Record::Last) - offsetof(Record, First), false }
#define ZI_POINTER(Record, Field) \
    zrec::Segment { offsetof(Record, Field), sizeof(Record::Field), true }

template <>
struct Portable<ZENTREL_LIB_PARAMETERS> {
    static constexpr Segment segments[] = {ZI_FIELDS(ZENTREL_LIB_PARAMETERS, DebugLogLevelAll, DebugLogOverwrite),
                                           ZI_POINTER(ZENTREL_LIB_PARAMETERS, DebugLogFilePath),
                                           ZI_FIELDS(ZENTREL_LIB_PARAMETERS, Reserved24, Reserved24)};
};
template <>
struct Portable<ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ> {
    static constexpr Segment segments[] = {ZI_FIELDS(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Reserved0, Reserved8),
                                           ZI_POINTER(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, Image),
                                           ZI_FIELDS(ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ, ImageLength, ImageLength)};
};
template <>
struct Portable<ZENTREL_SWITCH_SBR_MFG_CFG_REQ> {
    static constexpr Segment segments[] = {ZI_FIELDS(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Operation, Reserved2),
                                           ZI_POINTER(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, SelectionMethod),
                                           ZI_POINTER(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Selected),
                                           ZI_POINTER(ZENTREL_SWITCH_SBR_MFG_CFG_REQ, Supported)};
};
template <>
struct Portable<ZENTREL_SWITCH_DEBUG_TOKEN_REQ> {
    static constexpr Segment segments[] = {ZI_FIELDS(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, CtiLsb, FwCliAccess),
                                           ZI_POINTER(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, Signature),
                                           ZI_FIELDS(ZENTREL_SWITCH_DEBUG_TOKEN_REQ, SignatureLength, SignatureLength)};
};

template <typename Record>
constexpr size_t PortableSize() {
    size_t size = 0;
    for (const Segment &s : Portable<Record>::segments) size += s.pointer ? kPortablePointerBytes : s.size;
    return size;
}

// The runs follow each other in memory, leave out only padding, and on the
// controller sit where they are held: there the held bytes are the memory's.
template <typename Record>
constexpr bool PortableLayoutFits() {
    size_t end = 0, held = 0;
    for (const Segment &s : Portable<Record>::segments) {
        if (s.offset < end || s.offset + s.size > sizeof(Record)) return false;
        if (s.pointer && s.size != sizeof(void *)) return false;
        if (sizeof(void *) == kPortablePointerBytes && s.offset != held) return false;
        end = s.offset + s.size;
        held += s.pointer ? kPortablePointerBytes : s.size;
    }
    return sizeof(void *) != kPortablePointerBytes || held == sizeof(Record);
}
static_assert(PortableLayoutFits<ZENTREL_LIB_PARAMETERS>() && PortableSize<ZENTREL_LIB_PARAMETERS>() == 280);
static_assert(PortableLayoutFits<ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ>() &&
              PortableSize<ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ>() == 20);
static_assert(PortableLayoutFits<ZENTREL_SWITCH_SBR_MFG_CFG_REQ>() && PortableSize<ZENTREL_SWITCH_SBR_MFG_CFG_REQ>() == 16);
static_assert(PortableLayoutFits<ZENTREL_SWITCH_DEBUG_TOKEN_REQ>() &&
              PortableSize<ZENTREL_SWITCH_DEBUG_TOKEN_REQ>() == 104);

// One argument of a call, or one thing a call reaches through one.
struct Arg {
    Kind kind = Kind::Scalar;
    const char *name = "";
    uint64_t value = 0;          // Scalar, Device
    bool hex = false;            // Scalar: an address, traced in hex
    bool present = true;         // false: a null pointer (or device)
    void *bytes = nullptr;       // In, Out, InOut, OutFilled; Text, FileOut, DirOut: the name
    size_t size = 0;             // of bytes; OutFilled: set after the call
    // A record: its runs (Portable<Record>); null for a buffer, held whole.
    const Segment *segments = nullptr;
    size_t segmentCount = 0;
    // OutFilled: counts the bytes after the call.
    size_t (*filled)(const Arg &) = nullptr;
    uint64_t context = 0;        // for filled
};

// The argument builders of the generated code.
inline Arg DeviceArg(const char *name, PTR_ZENTREL_DEVICE device) {
    Arg a;
    a.kind = Kind::Device;
    a.name = name;
    a.present = device != nullptr;
    if (device != nullptr) a.value = *static_cast<const uint32_t *>(device);
    return a;
}

inline Arg ScalarArg(const char *name, uint64_t value, bool hex = false) {
    Arg a;
    a.name = name;
    a.value = value;
    a.hex = hex;
    return a;
}

inline Arg BytesArg(Kind kind, const char *name, const volatile void *bytes, size_t size) {
    Arg a;
    a.kind = kind;
    a.name = name;
    a.present = bytes != nullptr;
    a.bytes = const_cast<void *>(bytes);
    a.size = bytes == nullptr ? 0 : size;
    return a;
}

inline Arg TextArg(Kind kind, const char *name, const char *text) {
    return BytesArg(kind, name, text, 0);
}

// A record the library reads or fills.
template <typename Record>
Arg RecordArg(Kind kind, const char *name, Record *record) {
    using Plain = std::remove_cv_t<Record>;
    Arg a = BytesArg(kind, name, record, sizeof(Plain));
    a.segments = Portable<Plain>::segments;
    a.segmentCount = std::size(Portable<Plain>::segments);
    return a;
}

template <typename Record, typename Field>
Arg FieldArg(Kind kind, const char *name, Record *record, Field *const *field, size_t size) {
    static_assert(std::size(Portable<std::remove_cv_t<Record>>::segments) > 1,
                  "a record with pointer fields needs its runs in Portable<>");
    return BytesArg(kind, name, record == nullptr ? nullptr : *field, size);
}

inline Arg FilledArg(const char *name, void *bytes, size_t (*filled)(const Arg &), uint64_t context) {
    Arg a = BytesArg(Kind::OutFilled, name, bytes, 0);
    a.filled = filled;
    a.context = context;
    return a;
}

// A port CSR access record and the data behind it: DataLength bytes from
// offset 12, at least the record.
inline size_t CsrAccessLength(const ZENTREL_SWITCH_PORT_CSR_ACCESS *access) {
    size_t data = offsetof(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data) + access->DataLength;
    return data > sizeof *access ? data : sizeof *access;
}

// The bytes of the downstream device list or count answer the library
// wrote into Buffer (context: the selector).
size_t DsListFilled(const Arg &buffer);

// What one function of the list is: its name and its arguments' kinds.
struct ParamInfo {
    Kind kind;
    const char *name;
    size_t fixedSize;  // of In/Out/InOut records, as held; 0: given by a length
};

struct FunctionInfo {
    const char *name;
    const ParamInfo *params;
    size_t count;
};

// Every function of the list, in its order, and the one of a name (null
// when there is none).
extern const FunctionInfo kFunctions[];
extern const size_t kFunctionCount;
const FunctionInfo *FindFunction(const char *name);

}  // namespace zrec

// ---- The macros that read the list. ----

#define ZI_DROP1(...) ZI_DROP1_(__VA_ARGS__)
#define ZI_DROP1_(first, ...) __VA_ARGS__

// M applied to each (parenthesised) element; at most 10.
#define ZI_FE_1(M, a) M a
#define ZI_FE_2(M, a, ...) M a ZI_FE_1(M, __VA_ARGS__)
#define ZI_FE_3(M, a, ...) M a ZI_FE_2(M, __VA_ARGS__)
#define ZI_FE_4(M, a, ...) M a ZI_FE_3(M, __VA_ARGS__)
#define ZI_FE_5(M, a, ...) M a ZI_FE_4(M, __VA_ARGS__)
#define ZI_FE_6(M, a, ...) M a ZI_FE_5(M, __VA_ARGS__)
#define ZI_FE_7(M, a, ...) M a ZI_FE_6(M, __VA_ARGS__)
#define ZI_FE_8(M, a, ...) M a ZI_FE_7(M, __VA_ARGS__)
#define ZI_FE_9(M, a, ...) M a ZI_FE_8(M, __VA_ARGS__)
#define ZI_FE_10(M, a, ...) M a ZI_FE_9(M, __VA_ARGS__)
#define ZI_FE_PICK(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, N, ...) N
#define ZI_FOR_EACH(M, ...)                                                                                        \
    __VA_OPT__(ZI_FE_PICK(__VA_ARGS__, ZI_FE_10, ZI_FE_9, ZI_FE_8, ZI_FE_7, ZI_FE_6, ZI_FE_5, ZI_FE_4, ZI_FE_3, \
                          ZI_FE_2, ZI_FE_1)(M, __VA_ARGS__))

// The parameter list: ", Type Name" of each parameter, the first comma dropped.
#define ZI_PARAM(kind, ...) ZI_PARAM_##kind(__VA_ARGS__)
#define ZI_PARAM_DEV(type, name) , type name
#define ZI_PARAM_IN(type, name) , type name
#define ZI_PARAM_IN_HEX(type, name) , type name
#define ZI_PARAM_REQ(type, name) , type name
#define ZI_PARAM_OUT(type, name) , type name
#define ZI_PARAM_INOUT(type, name) , type name
#define ZI_PARAM_BUF_IN(type, name, length) , type name
#define ZI_PARAM_BUF_OUT(type, name, length) , type name
#define ZI_PARAM_BUF_INOUT(type, name, length) , type name
#define ZI_PARAM_BUF_OUT_FILLED(type, name, filled, context) , type name
#define ZI_PARAM_TEXT_IN(type, name) , type name
#define ZI_PARAM_FILE_OUT(type, name) , type name
#define ZI_PARAM_DIR_OUT(type, name) , type name
#define ZI_PARAM_WRITES(path)
#define ZI_PARAM_FIELD_IN(record, field, length)
#define ZI_PARAM_FIELD_OUT(record, field, length)
#define ZI_PARAM_FIELD_TEXT(record, field, length)
#define ZI_PARAMS(...) ZI_DROP1(ZI_FOR_EACH(ZI_PARAM, __VA_ARGS__))

// The argument names, to pass them on.
#define ZI_NAME(kind, ...) ZI_NAME_##kind(__VA_ARGS__)
#define ZI_NAME_DEV(type, name) , name
#define ZI_NAME_IN(type, name) , name
#define ZI_NAME_IN_HEX(type, name) , name
#define ZI_NAME_REQ(type, name) , name
#define ZI_NAME_OUT(type, name) , name
#define ZI_NAME_INOUT(type, name) , name
#define ZI_NAME_BUF_IN(type, name, length) , name
#define ZI_NAME_BUF_OUT(type, name, length) , name
#define ZI_NAME_BUF_INOUT(type, name, length) , name
#define ZI_NAME_BUF_OUT_FILLED(type, name, filled, context) , name
#define ZI_NAME_TEXT_IN(type, name) , name
#define ZI_NAME_FILE_OUT(type, name) , name
#define ZI_NAME_DIR_OUT(type, name) , name
#define ZI_NAME_WRITES(path)
#define ZI_NAME_FIELD_IN(record, field, length)
#define ZI_NAME_FIELD_OUT(record, field, length)
#define ZI_NAME_FIELD_TEXT(record, field, length)
#define ZI_NAMES(...) ZI_DROP1(ZI_FOR_EACH(ZI_NAME, __VA_ARGS__))

// The Arg entries of a call, each after a comma.
#define ZI_ARG(kind, ...) ZI_ARG_##kind(__VA_ARGS__)
#define ZI_ARG_DEV(type, name) , zrec::DeviceArg(#name, name)
#define ZI_ARG_IN(type, name) , zrec::ScalarArg(#name, static_cast<uint64_t>(name))
#define ZI_ARG_IN_HEX(type, name) , zrec::ScalarArg(#name, static_cast<uint64_t>(name), true)
#define ZI_ARG_REQ(type, name) , zrec::RecordArg(zrec::Kind::In, #name, name)
#define ZI_ARG_OUT(type, name) , zrec::RecordArg(zrec::Kind::Out, #name, name)
#define ZI_ARG_INOUT(type, name) , zrec::RecordArg(zrec::Kind::InOut, #name, name)
#define ZI_ARG_BUF_IN(type, name, length) , zrec::BytesArg(zrec::Kind::In, #name, name, name == nullptr ? 0 : (length))
#define ZI_ARG_BUF_OUT(type, name, length) \
    , zrec::BytesArg(zrec::Kind::Out, #name, name, name == nullptr ? 0 : (length))
#define ZI_ARG_BUF_INOUT(type, name, length) \
    , zrec::BytesArg(zrec::Kind::InOut, #name, name, name == nullptr ? 0 : (length))
#define ZI_ARG_BUF_OUT_FILLED(type, name, filled, context) , zrec::FilledArg(#name, name, filled, context)
#define ZI_ARG_TEXT_IN(type, name) , zrec::TextArg(zrec::Kind::Text, #name, name)
#define ZI_ARG_FILE_OUT(type, name) , zrec::TextArg(zrec::Kind::FileOut, #name, name)
#define ZI_ARG_DIR_OUT(type, name) , zrec::TextArg(zrec::Kind::DirOut, #name, name)
#define ZI_ARG_WRITES(path) , zrec::TextArg(zrec::Kind::FileOut, "file", path)
#define ZI_ARG_FIELD(kind, record, field, length)                                                        \
    , zrec::FieldArg(kind, #record "." #field, record, record == nullptr ? nullptr : &record->field,      \
                     record == nullptr || record->field == nullptr ? 0 : static_cast<size_t>(length))
#define ZI_ARG_FIELD_IN(record, field, length) ZI_ARG_FIELD(zrec::Kind::In, record, field, length)
#define ZI_ARG_FIELD_OUT(record, field, length) ZI_ARG_FIELD(zrec::Kind::Out, record, field, length)
#define ZI_ARG_FIELD_TEXT(record, field, length) ZI_ARG_FIELD(zrec::Kind::Text, record, field, length)
// An array that starts with an unused entry (a function may have no arguments).
#define ZI_ARGS(array, ...) zrec::Arg array[] = {zrec::Arg() ZI_FOR_EACH(ZI_ARG, __VA_ARGS__)}

// The kinds of a function's entries, for kFunctions.
#define ZI_INFO(kind, ...) ZI_INFO_##kind(__VA_ARGS__)
#define ZI_INFO_DEV(type, name) , {zrec::Kind::Device, #name, 0}
#define ZI_INFO_IN(type, name) , {zrec::Kind::Scalar, #name, 0}
#define ZI_INFO_IN_HEX(type, name) , {zrec::Kind::Scalar, #name, 0}
#define ZI_RECORD(type) std::remove_cv_t<std::remove_pointer_t<type>>
#define ZI_INFO_REQ(type, name) , {zrec::Kind::In, #name, zrec::PortableSize<ZI_RECORD(type)>()}
#define ZI_INFO_OUT(type, name) , {zrec::Kind::Out, #name, zrec::PortableSize<ZI_RECORD(type)>()}
#define ZI_INFO_INOUT(type, name) , {zrec::Kind::InOut, #name, zrec::PortableSize<ZI_RECORD(type)>()}
#define ZI_INFO_BUF_IN(type, name, length) , {zrec::Kind::In, #name, 0}
#define ZI_INFO_BUF_OUT(type, name, length) , {zrec::Kind::Out, #name, 0}
#define ZI_INFO_BUF_INOUT(type, name, length) , {zrec::Kind::InOut, #name, 0}
#define ZI_INFO_BUF_OUT_FILLED(type, name, filled, context) , {zrec::Kind::OutFilled, #name, 0}
#define ZI_INFO_TEXT_IN(type, name) , {zrec::Kind::Text, #name, 0}
#define ZI_INFO_FILE_OUT(type, name) , {zrec::Kind::FileOut, #name, 0}
#define ZI_INFO_DIR_OUT(type, name) , {zrec::Kind::DirOut, #name, 0}
#define ZI_INFO_WRITES(path) , {zrec::Kind::FileOut, "file", 0}
#define ZI_INFO_FIELD_IN(record, field, length) , {zrec::Kind::In, #record "." #field, 0}
#define ZI_INFO_FIELD_OUT(record, field, length) , {zrec::Kind::Out, #record "." #field, 0}
#define ZI_INFO_FIELD_TEXT(record, field, length) , {zrec::Kind::Text, #record "." #field, 0}

#endif
