// The part of a source that a reader has before it.
#ifndef PLATFORM_CORE_FOUNDATION_INPUT_WINDOW_H
#define PLATFORM_CORE_FOUNDATION_INPUT_WINDOW_H

#include <cstddef>
#include <string_view>

#include "platform/core_foundation/byte_source.h"
#include "platform/core_foundation/memory_block.h"

namespace core_foundation {

// A buffer that moves over the source. It is small enough to stay in the processor's cache, so a library of
// hundreds of megabytes goes through memory once, as what is kept of it.
//
// Behind the last byte stand a sentinel of two '<' and readable bytes without a '<': a walk for the next '<'
// ends, and what it ends at is no tag.
class InputWindow {
  public:
    explicit InputWindow(ByteSource &source) : source_(source) {}

    // Reads the first bytes. False when reading or memory failed.
    bool Begin() { return Resize(kFirstSize) && Fill(); }
    // Moves what begins at `keep` to the front and reads on behind it. A rest that takes up much of the
    // window makes the window larger. False when there is nothing more to read.
    bool Advance(const char *keep);
    // Reads all the rest. False when that failed, or is more than a list may have.
    bool ReadAll();
    void Skip(size_t count) { begin_ += count; }

    const char *begin() const { return begin_; }
    const char *end() const { return end_; }
    std::string_view view() const { return {begin_, static_cast<size_t>(end_ - begin_)}; }
    bool failed() const { return failed_; }

  private:
    static constexpr size_t kFirstSize = size_t{256} << 10;

    bool Resize(size_t size);
    bool Fill();

    ByteSource &source_;
    MemoryBlock buffer_;
    const char *begin_ = nullptr;
    char *end_ = nullptr;
    bool is_at_end_ = false;  // the source has no more
    bool failed_ = false;
};

}  // namespace core_foundation

#endif
