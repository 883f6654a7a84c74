#include "driver/child_index.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "driver/driver_path.h"
#include "driver/text_index.h"

namespace {

constexpr size_t kFirstSlots = 32;

}  // namespace

void ChildIndex::Reserve(size_t count) {
    if (slots_.empty()) Resize(std::bit_ceil(count + count / 4));
}

void ChildIndex::Add(const DriverPath &parent, std::string_view name, int32_t position) {
    if (slots_.size() - slots_.size() / 8 <= used_) Resize(std::max(kFirstSlots, slots_.size() * 2));
    const Key key = KeyOf(name);
    Slot &slot = slots_[SlotOf(parent, key)];
    if (slot.next != 0) return;
    slot.hash = key.hash;
    slot.next = position + 1;
    slot.child = ChildAt(&parent, position);
    std::memcpy(slot.name, key.beginning, kShortName);
    ++used_;
}

DriverPath *ChildIndex::Find(const DriverPath &parent, std::string_view name) const {
    return slots_.empty() ? nullptr : slots_[SlotOf(parent, KeyOf(name))].child;
}

ChildIndex::Key ChildIndex::KeyOf(std::string_view name) {
    Key key{HashOf(name), name, {}};
    std::memcpy(key.beginning, name.data(), std::min(name.size(), kShortName));
    return key;
}

bool ChildIndex::IsAt(const Slot &slot, const DriverPath &parent, const Key &key) {
    if (slot.hash != key.hash || std::memcmp(slot.name, key.beginning, kShortName) != 0) return false;
    return key.text.size() < kShortName || ChildNameAt(&parent, slot.next - 1) == key.text;
}

size_t ChildIndex::SlotOf(const DriverPath &parent, const Key &key) const {
    const size_t mask = slots_.size() - 1;
    size_t at = key.hash & mask;
    while (slots_[at].next != 0 && !IsAt(slots_[at], parent, key))
        at = (at + 1) & mask;
    return at;
}

void ChildIndex::Resize(size_t count) {
    decltype(slots_) old(count);
    old.swap(slots_);
    const size_t mask = count - 1;
    for (const Slot &slot : old) {
        if (slot.next == 0) continue;
        size_t at = slot.hash & mask;
        while (slots_[at].next != 0)
            at = (at + 1) & mask;
        slots_[at] = slot;
    }
}
