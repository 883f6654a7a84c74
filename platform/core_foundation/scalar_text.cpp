#include "platform/core_foundation/scalar_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/core_foundation/calendar.h"

namespace core_foundation {

namespace {

__extension__ using Unsigned128 = unsigned __int128;
__extension__ using Signed128 = __int128;

constexpr Unsigned128 kLargest128 = ~Unsigned128{0} >> 1;

// Takes a sign from the front; true for a minus.
bool TakeSign(std::string_view &text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    const bool is_negative = text[0] == '-';
    text.remove_prefix(1);
    return is_negative;
}

std::optional<Unsigned128> ParseDigits(std::string_view digits, uint32_t base) {
    if (digits.empty()) return std::nullopt;
    Unsigned128 magnitude = 0;
    for (const char byte : digits) {
        const int digit = HexDigit(byte);
        if (digit < 0 || static_cast<uint32_t>(digit) >= base) return std::nullopt;
        if (magnitude > (kLargest128 - static_cast<uint32_t>(digit)) / base) return std::nullopt;
        magnitude = magnitude * base + static_cast<uint32_t>(digit);
    }
    return magnitude;
}

std::optional<Value> ParseLongInteger(std::string_view text, bool is_negative, Document &document) {
    uint32_t base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    const std::optional<Unsigned128> magnitude = ParseDigits(text, base);
    if (!magnitude) return std::nullopt;
    const Unsigned128 integer = is_negative ? -*magnitude : *magnitude;
    return MakeWideInteger(static_cast<int64_t>(integer >> 64), static_cast<uint64_t>(integer), document);
}

// Exactly two digits; negative when they are none.
int32_t TwoDigits(const char *text) {
    return IsDigit(text[0]) && IsDigit(text[1]) ? (text[0] - '0') * 10 + (text[1] - '0') : -100;
}

// Takes two digits from the front; negative when there are none.
int32_t TakeTwoDigits(std::string_view &text) {
    if (text.size() < 2) return -1;
    const int32_t number = TwoDigits(text.data());
    text.remove_prefix(2);
    return number;
}

bool TakeByte(std::string_view &text, char byte) {
    if (text.empty() || text[0] != byte) return false;
    text.remove_prefix(1);
    return true;
}

struct DateFields {
    CivilDate date;
    int32_t hour, minute, second;
};

bool IsPossible(const DateFields &fields) {
    const auto is_within = [](int32_t number, int32_t smallest, int32_t largest) {
        return number >= smallest && number <= largest;
    };
    return is_within(fields.date.month, 1, 12) && is_within(fields.date.day, 1, 31) &&
           is_within(fields.hour, 0, 24) && is_within(fields.minute, 0, 59) &&
           is_within(fields.second, 0, 60);  // 60: a leap second
}

// The fields in their order, parted by `separator` in the middle; takes them from the text.
std::optional<DateFields> TakeDateFields(std::string_view &text, char separator) {
    constexpr size_t kLongestYear = 10;
    const bool is_before_christ = TakeSign(text);
    const auto year_digits =
        static_cast<size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
    int32_t year = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + year_digits, year);
    if (year_digits < 4 || year_digits > kLongestYear || error != std::errc()) return std::nullopt;
    text.remove_prefix(year_digits);
    DateFields fields = {};
    fields.date.year = is_before_christ ? -year : year;
    if (!TakeByte(text, '-')) return std::nullopt;
    fields.date.month = TakeTwoDigits(text);
    if (!TakeByte(text, '-')) return std::nullopt;
    fields.date.day = TakeTwoDigits(text);
    if (!TakeByte(text, separator)) return std::nullopt;
    fields.hour = TakeTwoDigits(text);
    if (!TakeByte(text, ':')) return std::nullopt;
    fields.minute = TakeTwoDigits(text);
    if (!TakeByte(text, ':')) return std::nullopt;
    fields.second = TakeTwoDigits(text);
    if (!IsPossible(fields)) return std::nullopt;
    return fields;
}

// "2010-08-30T17:46:37Z" and no other form, as nearly all dates are.
std::optional<DateFields> UsualDateFields(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    if (text.size() != kForm.size()) return std::nullopt;
    for (const size_t place : {4u, 7u, 10u, 13u, 16u, 19u}) {
        if (text[place] != kForm[place]) return std::nullopt;
    }
    const int32_t century = TwoDigits(&text[0]), year = TwoDigits(&text[2]);
    const DateFields fields = {{century * 100 + year, TwoDigits(&text[5]), TwoDigits(&text[8])},
                               TwoDigits(&text[11]),
                               TwoDigits(&text[14]),
                               TwoDigits(&text[17])};
    return century >= 0 && year >= 0 && IsPossible(fields) ? std::optional(fields) : std::nullopt;
}

double SecondsOf(const DateFields &fields) {
    const int64_t of_day = fields.hour * 3600 + fields.minute * 60 + fields.second;
    return static_cast<double>(DaysFromCivil(fields.date) * kSecondsPerDay + of_day);
}

constexpr std::string_view kBase64Letters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int8_t, 256> MakeBase64Digits() {
    std::array<int8_t, 256> digits = {};
    for (int8_t &digit : digits)
        digit = -1;
    for (size_t i = 0; i < kBase64Letters.size(); ++i) {
        digits[static_cast<uint8_t>(kBase64Letters[i])] = static_cast<int8_t>(i);
    }
    return digits;
}

constexpr std::array<int8_t, 256> kBase64Digits = MakeBase64Digits();

}  // namespace

std::string_view TrimSpace(std::string_view text) {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

int HexDigit(char byte) {
    if (IsDigit(byte)) return byte - '0';
    if (byte >= 'a' && byte <= 'f') return byte - 'a' + 10;
    if (byte >= 'A' && byte <= 'F') return byte - 'A' + 10;
    return -1;
}

Value MakeWideInteger(int64_t high, uint64_t low, Document &document) {
    const auto short_form = static_cast<int64_t>(low);
    if (high == (short_form < 0 ? -1 : 0)) return MakeInteger(short_form);
    auto *wide = document.Allocate<WideInteger>(1);
    *wide = {high, low};
    Value value = MakeInteger(0);
    value.flags = kWide;
    value.wide = wide;
    return value;
}

std::optional<Value> ParseInteger(std::string_view text, Document &document) {
    text = TrimSpace(text);
    const bool is_negative = TakeSign(text);
    if (text.empty() || text.size() > kSafeDigits) return ParseLongInteger(text, is_negative, document);
    const char *end = text.data();
    const int64_t integer = TakeDigits(end, text.size());
    if (end != text.data() + text.size()) return ParseLongInteger(text, is_negative, document);
    return MakeInteger(is_negative ? -integer : integer);
}

std::optional<double> ParseReal(std::string_view text) {
    text = TrimSpace(text);
    const bool is_negative = TakeSign(text);
    if (text.empty() || text[0] == '-') return std::nullopt;
    double real = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), real);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) return std::nullopt;
    // Out of range in either direction; the exponent tells which.
    if (error == std::errc::result_out_of_range) {
        const bool is_tiny =
            text.find("e-") != text.npos || text.find("E-") != text.npos || text.starts_with("0.");
        real = is_tiny ? 0 : std::numeric_limits<double>::infinity();
    }
    return is_negative ? -real : real;
}

std::optional<double> ParseDate(std::string_view text) {
    if (const auto usual = UsualDateFields(text)) return SecondsOf(*usual);
    text = TrimSpace(text);
    const std::optional<DateFields> fields = TakeDateFields(text, 'T');
    if (!fields || text != "Z") return std::nullopt;
    return SecondsOf(*fields);
}

std::optional<double> ParseZonedDate(std::string_view text) {
    const std::optional<DateFields> fields = TakeDateFields(text, ' ');
    if (!fields || !TakeByte(text, ' ') || text.empty() || (text[0] != '+' && text[0] != '-'))
        return std::nullopt;
    const int32_t direction = TakeSign(text) ? -1 : 1;
    const int32_t hours = TakeTwoDigits(text);
    const int32_t minutes = TakeTwoDigits(text);
    if (hours < 0 || hours > 24 || minutes < 0 || minutes > 59 || !text.empty()) return std::nullopt;
    return SecondsOf(*fields) - direction * (hours * 3600 + minutes * 60);
}

std::optional<size_t> DecodeBase64(std::string_view text, char *out) {
    uint32_t bits = 0, bit_count = 0;
    const char *begin = out;
    for (const char byte : text.substr(0, text.find('='))) {
        const int8_t digit = kBase64Digits[static_cast<uint8_t>(byte)];
        if (digit < 0) {
            if (!IsSpace(byte)) return std::nullopt;
            continue;
        }
        bits = bits << 6 | static_cast<uint32_t>(digit);
        bit_count += 6;
        if (bit_count < 8) continue;
        bit_count -= 8;
        *out++ = static_cast<char>(bits >> bit_count & 0xFF);
    }
    if (bit_count == 6) return std::nullopt;  // a single digit is no byte
    return static_cast<size_t>(out - begin);
}

std::string FormatInteger(const Value &integer) {
    if (!Has(integer, kWide)) return std::to_string(integer.integer);
    const auto high = static_cast<Unsigned128>(static_cast<Signed128>(integer.wide->high));
    Unsigned128 magnitude = high << 64 | integer.wide->low;
    if (integer.wide->high < 0) magnitude = -magnitude;
    std::string digits;
    for (; magnitude != 0; magnitude /= 10)
        digits += static_cast<char>('0' + static_cast<int>(magnitude % 10));
    if (integer.wide->high < 0) digits += '-';
    return {digits.rbegin(), digits.rend()};
}

std::string FormatReal(double real) {
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), real).ptr;
    return {buffer.data(), end};
}

std::string FormatDate(double seconds) {
    const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(seconds, nullptr);
    std::array<char, 48> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%s%04d-%02d-%02dT%02d:%02d:%02dZ",
                                     date.year < 0 ? "-" : "", std::abs(date.year), date.month, date.day,
                                     date.hour, date.minute, static_cast<int>(date.second));
    return {buffer.data(), static_cast<size_t>(length)};
}

void AppendBase64(const uint8_t *bytes, size_t count, std::string &out) {
    for (size_t i = 0; i < count; i += 3) {
        const size_t left = std::min<size_t>(3, count - i);
        const uint32_t bits = uint32_t{bytes[i]} << 16 | (left > 1 ? uint32_t{bytes[i + 1]} << 8 : 0) |
                              (left > 2 ? uint32_t{bytes[i + 2]} : 0);
        out += kBase64Letters[bits >> 18];
        out += kBase64Letters[bits >> 12 & 63];
        out += left > 1 ? kBase64Letters[bits >> 6 & 63] : '=';
        out += left > 2 ? kBase64Letters[bits & 63] : '=';
    }
}

}  // namespace core_foundation
