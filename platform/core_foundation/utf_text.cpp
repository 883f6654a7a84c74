#include "platform/core_foundation/utf_text.h"

#include <cstring>

namespace core_foundation {

namespace {

constexpr uint32_t kFirstSurrogate = 0xD800, kFirstLowSurrogate = 0xDC00, kLastSurrogate = 0xDFFF;
constexpr uint32_t kFirstSupplementary = 0x10000;

bool IsHighSurrogate(uint32_t unit) {
    return unit >= kFirstSurrogate && unit < kFirstLowSurrogate;
}

bool IsLowSurrogate(uint32_t unit) {
    return unit >= kFirstLowSurrogate && unit <= kLastSurrogate;
}

uint32_t UnitAt(const char *units, size_t index, bool big_endian) {
    const auto first = static_cast<uint8_t>(units[2 * index]);
    const auto second = static_cast<uint8_t>(units[2 * index + 1]);
    return big_endian ? uint32_t{first} << 8 | second : uint32_t{second} << 8 | first;
}

// Bytes of a sequence by its first byte; 0 for a byte that cannot be the first.
size_t SequenceLength(uint8_t first) {
    if (first < 0x80) return 1;
    if (first < 0xC2) return 0;
    if (first < 0xE0) return 2;
    if (first < 0xF0) return 3;
    return first < 0xF5 ? 4 : 0;
}

struct Decoded {
    uint32_t code_point;
    size_t length;  // 1 with the replacement character for a byte that is not UTF-8
};

Decoded DecodeUtf8(std::string_view text) {
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, kFirstSupplementary};
    const auto first = static_cast<uint8_t>(text[0]);
    const size_t length = SequenceLength(first);
    if (length == 1) return {first, 1};
    if (length == 0 || length > text.size()) return {kReplacementCharacter, 1};
    uint32_t code_point = first & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<uint8_t>(text[i]);
        if ((next & 0xC0) != 0x80) return {kReplacementCharacter, 1};
        code_point = code_point << 6 | (next & 0x3F);
    }
    const bool is_surrogate = code_point >= kFirstSurrogate && code_point <= kLastSurrogate;
    if (code_point < kSmallest[length] || code_point > kLastCodePoint || is_surrogate) {
        return {kReplacementCharacter, 1};
    }
    return {code_point, length};
}

void AppendUnit(uint32_t unit, std::string &out) {
    out += static_cast<char>(unit >> 8);
    out += static_cast<char>(unit & 0xFF);
}

}  // namespace

char *WriteUtf8(uint32_t code_point, char *out) {
    if (code_point >= kFirstSurrogate && code_point <= kLastSurrogate) code_point = kReplacementCharacter;
    const auto put = [&](uint32_t byte) { *out++ = static_cast<char>(byte); };
    if (code_point < 0x80) {
        put(code_point);
        return out;
    }
    if (code_point < 0x800) {
        put(0xC0 | code_point >> 6);
    } else if (code_point < kFirstSupplementary) {
        put(0xE0 | code_point >> 12);
        put(0x80 | (code_point >> 6 & 0x3F));
    } else {
        put(0xF0 | code_point >> 18);
        put(0x80 | (code_point >> 12 & 0x3F));
        put(0x80 | (code_point >> 6 & 0x3F));
    }
    put(0x80 | (code_point & 0x3F));
    return out;
}

char *Utf16ToUtf8(const char *units, size_t count, bool big_endian, char *out) {
    for (size_t i = 0; i < count; ++i) {
        uint32_t code_point = UnitAt(units, i, big_endian);
        if (IsHighSurrogate(code_point) && i + 1 < count) {
            const uint32_t low = UnitAt(units, i + 1, big_endian);
            if (IsLowSurrogate(low)) {
                code_point =
                    kFirstSupplementary + ((code_point - kFirstSurrogate) << 10) + (low - kFirstLowSurrogate);
                ++i;
            }
        }
        out = WriteUtf8(code_point, out);
    }
    return out;
}

std::string Utf8ToUtf16BigEndian(std::string_view text) {
    std::string units;
    while (!text.empty()) {
        const auto [code_point, length] = DecodeUtf8(text);
        if (code_point < kFirstSupplementary) {
            AppendUnit(code_point, units);
        } else {
            const uint32_t above = code_point - kFirstSupplementary;
            AppendUnit(kFirstSurrogate + (above >> 10), units);
            AppendUnit(kFirstLowSurrogate + (above & 0x3FF), units);
        }
        text.remove_prefix(length);
    }
    return units;
}

size_t Utf16Length(std::string_view text) {
    size_t units = 0;
    while (!text.empty()) {
        const auto [code_point, length] = DecodeUtf8(text);
        units += code_point < kFirstSupplementary ? 1 : 2;
        text.remove_prefix(length);
    }
    return units;
}

bool IsAscii(std::string_view text) {
    // Whole words, as nearly all texts are ASCII to the end.
    uint64_t bits = 0;
    for (; text.size() >= sizeof bits; text.remove_prefix(sizeof bits)) {
        uint64_t word;
        std::memcpy(&word, text.data(), sizeof word);
        bits |= word;
    }
    for (const char byte : text)
        bits |= static_cast<uint8_t>(byte);
    return (bits & 0x8080808080808080) == 0;
}

bool IsUtf8(std::string_view text) {
    if (IsAscii(text)) return true;
    while (!text.empty()) {
        const size_t length = DecodeUtf8(text).length;
        if (length == 1 && (text[0] & 0x80) != 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace core_foundation
