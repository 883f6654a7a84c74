// The index of a large dictionary: from the hash of a key to the number of its pair.
#ifndef PLATFORM_CORE_FOUNDATION_DICTIONARY_INDEX_H
#define PLATFORM_CORE_FOUNDATION_DICTIONARY_INDEX_H

#include <cstdint>
#include <string_view>

#include "platform/core_foundation/document.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// A dictionary of more pairs has an index, unless its keys ascend. Below that a walk over the 16-bit hashes
// is as fast, and the dictionary of a track, of which there are many, needs no more memory than its pairs.
constexpr size_t kIndexedFrom = 64;

// The order of decimal numbers without leading zeros, which is the order of the tracks in most libraries.
// Where all keys ascend they are distinct, and a search by halves needs no index.
inline bool KeyComesBefore(std::string_view first, std::string_view second) {
    return first.size() != second.size() ? first.size() < second.size() : first < second;
}

// Open addressing over a power of two of slots, at most half of them taken.
struct IndexSlot {
    static constexpr uint32_t kFree = 0xFFFFFFFF;
    uint32_t hash;  // bits 32 to 63 of TextHash
    uint32_t pair;
};

// Stands in the arena directly before the pairs.
struct alignas(8) IndexHeader {
    const IndexSlot *slots;
    uint64_t mask;  // the number of slots less one
};

// Built while the pairs are read, when the text of each key is still at hand. Throws std::bad_alloc.
class IndexBuilder {
  public:
    IndexBuilder() { Resize(4 * kIndexedFrom); }

    // Adds pair number `pair`; false, with nothing added, when `pairs` holds the key already.
    bool Add(const Pair *pairs, uint32_t pair);
    // The number of the pair with the key, or IndexSlot::kFree.
    uint32_t Find(const Pair *pairs, std::string_view key) const;
    // Gives the slots to the document. The builder is then of no more use.
    IndexHeader MoveTo(Document &document);

  private:
    IndexSlot *slots() const { return reinterpret_cast<IndexSlot *>(memory_.data()); }
    void Resize(size_t slot_count);
    void Grow();

    MemoryBlock memory_;
    size_t mask_ = 0;  // the number of slots less one
    size_t count_ = 0;
};

// The value of the key, in a dictionary that is not mutable; null if there is none.
const Value *FindMember(const Value &dictionary, std::string_view key);

}  // namespace core_foundation

#endif
