/*
 * Base types shared by every part of the libzentrel.so interface.
 *
 * Record layouts in these headers are those of the 32-bit ARM (hard-float)
 * management controller that the utility ships on. Records that hold
 * pointers only have their ARM offsets on a 32-bit target, so their
 * asserts are kept to 32-bit targets (#if UINTPTR_MAX == 0xFFFFFFFFu).
 */
#ifndef ZENTREL_TYPES_H
#define ZENTREL_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define ZENTREL_EXTERN_C extern "C"
#define ZENTREL_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define ZENTREL_EXTERN_C extern
#define ZENTREL_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

/* The library exports its functions with default visibility; the
 * simulator is built with hidden visibility for everything else. */
#define ZENTREL_API ZENTREL_EXTERN_C __attribute__((visibility("default")))

/* Result of every library call: 0 is success, anything else is the reason
 * for failure and is printed (usually in hex) by the caller. */
typedef uint32_t ZENTREL_STATUS;
#define ZENTREL_STATUS_SUCCESS 0u

/* The library's identifier of one switch. */
typedef uint32_t ZENTREL_DEVICE_HANDLE;

/* The device argument of every per-switch call points at a record whose
 * first u32 is the Device handle; the library reads nothing else of it. */
typedef void *PTR_ZENTREL_DEVICE;

#define ZENTREL_ASSERT_SIZE(type, size) \
    ZENTREL_STATIC_ASSERT(sizeof(type) == (size), #type " must be " #size " bytes")
#define ZENTREL_ASSERT_OFFSET(type, field, off) \
    ZENTREL_STATIC_ASSERT(offsetof(type, field) == (off), #type "." #field " must be at " #off)

#endif
