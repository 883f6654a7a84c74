#include "host/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <locale>
#include <stdexcept>

namespace velmarhost {
namespace {

unsigned char ByteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

// Bytes of the sequence that a lead byte opens; 0 for a byte that opens none.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

bool IsValidCode(char32_t code, std::size_t length) {
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code >= kSmallest[length] && code <= 0x10FFFF && !surrogate;
}

void AppendUtf8(std::string &text, char32_t code) {
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | (code >> 6));
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | (code >> 12));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | (code >> 18));
        append(0x80 | ((code >> 12) & 0x3F));
        append(0x80 | ((code >> 6) & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

std::string EscapeCode(char32_t code, unsigned char first_byte) {
    if (code == U'\n') return "\\n";
    if (code == U'\r') return "\\r";
    if (code == U'\t') return "\\t";
    std::array<char, 12> buffer{};
    if (code == kBadByte || code < 0x80) {
        std::snprintf(buffer.data(), buffer.size(), "\\x%02x", static_cast<unsigned>(first_byte));
    } else {
        std::snprintf(buffer.data(), buffer.size(), "\\u%04x", static_cast<unsigned>(code));
    }
    return buffer.data();
}

// The letter tables of UTF-8, whatever the user's locale; plain ASCII where the system has no such locale.
const std::locale &LetterLocale() {
    static const std::locale locale = [] {
        try {
            return std::locale("C.UTF-8");
        } catch (const std::runtime_error &) {
            return std::locale::classic();
        }
    }();
    return locale;
}

}  // namespace

DecodedCharacter DecodeUtf8(std::string_view text, std::size_t position) {
    if (position >= text.size()) return {kBadByte, 0};
    const unsigned char lead = ByteAt(text, position);
    const std::size_t length = SequenceLength(lead);
    if (length == 1) return {lead, 1};
    if (length == 0 || length > text.size() - position) return {kBadByte, 1};
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char byte = ByteAt(text, position + i);
        if ((byte & 0xC0) != 0x80) return {kBadByte, 1};
        code = (code << 6) | (byte & 0x3FU);
    }
    if (!IsValidCode(code, length)) return {kBadByte, 1};
    return {code, length};
}

bool IsHarmful(char32_t code) {
    if (code == kBadByte || code < 0x20 || (code >= 0x7F && code <= 0x9F)) return true;
    return code == 0x61C || (code >= 0x200E && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

std::string EscapeText(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const DecodedCharacter character = DecodeUtf8(text, i);
        if (IsHarmful(character.code)) {
            escaped += EscapeCode(character.code, ByteAt(text, i));
        } else {
            escaped += text.substr(i, character.length);
        }
        i += character.length;
    }
    return escaped;
}

std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); i += DecodeUtf8(text, i).length)
        ++count;
    return count;
}

std::string_view CutAtCharacter(std::string_view text, std::size_t max_bytes) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t length = DecodeUtf8(text, end).length;
        if (end + length > max_bytes) break;
        end += length;
    }
    return text.substr(0, end);
}

std::string FoldCase(std::string_view text) {
    const auto &letters = std::use_facet<std::ctype<wchar_t>>(LetterLocale());
    std::string folded;
    folded.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const DecodedCharacter character = DecodeUtf8(text, i);
        if (character.code == kBadByte) {
            folded.push_back(text[i]);
        } else {
            AppendUtf8(folded, static_cast<char32_t>(letters.tolower(static_cast<wchar_t>(character.code))));
        }
        i += character.length;
    }
    return folded;
}

std::string_view StripCharacters(std::string_view text, std::string_view characters) {
    const std::size_t begin = text.find_first_not_of(characters);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(characters) - begin + 1);
}

std::optional<int64_t> ParseNumber(std::string_view text) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

std::string FormatSize(uint64_t bytes) {
    if (bytes < 1000) return std::to_string(bytes) + " B";
    constexpr std::array kUnits = {"kB", "MB", "GB", "TB", "PB", "EB"};
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    // 999.95 would print as 1000.0.
    while (value >= 999.95 && unit + 1 < kUnits.size()) {
        value /= 1000;
        ++unit;
    }
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.1f %s", value, kUnits.at(unit));
    return buffer.data();
}

std::string FormatDuration(double seconds) {
    constexpr double kLongest = 99 * 3600.0;
    if (!(seconds <= kLongest)) return "over 99 hours";
    const auto whole = static_cast<unsigned>(std::max(seconds, 0.0) + 0.5);
    const unsigned hours = whole / 3600;
    const unsigned minutes = whole / 60 % 60;
    std::array<char, 32> buffer{};
    if (hours > 0) {
        std::snprintf(buffer.data(), buffer.size(), "%u:%02u:%02u", hours, minutes, whole % 60);
    } else {
        std::snprintf(buffer.data(), buffer.size(), "%u:%02u", minutes, whole % 60);
    }
    return buffer.data();
}

std::string FormatCount(std::size_t count, std::string_view singular, std::string_view plural) {
    return std::to_string(count) + " " + std::string(count == 1 ? singular : plural);
}

}  // namespace velmarhost
