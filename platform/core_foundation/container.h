// Arrays and dictionaries, of an arena and mutable ones, seen alike.
#ifndef PLATFORM_CORE_FOUNDATION_CONTAINER_H
#define PLATFORM_CORE_FOUNDATION_CONTAINER_H

#include <list>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/core_foundation/heap_object.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// Both retain what they hold.
class MutableArray : public HeapObject {
  public:
    MutableArray() : HeapObject(ValueType::kArray) { flags |= kMutable; }
    bool TakeReference(const Value *&reference) override;

    void Append(const Value *value);
    const std::vector<const Value *> &values() const { return values_; }

  private:
    std::vector<const Value *> values_;
};

class MutableDictionary : public HeapObject {
  public:
    struct Entry {
        const Value *key;
        const Value *value;
    };

    MutableDictionary() : HeapObject(ValueType::kDictionary) { flags |= kMutable; }
    bool TakeReference(const Value *&reference) override;

    // Adds unless the key is present.
    void Add(const Value *key, const Value *value);
    void Remove(std::string_view key);
    const Value *Find(std::string_view key) const;
    // In the order of addition.
    const std::list<Entry> &entries() const { return entries_; }

  private:
    std::list<Entry> entries_;
    std::unordered_map<std::string_view, std::list<Entry>::iterator> by_key_;  // the texts are the keys' own
};

inline bool IsContainer(const Value &value) {
    return value.type == ValueType::kArray || value.type == ValueType::kDictionary;
}

inline const MutableArray &AsMutableArray(const Value &array) {
    return static_cast<const MutableArray &>(array);
}

inline const MutableDictionary &AsMutableDictionary(const Value &dictionary) {
    return static_cast<const MutableDictionary &>(dictionary);
}

// Items of an array, or pairs of a dictionary.
size_t CountOf(const Value &container);
// Null beyond the end.
const Value *ItemAt(const Value &array, size_t index);
// Null for an absent key.
const Value *FindValue(const Value &dictionary, std::string_view key);
// The items of an array in order, or key, value, key, value and so on of a dictionary.
std::vector<const Value *> ChildrenOf(const Value &container);

}  // namespace core_foundation

#endif
