#ifndef PLATFORM_ITL_PARSER_KEPT_MEMORY_H
#define PLATFORM_ITL_PARSER_KEPT_MEMORY_H

#include <cstddef>
#include <new>
#include <string_view>
#include <type_traits>

#include "platform/core_foundation/document.h"
#include "platform/limits.h"

namespace itl_parser {

// How often a growing vector may hold what is put into it: while it moves, the old and the new room count.
constexpr size_t kVectorShare = 3;

// Memory for what is read of a file, up to a limit. Given back as a whole.
class KeptMemory {
  public:
    void SetLimit(size_t file_length) {
        left_ = limits::kItlFreeKeptBytes + limits::kItlKeptExpansion.value * file_length;
    }

    // Accounts for memory that somebody else allocates. Throws std::bad_alloc beyond the limit, as the others
    // here do.
    void Charge(size_t bytes) {
        if (bytes > left_) Refuse();
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

    [[noreturn]] static void Refuse();

    size_t left_ = limits::kItlFreeKeptBytes;
    core_foundation::Arena records_;
    core_foundation::Arena texts_;
};

}  // namespace itl_parser

#endif
