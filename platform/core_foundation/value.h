// The one record behind every reference of the CoreFoundation interface.
//
// A value that was read from a list lies in the arena of its document, side by side with its siblings: an
// array is a run of values, a dictionary a run of pairs or, if it is small, a run of values whose keys stand
// elsewhere, once for all dictionaries with the same keys. A value that the caller created is the base of a
// HeapObject. Both look the same to readers of the value; only retaining and releasing asks where it lies.
#ifndef PLATFORM_CORE_FOUNDATION_VALUE_H
#define PLATFORM_CORE_FOUNDATION_VALUE_H

#include <cstdint>
#include <string_view>

#include "platform/core_foundation/core_foundation.h"

namespace core_foundation {

// The numbers are the type ids that CFGetTypeID gives.
enum class ValueType : uint8_t {
    kNone = 0,
    kString,
    kNumber,
    kBoolean,
    kDate,
    kData,
    kArray,
    kDictionary,
    kUid,
    kUrl,
    kReadStream,
    kWriteStream,
};

enum ValueFlag : uint8_t {
    kOnHeap = 1,     // the base of a HeapObject
    kConstant = 2,   // lives as long as the process, is never counted
    kMutable = 4,    // a heap array or dictionary, whose content the HeapObject holds
    kAscii = 8,      // string: every byte is below 0x80
    kShaped = 8,     // dictionary: in `members`, not in `pairs`
    kReal = 16,      // number: in `real`
    kWide = 32,      // number: in `wide`, since it does not fit 64 bits
    kIndexed = 64,   // dictionary: an IndexHeader stands before the pairs
    kOrdered = 128,  // dictionary: the keys ascend in the order of KeyComesBefore
};

// A signed integer of 128 bits in two halves.
struct WideInteger {
    int64_t high;
    uint64_t low;
};

struct Pair;
struct Members;

struct alignas(8) Value {
    ValueType type = ValueType::kNone;
    uint8_t flags = 0;
    uint16_t hash = 0;    // dictionary key: the low half of TextHash
    uint32_t length = 0;  // string, data: bytes; array: items; dictionary: pairs
    union {
        int64_t integer = 0;  // number, boolean, uid
        double real;          // number with kReal; date: seconds since 2001-01-01 UTC
        const WideInteger *wide;
        const char *text;  // string: NUL-terminated behind `length` bytes
        uint8_t *bytes;
        const Value *items;
        const Pair *pairs;
        const Members *members;
    };
};
static_assert(sizeof(Value) == 16, "a library has millions of these");

// Keys are shared: the tracks of a library have the same two dozen.
struct Pair {
    const Value *key;  // always a string
    Value value;
};

// A small dictionary. Its values follow, one for each key.
struct Members {
    const Value *const *keys;

    const Value *values() const { return reinterpret_cast<const Value *>(this + 1); }
};
static_assert(sizeof(Members) % alignof(Value) == 0);

inline const Value *ToValue(CFTypeRef reference) {
    return static_cast<const Value *>(reference);
}

inline bool Has(const Value &value, ValueFlag flag) {
    return (value.flags & flag) != 0;
}

inline std::string_view TextOf(const Value &string) {
    return {string.text, string.length};
}

inline Value MakeString(const char *text, size_t length, bool ascii) {
    Value value;
    value.type = ValueType::kString;
    value.flags = ascii ? uint8_t{kAscii} : uint8_t{0};
    value.length = static_cast<uint32_t>(length);
    value.text = text;
    return value;
}

inline Value MakeInteger(int64_t integer) {
    Value value;
    value.type = ValueType::kNumber;
    value.integer = integer;
    return value;
}

inline Value MakeReal(double real) {
    Value value;
    value.type = ValueType::kNumber;
    value.flags = kReal;
    value.real = real;
    return value;
}

inline Value MakeDate(double seconds) {
    Value value;
    value.type = ValueType::kDate;
    value.real = seconds;
    return value;
}

inline Value MakeBoolean(bool truth) {
    Value value;
    value.type = ValueType::kBoolean;
    value.integer = truth ? 1 : 0;
    return value;
}

inline Value MakeUid(int64_t number) {
    Value value;
    value.type = ValueType::kUid;
    value.integer = number;
    return value;
}

inline Value MakeData(uint8_t *bytes, size_t length) {
    Value value;
    value.type = ValueType::kData;
    value.length = static_cast<uint32_t>(length);
    value.bytes = bytes;
    return value;
}

}  // namespace core_foundation

#endif
