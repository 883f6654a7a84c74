#ifndef TESTS_SUPPORT_BYTE_TEXT_H
#define TESTS_SUPPORT_BYTE_TEXT_H

#include <cstdint>
#include <string>

// The lowest `count` bytes of a number, for building binary files.
inline std::string BigEndian(std::uint32_t number, int count = 4) {
    std::string bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
    return bytes;
}

inline std::string LittleEndian(std::uint32_t number, int count = 4) {
    std::string bytes;
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
    return bytes;
}

inline std::string Zeros(std::size_t count) {
    return std::string(count, '\0');
}

#endif
