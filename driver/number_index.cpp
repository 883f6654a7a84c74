#include "driver/number_index.h"

#include <algorithm>
#include <utility>

#include "driver/text_index.h"

namespace {

constexpr int64_t kNeighbours = 8;

}  // namespace

size_t NumberIndex::FirstPlace(int64_t number) const {
    // Numbers that follow each other, as those of tracks in a list often do, lie beside each other.
    const int64_t group = number & ~(kNeighbours - 1);
    return (HashOf(group) * size_t{kNeighbours} + static_cast<size_t>(number - group)) & (slots_.size() - 1);
}

size_t NumberIndex::SlotOf(int64_t number) const {
    const size_t mask = slots_.size() - 1;
    size_t at = FirstPlace(number);
    while (slots_[at].path != nullptr && slots_[at].number != number)
        at = (at + 1) & mask;
    return at;
}

void NumberIndex::Grow() {
    decltype(slots_) old(std::max(kFirstSlots, slots_.size() * 2));
    old.swap(slots_);
    for (const Slot &slot : old) {
        if (slot.path != nullptr) slots_[SlotOf(slot.number)] = slot;
    }
}
