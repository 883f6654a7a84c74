/* Property-list values and their files: the part of the CoreFoundation C interface that the driver uses,
 * under its own names and prototypes. On Windows this header is the place to include the vendor's; elsewhere
 * the layer behind it implements what is declared here.
 *
 * Ownership. An operation with Create or Copy in its name gives a reference that the caller hands back with
 * CFRelease; one with Get in its name borrows from its container. A value that was read from a file or from
 * bytes lives as long as the root value of its list, or as any value of that list that was retained.
 *
 * Errors. A failure is a null reference, false or 0, as each operation says. `error` out-parameters may be
 * null; otherwise they receive null. Every allocator argument is taken as kCFAllocatorDefault.
 *
 * Threads. Values may be read by several threads at once; retaining and releasing is atomic. A list of
 * which one thread changes a value must not be used by another at that time.
 *
 * Wrong use. A null container has no entries, and a null string no text. A reference of another class than
 * the operation wants is a fault of the caller, as in the vendor's library: compare CFGetTypeID first. */
#ifndef PLATFORM_CORE_FOUNDATION_CORE_FOUNDATION_H
#define PLATFORM_CORE_FOUNDATION_CORE_FOUNDATION_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef int64_t SInt64;

typedef intptr_t CFIndex;
typedef uintptr_t CFTypeID;
typedef uintptr_t CFOptionFlags;
typedef uintptr_t CFHashCode;

typedef const void *CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFNumber *CFNumberRef;
typedef const struct __CFBoolean *CFBooleanRef;
typedef const struct __CFDate *CFDateRef;
typedef const struct __CFTimeZone *CFTimeZoneRef;
typedef const struct __CFData *CFDataRef;
typedef struct __CFData *CFMutableDataRef;
typedef const struct __CFArray *CFArrayRef;
typedef struct __CFArray *CFMutableArrayRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef struct __CFDictionary *CFMutableDictionaryRef;
typedef const struct __CFURL *CFURLRef;
typedef struct __CFReadStream *CFReadStreamRef;
typedef struct __CFWriteStream *CFWriteStreamRef;
typedef struct __CFError *CFErrorRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range;
    range.location = location;
    range.length = length;
    return range;
}

extern const CFAllocatorRef kCFAllocatorDefault;

/* ---- Memory and types
 * ---------------------------------------------------------------------------------------- */

/* Adds one reference and gives the value back; null stays null. */
CFTypeRef CFRetain(CFTypeRef value);
/* Takes one reference away; null is harmless. */
void CFRelease(CFTypeRef value);
/* The class of the value; never 0 for a value, 0 for null. */
CFTypeID CFGetTypeID(CFTypeRef value);
/* Equal class and content; containers are compared through all their levels. */
Boolean CFEqual(CFTypeRef first, CFTypeRef second);

CFTypeID CFStringGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
CFTypeID CFBooleanGetTypeID(void);
CFTypeID CFDateGetTypeID(void);
CFTypeID CFDataGetTypeID(void);
CFTypeID CFArrayGetTypeID(void);
CFTypeID CFDictionaryGetTypeID(void);

/* ---- Strings
 * ------------------------------------------------------------------------------------------------- */

typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingUTF8 = 0x08000100 };

/* Text is UTF-8 inside; bytes that are not UTF-8 are kept as they are. Any other encoding gives null or
 * false. */
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8 *bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean is_external_representation);
/* The string of a literal: made once per text, never released. */
CFStringRef __CFStringMakeConstantString(const char *literal);
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")

/* In UTF-16 units; a byte that is not UTF-8 counts as one. */
CFIndex CFStringGetLength(CFStringRef string);
/* Bytes that suffice for any string of `length` UTF-16 units, without the terminator. */
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/* Copies text and terminator; false, with nothing written, when they do not fit. */
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex buffer_size, CFStringEncoding encoding);
/* The terminated text itself, valid as long as the string: no copy is made. Null for another encoding. */
const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

/* ---- Numbers, booleans, dates
 * -------------------------------------------------------------------------------- */

typedef CFIndex CFNumberType;
enum { kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4, kCFNumberFloat64Type = 6, kCFNumberDoubleType = 13 };

/* Null for a type that is not listed above. */
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void *value);
/* False when the number does not fit the type without loss: a real number with a fraction or an integer
 * beyond the range. `value` is written only when the result is true. A floating type takes every number. */
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value);
Boolean CFNumberIsFloatType(CFNumberRef number);

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
Boolean CFBooleanGetValue(CFBooleanRef boolean);

/* Seconds since 2001-01-01 00:00:00 UTC. */
typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;

typedef struct {
    SInt32 year;
    SInt8 month;   /* 1 to 12 */
    SInt8 day;     /* 1 to 31 */
    SInt8 hour;    /* 0 to 23 */
    SInt8 minute;  /* 0 to 59 */
    double second; /* 0 to below 60, with fraction */
} CFGregorianDate;

CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time);
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
/* The fields in UTC; `zone` must be null. A moment beyond the years that the record can name gives the
 * nearest one that it can. */
CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime time, CFTimeZoneRef zone);

/* ---- Data
 * ---------------------------------------------------------------------------------------------------- */

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8 *bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8 *CFDataGetBytePtr(CFDataRef data);
/* Copies the bytes of a range; a range that is not inside the data copies nothing. */
void CFDataGetBytes(CFDataRef data, CFRange range, UInt8 *buffer);
/* Puts `new_length` bytes in the place of a range that lies inside the data. Works on every data value, one
 * of a list that was read with options 0 included: the list then holds the new bytes. */
void CFDataReplaceBytes(CFMutableDataRef data, CFRange range, const UInt8 *new_bytes, CFIndex new_length);

/* ---- Arrays
 * -------------------------------------------------------------------------------------------------- */

typedef struct {
    CFIndex version;
} CFArrayCallBacks;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;

CFIndex CFArrayGetCount(CFArrayRef array);
/* Borrowed; null for an index that is out of range. */
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
/* Mutable arrays hold values of this library and retain them. Capacities and callbacks are hints only. */
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                       const CFArrayCallBacks *callbacks);
CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity, CFArrayRef array);
/* Does nothing to an array that is not mutable. */
void CFArrayAppendValue(CFMutableArrayRef array, const void *value);

/* ---- Dictionaries
 * -------------------------------------------------------------------------------------------- */

typedef struct {
    CFIndex version;
} CFDictionaryKeyCallBacks;
typedef struct {
    CFIndex version;
} CFDictionaryValueCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

/* Every key is a string. A file that names a key twice gives it the later value. */
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/* Borrowed; null for an absent key. */
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
/* Fills arrays of CFDictionaryGetCount entries, each borrowed, in the order of the file or of addition.
 * Either array may be null. */
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys, const void **values);
/* Mutable dictionaries retain keys and values. Capacities and callbacks are hints only. */
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks *key_callbacks,
                                                 const CFDictionaryValueCallBacks *value_callbacks);
/* A shallow copy: the values are the same ones, retained. */
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary);
/* Adds a pair unless the key is present. Does nothing to a dictionary that is not mutable. */
void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void *key, const void *value);
/* Removes a pair if the key is present. Does nothing to a dictionary that is not mutable. */
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key);

/* ---- Files
 * --------------------------------------------------------------------------------------------------- */

/* `path` is UTF-8, in the form of the Windows API or of the system. Null for a null path. */
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8 *path, CFIndex length,
                                                 Boolean is_directory);

CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef url);
/* False when the file is missing, unreadable or no regular file. */
Boolean CFReadStreamOpen(CFReadStreamRef stream);
void CFReadStreamClose(CFReadStreamRef stream);

/* The file is written beside its target, which it replaces when the stream is closed, and only if every write
 * since the open succeeded. Until then, and after any fault, the target stays as it was. */
CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef url);
/* False when no file can be made there. */
Boolean CFWriteStreamOpen(CFWriteStreamRef stream);
void CFWriteStreamClose(CFWriteStreamRef stream);

/* ---- Property lists
 * ------------------------------------------------------------------------------------------ */

typedef CFIndex CFPropertyListFormat;
enum {
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200
};
enum { kCFPropertyListImmutable = 0 };

/* Reads a list of any of the three formats, which is told by its content. `format`, if not null, receives it.
 * Null for anything that is not exactly one whole list. `options` other than kCFPropertyListImmutable give
 * the same. A stream is read from where it stands: `length` bytes, or all of them for 0. */
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat *format,
                                               CFErrorRef *error);
CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef allocator, CFReadStreamRef stream,
                                                 CFIndex length, CFOptionFlags options,
                                                 CFPropertyListFormat *format, CFErrorRef *error);
/* The number of bytes written; 0 for a failure: the stream is not open, a write failed, or the list holds
 * something that the format cannot (the old-style text form knows strings, data, arrays and dictionaries
 * only). */
CFIndex CFPropertyListWrite(CFPropertyListRef list, CFWriteStreamRef stream, CFPropertyListFormat format,
                            CFOptionFlags options, CFErrorRef *error);

#ifdef __cplusplus
}
#endif

#endif
