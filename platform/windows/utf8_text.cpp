#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/windows/text.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCharacter = 0x10FFFF;
// A byte that is not UTF-8, always 0x80 or above, stands in wide text as one of the low surrogates 0xDC80 to
// 0xDCFF, which no valid UTF-8 decodes to.
constexpr char32_t kByteBase = 0xDC00;
constexpr char32_t kFirstByte = 0xDC80;
constexpr char32_t kLastByte = 0xDCFF;

constexpr bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// The shape of a sequence by its first byte: its length, the payload of the first byte, and the smallest
// character that needs this length.
struct SequenceForm {
    unsigned char mask;
    unsigned char lead;
    size_t size;
    char32_t smallest;
};
constexpr std::array kForms = {
    SequenceForm{0xE0, 0xC0, 2, 0x80},
    SequenceForm{0xF0, 0xE0, 3, 0x800},
    SequenceForm{0xF8, 0xF0, 4, 0x10000},
};

struct Decoded {
    char32_t character;
    size_t size;  // bytes taken; 0 if there is no valid sequence
};

Decoded DecodeSequence(std::string_view text, const SequenceForm &form) {
    if (text.size() < form.size) return {0, 0};
    auto character = static_cast<char32_t>(static_cast<unsigned char>(text[0]) & ~form.mask & 0xFFU);
    for (size_t i = 1; i < form.size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) return {0, 0};
        character = (character << 6) | (byte & 0x3FU);
    }
    const bool surrogate = IsHighSurrogate(character) || IsLowSurrogate(character);
    if (character < form.smallest || character > kLastCharacter || surrogate) return {0, 0};
    return {character, form.size};
}

Decoded DecodeOne(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return {first, 1};
    for (const SequenceForm &form : kForms) {
        if ((first & form.mask) != form.lead) continue;
        const Decoded decoded = DecodeSequence(text, form);
        if (decoded.size != 0) return decoded;
    }
    return {kByteBase + first, 1};
}

void AppendUtf8(std::string &text, char32_t c) {
    const auto tail = [c](unsigned shift) { return static_cast<char>(0x80U | ((c >> shift) & 0x3FU)); };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += {static_cast<char>(0xC0U | (c >> 6)), tail(0)};
    } else if (c < 0x10000) {
        text += {static_cast<char>(0xE0U | (c >> 12)), tail(6), tail(0)};
    } else {
        text += {static_cast<char>(0xF0U | (c >> 18)), tail(12), tail(6), tail(0)};
    }
}

char32_t JoinSurrogates(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

}  // namespace

std::wstring Utf8ToWide(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        const Decoded decoded = DecodeOne(text);
        wide += static_cast<wchar_t>(decoded.character);
        text.remove_prefix(decoded.size);
    }
    return wide;
}

std::string WideToUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<char32_t>(text[i]);
        const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
        if (IsHighSurrogate(c) && IsLowSurrogate(next)) {
            AppendUtf8(utf8, JoinSurrogates(c, next));
            ++i;
        } else if (c >= kFirstByte && c <= kLastByte) {
            utf8 += static_cast<char>(c - kByteBase);
        } else {
            const bool lone = IsHighSurrogate(c) || IsLowSurrogate(c);
            AppendUtf8(utf8, lone || c > kLastCharacter ? kReplacement : c);
        }
    }
    return utf8;
}
