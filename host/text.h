#ifndef HOST_TEXT_H
#define HOST_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmarhost {

struct DecodedCharacter {
    char32_t code;       // kBadByte for a byte that is no part of valid UTF-8
    std::size_t length;  // in bytes; 0 at the end of the text
};
constexpr char32_t kBadByte = 0xFFFFFFFF;

// The character at a byte position. Overlong forms, surrogates and cut sequences count as bad bytes of
// length 1.
DecodedCharacter DecodeUtf8(std::string_view text, std::size_t position);

// True for what must not reach a terminal or a file name: control characters, line separators, and the marks
// that turn the direction of writing around.
bool IsHarmful(char32_t code);

// The text with every harmful character and bad byte spelled out: "\n", "\x1b", "\u202e".
std::string EscapeText(std::string_view text);

// The number of characters, which is near enough to the columns that a terminal needs.
std::size_t CountCharacters(std::string_view text);

// The longest start of the text that has at most so many bytes and does not split a character.
std::string_view CutAtCharacter(std::string_view text, std::size_t max_bytes);

// Lower case of every letter that has one, in any script that the system's UTF-8 tables know.
std::string FoldCase(std::string_view text);

std::string_view StripCharacters(std::string_view text, std::string_view characters);

// A whole decimal number; nothing else in the text.
std::optional<int64_t> ParseNumber(std::string_view text);

// "734 B", "1.2 MB", in steps of 1000.
std::string FormatSize(uint64_t bytes);

// "0:07", "12:30", "3:05:00"; "over 99 hours" beyond that.
std::string FormatDuration(double seconds);

// "1 file", "3 files", in which `plural` is the whole word.
std::string FormatCount(std::size_t count, std::string_view singular, std::string_view plural);

}  // namespace velmarhost

#endif
