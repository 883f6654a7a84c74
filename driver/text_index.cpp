#include "driver/text_index.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

namespace {

constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;

const uint64_t kSeed = (uint64_t{std::random_device{}()} << 32) | std::random_device{}();

uint64_t Mix(uint64_t hash, uint64_t word) {
    hash = (hash ^ word) * kMultiplier;
    return hash ^ (hash >> 29);
}

uint32_t Fold(uint64_t hash) {
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

// Sets the bit that tells lower from upper case in every byte that is an ASCII letter. Other bytes stay, so
// texts that differ in them keep different hashes.
uint64_t FoldLetters(uint64_t word) {
    constexpr uint64_t kOnes = 0x0101010101010101;
    const uint64_t low = word & (0x7F * kOnes);
    const uint64_t from_a = low + (0x80 - 'A') * kOnes;
    const uint64_t above_z = low + (0x7F - 'Z') * kOnes;
    const uint64_t letters = (from_a & ~above_z & ~word) & (0x80 * kOnes);
    return word | (letters >> 2);
}

template <bool kFolded>
uint32_t Hash(std::string_view text) {
    uint64_t hash = kSeed ^ text.size();
    while (!text.empty()) {
        const size_t bytes = text.size() < sizeof(uint64_t) ? text.size() : sizeof(uint64_t);
        uint64_t word = 0;
        std::memcpy(&word, text.data(), bytes);
        hash = Mix(hash, kFolded ? FoldLetters(word) : word);
        text.remove_prefix(bytes);
    }
    return Fold(hash);
}

}  // namespace

uint32_t HashOf(int64_t number) {
    return Fold(Mix(kSeed, static_cast<uint64_t>(number)));
}

uint32_t HashOf(std::string_view text) {
    return Hash<false>(text);
}

uint32_t HashOfFolded(std::string_view text) {
    return Hash<true>(text);
}

bool EqualFolded(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char left, char right) { return FoldLetter(left) == FoldLetter(right); });
}

void TextIndex::Grow() {
    const std::vector<Slot> old =
        std::exchange(slots_, std::vector<Slot>(std::max(kFirstSlots, slots_.size() * 2)));
    for (const Slot &slot : old) {
        if (slot.next != 0) slots_[SlotOf(slot.hash, [](uint32_t) { return false; })] = slot;
    }
}
