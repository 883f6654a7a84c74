#ifndef PLATFORM_ITL_PARSER_KEPT_MEMORY_H
#define PLATFORM_ITL_PARSER_KEPT_MEMORY_H

#include <cstddef>
#include <new>
#include <string_view>
#include <type_traits>

#include "platform/core_foundation/document.h"

namespace itl_parser {

// What may be kept of a file: so many times its length, and a constant. Of a real library two to three times
// the length is kept; a crafted file, which deflate makes small, could demand a hundred times as much.
constexpr size_t kMostKeptPerByte = 16;
constexpr size_t kFreeKept = size_t{16} << 20;

// How often a growing vector may hold what is put into it: while it moves, the old and the new room count.
constexpr size_t kVectorShare = 3;

// Memory for what is read of a file, up to a limit. Given back as a whole.
class KeptMemory {
  public:
    void SetLimit(size_t file_length) { left_ = kFreeKept + kMostKeptPerByte * file_length; }

    // Accounts for memory that somebody else allocates. Throws std::bad_alloc beyond the limit, as the others
    // here do.
    void Charge(size_t bytes) {
        if (bytes > left_) throw std::bad_alloc();
        left_ -= bytes;
    }

    template <typename Record>
    Record *New() {
        static_assert(std::is_trivially_destructible_v<Record> && alignof(Record) <= kAlignment);
        constexpr size_t kBytes = (sizeof(Record) + kAlignment - 1) / kAlignment * kAlignment;
        Charge(kBytes);
        return new (records_.Allocate(kBytes)) Record;
    }

    // A copy that is followed by a NUL, or `same` if that is the same text.
    std::string_view Keep(std::string_view text, std::string_view same);

  private:
    static constexpr size_t kAlignment = 8;

    size_t left_ = kFreeKept;
    core_foundation::Arena records_;
    core_foundation::Arena texts_;
};

}  // namespace itl_parser

#endif
