// Numbers of either byte order.
#ifndef PLATFORM_ITL_PARSER_BYTE_ORDER_H
#define PLATFORM_ITL_PARSER_BYTE_ORDER_H

#include <cstddef>
#include <cstdint>

namespace itl_parser {

enum class ByteOrder { kBig, kLittle };

// The number in the `size` bytes at a place.
constexpr uint64_t LoadNumber(const char *bytes, size_t size, ByteOrder order) {
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i) {
        const size_t place = order == ByteOrder::kBig ? i : size - 1 - i;
        number = number << 8 | static_cast<uint8_t>(bytes[place]);
    }
    return number;
}

constexpr uint32_t LoadU32(const char *bytes, ByteOrder order) {
    const auto at = [bytes](size_t i) { return uint32_t{static_cast<uint8_t>(bytes[i])}; };
    if (order == ByteOrder::kBig) return at(0) << 24 | at(1) << 16 | at(2) << 8 | at(3);
    return at(3) << 24 | at(2) << 16 | at(1) << 8 | at(0);
}

}  // namespace itl_parser

#endif
