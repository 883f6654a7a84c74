// Unicode: code points to UTF-8, UTF-16 to UTF-8, and the length of UTF-8 in UTF-16 units.
#ifndef PLATFORM_CORE_FOUNDATION_UTF_TEXT_H
#define PLATFORM_CORE_FOUNDATION_UTF_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace core_foundation {

constexpr uint32_t kReplacementCharacter = 0xFFFD;
constexpr uint32_t kLastCodePoint = 0x10FFFF;

// No UTF-16 unit becomes more bytes than this.
constexpr size_t kMaxUtf8PerUnit = 3;

// Writes 1 to 4 bytes and gives the place behind them. A surrogate becomes the replacement character.
char *WriteUtf8(uint32_t code_point, char *out);

// Converts `count` units of the given byte order; a surrogate without its twin becomes the replacement
// character. Gives the place behind the last byte; `out` has room for kMaxUtf8PerUnit bytes for each unit.
char *Utf16ToUtf8(const char *units, size_t count, bool big_endian, char *out);

// UTF-16 units, big-endian as the binary form has them. A byte that is not UTF-8 becomes the replacement
// character.
std::string Utf8ToUtf16BigEndian(std::string_view text);

// UTF-16 units of a text; a byte that is not UTF-8 counts as one.
size_t Utf16Length(std::string_view text);

bool IsAscii(std::string_view text);
bool IsUtf8(std::string_view text);

}  // namespace core_foundation

#endif
