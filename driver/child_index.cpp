#include "driver/child_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "driver/driver_path.h"
#include "driver/text_index.h"
#include "platform/memory/prefetch.h"

namespace {

constexpr size_t kFirstSlots = 32;

}  // namespace

ChildIndex::ChildIndex(const DriverPath &parent) {
    const int32_t count = ChildCount(&parent);
    Resize(std::max(kFirstSlots, std::bit_ceil(static_cast<size_t>(count) + static_cast<size_t>(count) / 4)));
    std::array<Key, kPrefetchedPlaces> keys;
    for (int32_t first = 0; first < count; first += kPrefetchedPlaces) {
        const int32_t last = std::min(count, first + kPrefetchedPlaces);
        for (int32_t i = first; i < last; ++i) {
            const char *name = ChildNameAt(&parent, i);
            Key &key = keys[static_cast<size_t>(i - first)];
            key = name == nullptr ? Key{} : KeyOf(name);
            Prefetch(&slots_[key.hash & (slots_.size() - 1)]);
        }
        for (int32_t i = first; i < last; ++i)
            Put(parent, keys[static_cast<size_t>(i - first)], i);
    }
}

void ChildIndex::Add(const DriverPath &parent, int32_t position) {
    const char *name = ChildNameAt(&parent, position);
    Put(parent, name == nullptr ? Key{} : KeyOf(name), position);
}

void ChildIndex::Put(const DriverPath &parent, const Key &key, int32_t position) {
    if (key.text.data() == nullptr) return;
    if (slots_.size() - slots_.size() / 8 <= used_) Resize(slots_.size() * 2);
    Slot &slot = slots_[SlotOf(parent, key)];
    if (slot.next != 0) return;
    slot.hash = key.hash;
    slot.next = position + 1;
    slot.child = ChildAt(&parent, position);
    std::memcpy(slot.name, key.beginning, kShortName);
    ++used_;
}

DriverPath *ChildIndex::Find(const DriverPath &parent, std::string_view name) const {
    return slots_[SlotOf(parent, KeyOf(name))].child;
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
