#include "platform/core_foundation/tree_builder.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace core_foundation {

namespace {

constexpr size_t kFirstStack = 256;

Value MakeDictionary(const Pair *pairs, size_t count, uint8_t flags) {
    Value value;
    value.type = ValueType::kDictionary;
    value.flags = flags;
    value.length = static_cast<uint32_t>(count);
    value.pairs = pairs;
    return value;
}

}  // namespace

void TreeBuilder::Grow() {
    const auto base = base_ - reinterpret_cast<Pair *>(stack_.data());
    const auto count = static_cast<size_t>(top_ - reinterpret_cast<Pair *>(stack_.data()));
    const size_t capacity = std::max(kFirstStack, 2 * count);
    MemoryBlock grown(capacity * sizeof(Pair));
    if (!grown) throw std::bad_alloc();
    if (count > 0) std::memcpy(grown.data(), stack_.data(), count * sizeof(Pair));
    stack_ = std::move(grown);
    auto *first = reinterpret_cast<Pair *>(stack_.data());
    base_ = first + base;
    top_ = first + count;
    limit_ = first + capacity;
    top_->key = nullptr;
}

bool TreeBuilder::Open(ValueType type) {
    if (frames_.size() == kMaxDepth) return false;
    ++top_;
    if (top_ == limit_) Grow();
    top_->key = nullptr;
    base_ = top_;
    container_ = type;
    frames_.push_back({type, static_cast<size_t>(base_ - reinterpret_cast<Pair *>(stack_.data())), nullptr});
    return true;
}

Value TreeBuilder::Close() {
    const Value closed = container_ == ValueType::kArray ? CloseArray() : CloseDictionary(frames_.back());
    top_ = base_ - 1;
    frames_.pop_back();
    base_ = reinterpret_cast<Pair *>(stack_.data()) + (frames_.empty() ? 0 : frames_.back().base);
    container_ = frames_.empty() ? ValueType::kNone : frames_.back().type;
    return closed;
}

const Value *TreeBuilder::NewKey(std::string_view text, bool is_ascii, uint64_t hash) {
    auto *key = document_.Allocate<Value>(1);
    *key = MakeString(document_.CopyText(text), text.size(), is_ascii);
    key->hash = static_cast<uint16_t>(hash);
    return key;
}

// Called for each key from number kIndexedFrom on.
void TreeBuilder::CheckLastKey() {
    Frame &frame = frames_.back();
    if (frame.index != nullptr) {
        IndexKeys(frame, top_);
        return;
    }
    const bool is_first_check = static_cast<size_t>(top_ - base_) == kIndexedFrom;
    bool ascends = true;
    for (const Pair *pair = is_first_check ? base_ + 1 : top_; ascends && pair <= top_; ++pair)
        ascends = Ascends(pair);
    if (ascends) return;
    frame.index = std::make_unique<IndexBuilder>();
    IndexKeys(frame, base_);
}

// Whether the key comes behind the one before it.
bool TreeBuilder::Ascends(const Pair *pair) const {
    return KeyComesBefore(TextOf(*pair[-1].key), TextOf(*pair->key));
}

// Adds the keys from `first` to the last to the index.
void TreeBuilder::IndexKeys(Frame &frame, const Pair *first) {
    for (const Pair *pair = first; pair <= top_; ++pair) {
        if (!frame.index->Add(base_, static_cast<uint32_t>(pair - base_))) frame.has_duplicates = true;
    }
}

Value TreeBuilder::CloseArray() const {
    Value value;
    value.type = ValueType::kArray;
    value.length = static_cast<uint32_t>(top_ - base_);
    auto *items = document_.Allocate<Value>(value.length);
    value.items = items;
    for (const Pair *entry = base_; entry != top_; ++entry)
        *items++ = entry->value;
    return value;
}

Value TreeBuilder::CloseDictionary(Frame &frame) {
    const auto count = static_cast<size_t>(top_ - base_);
    if (count <= kIndexedFrom) return CopySmallDistinct();
    if (frame.index == nullptr) return CopyOrdered();
    return frame.has_duplicates ? CopyLargeDistinct() : CopyLarge(base_, count, *frame.index);
}

Value TreeBuilder::CopyOrdered() {
    const auto count = static_cast<size_t>(top_ - base_);
    auto *copies = document_.Allocate<Pair>(count);
    std::copy_n(base_, count, copies);
    return MakeDictionary(copies, count, kOrdered);
}

Value TreeBuilder::CopyLarge(const Pair *pairs, size_t count, IndexBuilder &index) {
    const IndexHeader header = index.MoveTo(document_);
    auto *words = document_.Allocate<uint64_t>((sizeof header + count * sizeof(Pair)) / sizeof(uint64_t));
    std::memcpy(words, &header, sizeof header);
    auto *copies = reinterpret_cast<Pair *>(words + sizeof header / sizeof(uint64_t));
    std::copy_n(pairs, count, copies);
    return MakeDictionary(copies, count, kIndexed);
}

Value TreeBuilder::CopyLargeDistinct() {
    std::vector<Pair> distinct;
    IndexBuilder index;
    for (const Pair *pair = base_; pair != top_; ++pair) {
        distinct.push_back(*pair);
        if (index.Add(distinct.data(), static_cast<uint32_t>(distinct.size() - 1))) continue;
        distinct.pop_back();
        distinct[index.Find(distinct.data(), TextOf(*pair->key))].value = pair->value;
    }
    return CopyLarge(distinct.data(), distinct.size(), index);
}

Value TreeBuilder::CopySmallDistinct() {
    auto *copies = document_.Allocate<Pair>(static_cast<size_t>(top_ - base_));
    Pair *end = copies;
    ++dictionary_number_;
    for (const Pair *pair = base_; pair != top_; ++pair) {
        uint32_t &seen_in = seen_in_[pair->key->hash % seen_in_.size()];
        if (seen_in == dictionary_number_) {
            Pair *same = std::find_if(copies, end, [&](const Pair &earlier) {
                return earlier.key == pair->key || TextOf(*earlier.key) == TextOf(*pair->key);
            });
            if (same != end) {
                same->value = pair->value;
                continue;
            }
        }
        seen_in = dictionary_number_;
        *end++ = *pair;
    }
    return MakeDictionary(copies, static_cast<size_t>(end - copies), 0);
}

}  // namespace core_foundation
