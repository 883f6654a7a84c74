// Numbers, dates and data as the text forms spell them, both ways.
#ifndef PLATFORM_CORE_FOUNDATION_SCALAR_TEXT_H
#define PLATFORM_CORE_FOUNDATION_SCALAR_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "platform/core_foundation/document.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// Whitespace of every text form; control characters count as such, since the vendor's programs leave some
// behind.
inline bool IsSpace(char byte) {
    return static_cast<uint8_t>(byte) <= ' ';
}
std::string_view TrimSpace(std::string_view text);

inline bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// So many decimal digits fit 64 bits whatever they are.
constexpr size_t kSafeDigits = 18;

// The number that decimal digits spell, at most `most` of them, and no more than kSafeDigits; moves behind
// them. A text that ends earlier must have another byte behind it.
inline int64_t TakeDigits(const char *&cursor, size_t most) {
    int64_t number = 0;
    for (const char *const limit = cursor + most; cursor != limit && IsDigit(*cursor); ++cursor)
        number = number * 10 + (*cursor - '0');
    return number;
}

// 4 bits of a hexadecimal digit of either case; -1 for another byte.
int HexDigit(char byte);

// Decimal with an optional sign, or hexadecimal after "0x". Integers of up to 128 bits, the larger ones in
// the arena.
std::optional<Value> ParseInteger(std::string_view text, Document &document);
// Decimal, with or without exponent; "nan" and "inf" or "infinity" with an optional sign, in any case.
std::optional<double> ParseReal(std::string_view text);
// An integer of 128 bits from its halves, kept short where 64 bits hold it.
Value MakeWideInteger(int64_t high, uint64_t low, Document &document);
// "2001-01-01 00:00:00 +0000", as GNUstep has it; the result is as for ParseDate.
std::optional<double> ParseZonedDate(std::string_view text);
// "2010-08-30T17:46:37Z". Gives seconds since 2001-01-01 UTC. A year may have a sign and more than four
// digits.
std::optional<double> ParseDate(std::string_view text);
// Decodes Base64 into `out`, which has room for Base64Room bytes, and gives their number. Space is skipped,
// the padding may be missing.
constexpr size_t Base64Room(size_t digits) {
    return digits / 4 * 3 + 3;
}
std::optional<size_t> DecodeBase64(std::string_view text, char *out);

std::string FormatInteger(const Value &integer);
// The shortest text that reads as the same number.
std::string FormatReal(double real);
// A fraction of a second is cut off: the text form has none.
std::string FormatDate(double seconds);
void AppendBase64(const uint8_t *bytes, size_t count, std::string &out);

}  // namespace core_foundation

#endif
