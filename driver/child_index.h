#ifndef DRIVER_CHILD_INDEX_H
#define DRIVER_CHILD_INDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

struct DriverPath;

// Finds the children of one parent by name. A name of a list is short and stands in the index, beside the
// child: in a large library every place that a lookup touches is one that the processor's caches do not have.
// A longer name is compared where it stands in the parent's array.
class ChildIndex {
  public:
    // Takes in all children of a parent.
    explicit ChildIndex(const DriverPath &parent);

    // Takes in the child at a position of the parent, unless it has no name or a child of this name is there:
    // the first stays.
    void Add(const DriverPath &parent, int32_t position);

    // Null for an unknown name.
    DriverPath *Find(const DriverPath &parent, std::string_view name) const;

  private:
    static constexpr size_t kShortName = 16;

    struct Slot {
        uint32_t hash = 0;
        int32_t next = 0;  // the position plus one; 0 for a free slot
        DriverPath *child = nullptr;
        char name[kShortName] = {};  // the beginning, filled up with NULs
    };
    static_assert(sizeof(Slot) == 16 + kShortName);

    struct Key {
        uint32_t hash;
        std::string_view text;
        char beginning[kShortName];
    };

    static Key KeyOf(std::string_view name);
    void Put(const DriverPath &parent, const Key &key, int32_t position);
    static bool IsAt(const Slot &slot, const DriverPath &parent, const Key &key);
    // The slot that holds the name, or the free one where it would go.
    size_t SlotOf(const DriverPath &parent, const Key &key) const;
    void Resize(size_t count);

    std::vector<Slot> slots_;  // a power of two, at most seven eighths full
    size_t used_ = 0;
};

#endif
