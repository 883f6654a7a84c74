// The stack on which the readers build a tree from its leaves upwards.
#ifndef PLATFORM_CORE_FOUNDATION_TREE_BUILDER_H
#define PLATFORM_CORE_FOUNDATION_TREE_BUILDER_H

#include <array>
#include <memory>
#include <vector>

#include "platform/core_foundation/dictionary_index.h"
#include "platform/core_foundation/document.h"
#include "platform/core_foundation/text_hash.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// Values wait on the stack until their container is closed, and then move into the arena as one run.
//
// The entry at the top is the one that comes next. It already has its key while an open dictionary waits for
// the value. An open container takes up the entry in which its value will stand. Throws std::bad_alloc.
class TreeBuilder {
  public:
    explicit TreeBuilder(Document &document) : document_(document) { Grow(); }

    // Begins an array or a dictionary; false when it would lie deeper than limits::kListDepth.
    bool Open(ValueType type);
    // Ends the innermost container and takes it from the stack: the caller pushes it where it belongs.
    Value Close();

    void Push(const Value &value) {
        top_->value = value;
        ++top_;
        if (top_ == limit_) Grow();
        top_->key = nullptr;
    }

    // Gives the next value its key. The container is a dictionary that does not await a value.
    void PushKey(std::string_view text, bool is_ascii) {
        if (static_cast<size_t>(top_ - base_) < kIndexedFrom) {
            top_->key = Intern(text, is_ascii);
        } else {
            top_->key = NewKey(text, is_ascii, TextHash(text));
            CheckLastKey();
        }
    }

    // Whether the next thing is a key of a dictionary that is still small, whose keys are shared.
    bool AwaitsSharedKey() const {
        return container_ == ValueType::kDictionary && top_->key == nullptr &&
               static_cast<size_t>(top_ - base_) < kIndexedFrom;
    }
    // The key of the pair before the next one; null at the front of a dictionary.
    const Value *LastKey() const { return top_ == base_ ? nullptr : top_[-1].key; }
    // The value that was pushed last, in a container that has one.
    const Value &LastValue() const { return top_[-1].value; }
    // The key that awaits its value.
    const Value *NextKey() const { return top_->key; }
    // Gives the next value a key that a small dictionary of this list has had before, or takes it back.
    void PushSharedKey(const Value *key) { top_->key = key; }
    void DropKey() { top_->key = nullptr; }

    size_t depth() const { return frames_.size(); }
    // What is open innermost; kNone outside of all containers.
    ValueType container() const { return container_; }
    bool AwaitsValue() const { return top_->key != nullptr; }

    Document &document() { return document_; }

  private:
    struct Frame {
        ValueType type;
        size_t base;  // its first entry on the stack
        // Of a dictionary of more than kIndexedFrom pairs: made at the first key that does not ascend.
        std::unique_ptr<IndexBuilder> index;
        bool has_duplicates = false;
    };

    // The key value for a text, shared by the small dictionaries of a list: it is looked for in two places.
    const Value *Intern(std::string_view text, bool is_ascii) {
        const uint64_t hash = TextHash(text);
        const Value *&first = known_keys_[hash % known_keys_.size()];
        if (first != nullptr && SameText(TextOf(*first), text)) return first;
        const Value *&second = known_keys_[(hash >> 32) % known_keys_.size()];
        if (second != nullptr && SameText(TextOf(*second), text)) return second;
        // Takes turns, so that two keys with one place in common soon have different ones.
        use_second_place_ = !use_second_place_;
        return (use_second_place_ ? second : first) = NewKey(text, is_ascii, hash);
    }

    const Value *NewKey(std::string_view text, bool is_ascii, uint64_t hash);
    void Grow();
    void CheckLastKey();
    bool Ascends(const Pair *pair) const;
    void IndexKeys(Frame &frame, const Pair *first);
    Value CloseArray() const;
    Value CloseDictionary(Frame &frame);
    Value CopyLarge(const Pair *pairs, size_t count, IndexBuilder &index);
    Value CopyLargeDistinct();
    Value CopyOrdered();
    Value CopySmall();
    const Value *const *KeysOfShape();
    void DropDuplicates();

    Document &document_;
    MemoryBlock stack_;
    Pair *base_ = nullptr;  // of the innermost container
    Pair *top_ = nullptr;
    Pair *limit_ = nullptr;
    ValueType container_ = ValueType::kNone;
    std::vector<Frame> frames_;
    std::array<const Value *, 1024> known_keys_ = {};
    bool use_second_place_ = false;

    // The keys of small dictionaries: the tracks of a library have a few hundred different rows of them.
    struct Shape {
        const Value *const *keys = nullptr;
        size_t count = 0;
    };
    std::array<Shape, 1024> latest_shapes_;
};

}  // namespace core_foundation

#endif
