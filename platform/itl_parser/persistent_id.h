#ifndef PLATFORM_ITL_PARSER_PERSISTENT_ID_H
#define PLATFORM_ITL_PARSER_PERSISTENT_ID_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace itl_parser {

// 16 hexadecimal digits and a NUL.
constexpr std::array<char, 17> PersistentIdText(uint64_t id) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::array<char, 17> text{};
    for (size_t i = 16; i-- > 0; id >>= 4)
        text[i] = kDigits[id & 15];
    return text;
}

}  // namespace itl_parser

#endif
