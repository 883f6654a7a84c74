// Finding the end of a text, many bytes at a time.
#ifndef PLATFORM_CORE_FOUNDATION_TEXT_SCAN_H
#define PLATFORM_CORE_FOUNDATION_TEXT_SCAN_H

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace core_foundation {

// A scan reads whole blocks: so many bytes behind the text must be readable.
constexpr size_t kScanPadding = 16;

struct ScanResult {
    const char *end;  // the first '<' or '&'
    bool is_ascii;    // no byte before it is above 0x7F
};

#if defined(__SSE2__)

// The text must hold a '<' or '&' somewhere.
inline ScanResult ScanText(const char *text) {
    const __m128i open = _mm_set1_epi8('<'), ampersand = _mm_set1_epi8('&');
    uint32_t high_bytes = 0;
    while (true) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text));
        const __m128i ends = _mm_or_si128(_mm_cmpeq_epi8(block, open), _mm_cmpeq_epi8(block, ampersand));
        const auto end_mask = static_cast<uint32_t>(_mm_movemask_epi8(ends));
        const auto high_mask = static_cast<uint32_t>(_mm_movemask_epi8(block));
        if (end_mask != 0) {
            const uint32_t before_end = (end_mask & -end_mask) - 1;
            return {text + std::countr_zero(end_mask), ((high_mask & before_end) | high_bytes) == 0};
        }
        high_bytes |= high_mask;
        text += sizeof block;
    }
}

#else

inline ScanResult ScanText(const char *text) {
    uint32_t all_bytes = 0;
    while (*text != '<' && *text != '&')
        all_bytes |= static_cast<uint8_t>(*text++);
    return {text, all_bytes < 0x80};
}

#endif

}  // namespace core_foundation

#endif
