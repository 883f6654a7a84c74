// The memory behind one list that was read.
#ifndef PLATFORM_CORE_FOUNDATION_DOCUMENT_H
#define PLATFORM_CORE_FOUNDATION_DOCUMENT_H

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include "platform/core_foundation/memory_block.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// Memory that is handed out piece by piece and given back as a whole.
class Arena {
  public:
    // `size` bytes, not aligned by themselves: pieces of a multiple of 8 bytes keep the arena aligned. Throws
    // std::bad_alloc.
    char *Allocate(size_t size) {
        if (size > static_cast<size_t>(limit_ - next_)) AddBlock(size);
        char *start = next_;
        next_ += size;
        return start;
    }

    const std::vector<MemoryBlock> &blocks() const { return blocks_; }

  private:
    void AddBlock(size_t size);

    std::vector<MemoryBlock> blocks_;
    char *next_ = nullptr;
    char *limit_ = nullptr;
};

// Lives while any of its values is referenced. A reference to a value in an arena is a reference to its
// document, and the document is found by the address of the value, so that values carry no word for it.
class Document {
  public:
    Document() = default;
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    // Memory for `count` records. Throws std::bad_alloc, as everything here that allocates.
    template <typename Record>
    Record *Allocate(size_t count) {
        static_assert(sizeof(Record) % 8 == 0 && alignof(Record) <= 8);
        return reinterpret_cast<Record *>(values_.Allocate(count * sizeof(Record)));
    }

    char *AllocateBytes(size_t size) { return texts_.Allocate(size); }

    // Keeps memory that values point into.
    void Adopt(MemoryBlock block) { adopted_.push_back(std::move(block)); }

    // A terminated copy.
    const char *CopyText(std::string_view text);

    // Puts the root into the arena and gives the document away: the result is the only reference to it.
    static CFPropertyListRef Publish(std::unique_ptr<Document> document, const Value &root);

    void Retain() { references_.fetch_add(1, std::memory_order_relaxed); }
    void Release();

    // The published document that holds the value; null for a value of none.
    static Document *Of(const Value *value);

  private:
    Arena values_;  // and whatever else is aligned
    Arena texts_;
    std::vector<MemoryBlock> adopted_;
    std::atomic<intptr_t> references_{1};
};

}  // namespace core_foundation

#endif
