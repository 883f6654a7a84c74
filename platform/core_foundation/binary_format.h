// The binary form, "bplist00". All numbers are big-endian.
//
//   8 bytes    "bplist0" and a version digit
//   objects    one after the other, each a marker byte and its content
//   offsets    for each object its place in the file, each number of `offset_size` bytes
//   trailer    the last 32 bytes:
//              0   5 bytes unused
//              5   1 byte  sort version, unused
//              6   1 byte  offset_size
//              7   1 byte  reference_size: bytes of an object number inside a container
//              8   8 bytes number of objects
//              16  8 bytes number of the root object
//              24  8 bytes place of the offsets
//
// A marker holds a type in its upper half and a size in its lower half. For texts, data and containers the
// size is their count; kCountFollows there says that the count stands behind the marker, as an integer
// object.
#ifndef PLATFORM_CORE_FOUNDATION_BINARY_FORMAT_H
#define PLATFORM_CORE_FOUNDATION_BINARY_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace core_foundation {

// What tells this form from the others, without the version's last digit.
inline constexpr std::string_view kBinaryMagic = "bplist0";

enum BinaryMarker : uint8_t {
    kFalseMarker = 0x08,
    kTrueMarker = 0x09,
    kIntegerMarker = 0x10,  // 2^size bytes; up to 4 unsigned, 8 and 16 signed
    kRealMarker = 0x20,     // 4 or 8 bytes
    kDateMarker = 0x33,     // a real of 8 bytes
    kDataMarker = 0x40,     // count of bytes
    kAsciiMarker = 0x50,    // count of bytes
    kUtf16Marker = 0x60,    // count of units
    kUtf8Marker = 0x70,     // count of bytes
    kUidMarker = 0x80,      // size + 1 bytes
    kArrayMarker = 0xA0,    // count of references
    kOrderedSetMarker = 0xB0,
    kSetMarker = 0xC0,
    kDictionaryMarker = 0xD0,  // count of references to keys, then as many to values
};

constexpr uint8_t kCountFollows = 0x0F;
constexpr size_t kHeaderSize = 8;
constexpr size_t kTrailerSize = 32;
constexpr size_t kMaxNumberSize = 8;

}  // namespace core_foundation

#endif
