#ifndef DRIVER_NUMBER_INDEX_H
#define DRIVER_NUMBER_INDEX_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/memory/prefetch.h"

struct DriverPath;

// Finds paths by a number that is theirs for good.
class NumberIndex {
  public:
    // Room for a first `count` numbers.
    void Reserve(size_t count) {
        if (slots_.empty()) slots_.resize(std::bit_ceil(std::max(kFirstSlots, count + count / 4)));
    }

    // The first path of a number stays.
    void Add(int64_t number, DriverPath *path) {
        if (slots_.size() - slots_.size() / 8 <= used_) Grow();
        Slot &slot = slots_[SlotOf(number)];
        if (slot.path != nullptr) return;
        slot = {number, path};
        ++used_;
    }

    // Sends for the memory that a search for this number will touch.
    void PrefetchPlace(int64_t number) const {
        if (!slots_.empty()) Prefetch(&slots_[FirstPlace(number)]);
    }

    // Null for an unknown number.
    DriverPath *Find(int64_t number) const { return slots_.empty() ? nullptr : slots_[SlotOf(number)].path; }

  private:
    // Not so few that they could all be taken: a search ends at a free one.
    static constexpr size_t kFirstSlots = 32;

    struct Slot {
        int64_t number = 0;
        DriverPath *path = nullptr;
    };

    size_t FirstPlace(int64_t number) const;
    // The slot that holds the number, or the free one where it would go.
    size_t SlotOf(int64_t number) const;
    void Grow();

    // A power of two, at most seven eighths full: every number of a list is there as a rule.
    std::vector<Slot> slots_;
    size_t used_ = 0;
};

#endif
