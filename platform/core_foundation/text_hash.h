// Hash and comparison of keys.
#ifndef PLATFORM_CORE_FOUNDATION_TEXT_HASH_H
#define PLATFORM_CORE_FOUNDATION_TEXT_HASH_H

#include <cstdint>
#include <cstring>
#include <string_view>

namespace core_foundation {

// Differs from process to process, so that no file can be made to let all its keys collide.
extern const uint64_t kHashSeed;

template <typename Word>
uint64_t LoadWord(const char *bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline uint64_t MixWords(uint64_t first, uint64_t second) {
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(first) * second;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// Equality with the short texts, which most are, compared in place.
inline bool SameText(std::string_view first, std::string_view second) {
    const size_t size = first.size();
    if (size != second.size()) return false;
    const char *one = first.data(), *other = second.data();
    if (size >= 8 && size <= 16) {
        return LoadWord<uint64_t>(one) == LoadWord<uint64_t>(other) &&
               LoadWord<uint64_t>(one + size - 8) == LoadWord<uint64_t>(other + size - 8);
    }
    if (size >= 4 && size < 8) {
        return LoadWord<uint32_t>(one) == LoadWord<uint32_t>(other) &&
               LoadWord<uint32_t>(one + size - 4) == LoadWord<uint32_t>(other + size - 4);
    }
    return first == second;
}

// Reads every byte and none beyond: short texts by two loads that may overlap.
inline uint64_t TextHash(std::string_view text) {
    constexpr uint64_t kOddA = 0x9E3779B97F4A7C15, kOddB = 0xD1B54A32D192ED03;
    const char *bytes = text.data();
    size_t left = text.size();
    uint64_t state = kHashSeed ^ (left * kOddA);
    for (; left > 16; left -= 16, bytes += 16) {
        state = MixWords(LoadWord<uint64_t>(bytes) ^ kOddA, LoadWord<uint64_t>(bytes + 8) ^ state);
    }
    uint64_t first = 0, second = 0;
    if (left >= 8) {
        first = LoadWord<uint64_t>(bytes);
        second = LoadWord<uint64_t>(bytes + left - 8);
    } else if (left >= 4) {
        first = LoadWord<uint32_t>(bytes);
        second = LoadWord<uint32_t>(bytes + left - 4);
    } else if (left > 0) {
        first = LoadWord<uint8_t>(bytes) << 16 | LoadWord<uint8_t>(bytes + left / 2) << 8;
        second = LoadWord<uint8_t>(bytes + left - 1);
    }
    return MixWords(first ^ kOddB, second ^ state);
}

}  // namespace core_foundation

#endif
