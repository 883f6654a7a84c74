#include "platform/core_foundation/tree_builder.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/limits.h"

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
    if (limits::kListDepth.IsPassedBy(frames_.size() + 1)) return false;
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
    if (count <= kIndexedFrom) return CopySmall();
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

// Of several values of one key the last one counts, in the place of the first.
void TreeBuilder::DropDuplicates() {
    Pair *end = base_;
    for (const Pair *pair = base_; pair != top_; ++pair) {
        Pair *same = std::find_if(base_, end, [&](const Pair &earlier) {
            return earlier.key == pair->key ||
                   (earlier.key->hash == pair->key->hash && TextOf(*earlier.key) == TextOf(*pair->key));
        });
        if (same == end) {
            *end++ = *pair;
        } else {
            same->value = pair->value;
        }
    }
    top_ = end;
}

// The keys of the innermost dictionary, in the arena. They are known to be distinct where another dictionary
// had them.
const Value *const *TreeBuilder::KeysOfShape() {
    constexpr uint64_t kFactor = 0x9E3779B97F4A7C15;
    uint64_t hash = 0;
    for (const Pair *pair = base_; pair != top_; ++pair)
        hash = (hash ^ reinterpret_cast<uintptr_t>(pair->key)) * kFactor;
    Shape &latest = latest_shapes_[(hash >> 32) % latest_shapes_.size()];
    const auto is_same = [](const Pair &pair, const Value *key) { return pair.key == key; };
    if (std::equal(base_, top_, latest.keys, latest.keys + latest.count, is_same)) return latest.keys;
    DropDuplicates();
    const auto count = static_cast<size_t>(top_ - base_);
    auto *keys = document_.Allocate<const Value *>(count);
    std::transform(base_, top_, keys, [](const Pair &pair) { return pair.key; });
    latest = {keys, count};
    return keys;
}

Value TreeBuilder::CopySmall() {
    const Value *const *keys = KeysOfShape();
    const auto count = static_cast<size_t>(top_ - base_);
    auto *words = document_.Allocate<uint64_t>((sizeof(Members) + count * sizeof(Value)) / sizeof(uint64_t));
    auto *members = new (words) Members{keys};
    auto *values = reinterpret_cast<Value *>(members + 1);
    for (const Pair *pair = base_; pair != top_; ++pair)
        *values++ = pair->value;
    Value value;
    value.type = ValueType::kDictionary;
    value.flags = kShaped;
    value.length = static_cast<uint32_t>(count);
    value.members = members;
    return value;
}

}  // namespace core_foundation
