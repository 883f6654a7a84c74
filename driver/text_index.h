#ifndef DRIVER_TEXT_INDEX_H
#define DRIVER_TEXT_INDEX_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// Hashes, seeded once per process so that a library cannot be made to collide. HashOfFolded takes ASCII
// letters of either case as the same.
uint32_t HashOf(int64_t number);
uint32_t HashOf(std::string_view text);
uint32_t HashOfFolded(std::string_view text);

// An ASCII capital as its small letter; any other byte as it is.
constexpr char FoldLetter(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
}

// The comparison that goes with HashOfFolded.
bool EqualFolded(std::string_view one, std::string_view other);

// Finds positions in an array by the text that belongs to each. The index holds hashes and positions only;
// what a position's text is today, the caller tells with `same`, so the array stays the one truth.
class TextIndex {
  public:
    // Room for a first `count` texts.
    void Reserve(size_t count) {
        if (slots_.empty()) slots_.resize(std::bit_ceil(count * 2));
    }

    // Adds a position unless one with the same text is there: the first stays. `same(position)` tells that.
    template <typename Same>
    bool Add(uint32_t hash, uint32_t position, Same same) {
        if (slots_.size() < (used_ + 1) * 2) Grow();
        Slot &slot = slots_[SlotOf(hash, same)];
        if (slot.next != 0) return false;
        slot = {hash, position + 1};
        ++used_;
        return true;
    }

    template <typename Same>
    std::optional<uint32_t> Find(uint32_t hash, Same same) const {
        if (slots_.empty()) return std::nullopt;
        const Slot &slot = slots_[SlotOf(hash, same)];
        if (slot.next == 0) return std::nullopt;
        return slot.next - 1;
    }

  private:
    static constexpr size_t kFirstSlots = 32;

    struct Slot {
        uint32_t hash = 0;
        uint32_t next = 0;  // the position plus one; 0 for a free slot
    };

    // The slot that holds the text, or the free one where it would go.
    template <typename Same>
    size_t SlotOf(uint32_t hash, Same same) const {
        const size_t mask = slots_.size() - 1;
        size_t at = hash & mask;
        while (slots_[at].next != 0 && (slots_[at].hash != hash || !same(slots_[at].next - 1)))
            at = (at + 1) & mask;
        return at;
    }

    void Grow();

    std::vector<Slot> slots_;  // a power of two, at most half full
    size_t used_ = 0;
};

#endif
