#include <algorithm>
#include <span>
#include <utility>

#include "platform/core_foundation/container.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/dictionary_index.h"

namespace core_foundation {

bool MutableDictionary::TakeReference(const Value *&reference) {
    if (!by_key_.empty()) by_key_.clear();
    if (entries_.empty()) return false;
    Entry &entry = entries_.back();
    if (entry.key != nullptr) {
        reference = std::exchange(entry.key, nullptr);
    } else {
        reference = entry.value;
        entries_.pop_back();
    }
    return true;
}

void MutableDictionary::Add(const Value *key, const Value *value) {
    if (by_key_.contains(TextOf(*key))) return;
    entries_.push_back({key, value});
    by_key_[TextOf(*key)] = std::prev(entries_.end());
    RetainValue(key);
    RetainValue(value);
}

void MutableDictionary::Remove(std::string_view key) {
    const auto found = by_key_.find(key);
    if (found == by_key_.end()) return;
    const Entry entry = *found->second;
    entries_.erase(found->second);
    by_key_.erase(found);
    ReleaseValue(entry.key);
    ReleaseValue(entry.value);
}

const Value *MutableDictionary::Find(std::string_view key) const {
    const auto found = by_key_.find(key);
    return found == by_key_.end() ? nullptr : found->second->value;
}

size_t CountOf(const Value &container) {
    if (!Has(container, kMutable)) return container.length;
    return container.type == ValueType::kArray ? AsMutableArray(container).values().size()
                                               : AsMutableDictionary(container).entries().size();
}

const Value *FindValue(const Value &dictionary, std::string_view key) {
    if (Has(dictionary, kMutable)) return AsMutableDictionary(dictionary).Find(key);
    return FindMember(dictionary, key);
}

std::vector<const Value *> ChildrenOf(const Value &container) {
    std::vector<const Value *> children;
    const size_t count = CountOf(container);
    if (container.type == ValueType::kArray) {
        children.reserve(count);
        for (size_t i = 0; i < count; ++i)
            children.push_back(ItemAt(container, i));
        return children;
    }
    children.reserve(2 * count);
    if (Has(container, kMutable)) {
        for (const auto &[key, value] : AsMutableDictionary(container).entries()) {
            children.push_back(key);
            children.push_back(value);
        }
        return children;
    }
    const bool is_shaped = Has(container, kShaped);
    for (size_t i = 0; i < count; ++i) {
        children.push_back(is_shaped ? container.members->keys[i] : container.pairs[i].key);
        children.push_back(is_shaped ? container.members->values() + i : &container.pairs[i].value);
    }
    return children;
}

namespace {

// Fills the arrays that are there from any range of records with a key and a value.
template <typename Range, typename ToKey, typename ToItem>
void Fill(const Range &entries, const void **keys, const void **values, ToKey to_key, ToItem to_value) {
    for (const auto &entry : entries) {
        if (keys != nullptr) *keys++ = to_key(entry);
        if (values != nullptr) *values++ = to_value(entry);
    }
}

// The record to change, or null for a dictionary that does not change.
MutableDictionary *ToMutable(CFMutableDictionaryRef dictionary) {
    if (dictionary == nullptr || !Has(*ToValue(dictionary), kMutable)) return nullptr;
    return const_cast<MutableDictionary *>(&AsMutableDictionary(*ToValue(dictionary)));
}

bool IsString(const void *key) {
    return key != nullptr && ToValue(key)->type == ValueType::kString;
}

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0};

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return dictionary == nullptr ? 0 : static_cast<CFIndex>(CountOf(*ToValue(dictionary)));
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
    if (dictionary == nullptr || !IsString(key)) return nullptr;
    return FindValue(*ToValue(dictionary), TextOf(*ToValue(key)));
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys, const void **values) {
    if (dictionary == nullptr) return;
    const Value &record = *ToValue(dictionary);
    if (Has(record, kMutable)) {
        using Entry = MutableDictionary::Entry;
        Fill(
            AsMutableDictionary(record).entries(), keys, values, [](const Entry &entry) { return entry.key; },
            [](const Entry &entry) { return entry.value; });
        return;
    }
    if (Has(record, kShaped)) {
        const Value *values_begin = record.members->values();
        if (keys != nullptr) std::copy_n(record.members->keys, record.length, keys);
        for (uint32_t i = 0; values != nullptr && i < record.length; ++i)
            values[i] = values_begin + i;
        return;
    }
    Fill(
        std::span(record.pairs, record.length), keys, values, [](const Pair &pair) { return pair.key; },
        [](const Pair &pair) { return &pair.value; });
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks *,
                                                 const CFDictionaryValueCallBacks *) {
    return ToReference<CFMutableDictionaryRef>(new MutableDictionary);
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex, CFDictionaryRef dictionary) {
    if (dictionary == nullptr) return nullptr;
    auto *copy = new MutableDictionary;
    const std::vector<const Value *> children = ChildrenOf(*ToValue(dictionary));
    for (size_t i = 0; i < children.size(); i += 2)
        copy->Add(children[i], children[i + 1]);
    return ToReference<CFMutableDictionaryRef>(copy);
}

void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
    MutableDictionary *record = ToMutable(dictionary);
    if (record != nullptr && IsString(key) && value != nullptr) record->Add(ToValue(key), ToValue(value));
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key) {
    MutableDictionary *record = ToMutable(dictionary);
    if (record != nullptr && IsString(key)) record->Remove(TextOf(*ToValue(key)));
}
