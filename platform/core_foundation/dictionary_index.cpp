#include "platform/core_foundation/dictionary_index.h"

#include <algorithm>
#include <new>

#include "platform/core_foundation/text_hash.h"

namespace core_foundation {

namespace {

// The slot of the key, or the free slot where the walk for it ends.
size_t FindSlot(const IndexSlot *slots, uint64_t mask, const Pair *pairs, std::string_view key,
                uint32_t hash) {
    size_t slot = hash & mask;
    while (slots[slot].pair != IndexSlot::kFree &&
           (slots[slot].hash != hash || TextOf(*pairs[slots[slot].pair].key) != key)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

uint32_t UpperHash(std::string_view key) {
    return static_cast<uint32_t>(TextHash(key) >> 32);
}

}  // namespace

bool IndexBuilder::Add(const Pair *pairs, uint32_t pair) {
    if (2 * (count_ + 1) > mask_) Grow();
    const std::string_view key = TextOf(*pairs[pair].key);
    const uint32_t hash = UpperHash(key);
    IndexSlot &slot = slots()[FindSlot(slots(), mask_, pairs, key, hash)];
    if (slot.pair != IndexSlot::kFree) return false;
    slot = {hash, pair};
    ++count_;
    return true;
}

uint32_t IndexBuilder::Find(const Pair *pairs, std::string_view key) const {
    return slots()[FindSlot(slots(), mask_, pairs, key, UpperHash(key))].pair;
}

void IndexBuilder::Resize(size_t slot_count) {
    memory_ = MemoryBlock(slot_count * sizeof(IndexSlot));
    if (!memory_) throw std::bad_alloc();
    mask_ = slot_count - 1;
    std::fill_n(slots(), slot_count, IndexSlot{0, IndexSlot::kFree});
}

void IndexBuilder::Grow() {
    const MemoryBlock previous = std::move(memory_);
    const size_t slot_count = mask_ + 1;
    Resize(4 * slot_count);
    const auto *old_slots = reinterpret_cast<const IndexSlot *>(previous.data());
    for (const IndexSlot *entry = old_slots; entry != old_slots + slot_count; ++entry) {
        if (entry->pair == IndexSlot::kFree) continue;
        size_t slot = entry->hash & mask_;
        while (slots()[slot].pair != IndexSlot::kFree)
            slot = (slot + 1) & mask_;
        slots()[slot] = *entry;
    }
}

IndexHeader IndexBuilder::MoveTo(Document &document) {
    const IndexHeader header{slots(), mask_};
    document.Adopt(std::move(memory_));
    return header;
}

namespace {

const Value *FindOrdered(const Value &dictionary, std::string_view key) {
    const Pair *end = dictionary.pairs + dictionary.length;
    const Pair *found = std::partition_point(
        dictionary.pairs, end, [&](const Pair &pair) { return KeyComesBefore(TextOf(*pair.key), key); });
    return found != end && TextOf(*found->key) == key ? &found->value : nullptr;
}

const Value *FindIndexed(const Value &dictionary, std::string_view key) {
    const Pair *pairs = dictionary.pairs;
    const IndexHeader &index = reinterpret_cast<const IndexHeader *>(pairs)[-1];
    const uint32_t pair = index.slots[FindSlot(index.slots, index.mask, pairs, key, UpperHash(key))].pair;
    return pair == IndexSlot::kFree ? nullptr : &pairs[pair].value;
}

}  // namespace

const Value *FindMember(const Value &dictionary, std::string_view key) {
    if (Has(dictionary, kOrdered)) return FindOrdered(dictionary, key);
    if (Has(dictionary, kIndexed)) return FindIndexed(dictionary, key);
    const auto hash = static_cast<uint16_t>(TextHash(key));
    const Value *const *keys = dictionary.members->keys;
    const Value *const *end = keys + dictionary.length;
    const Value *const *found = std::find_if(
        keys, end, [&](const Value *other) { return other->hash == hash && TextOf(*other) == key; });
    return found == end ? nullptr : dictionary.members->values() + (found - keys);
}

}  // namespace core_foundation
