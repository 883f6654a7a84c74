#include "platform/core_foundation/memory_block.h"

#include <cstdlib>

#include "platform/memory/pages.h"

namespace core_foundation {

namespace {

constexpr size_t kLeastMapped = size_t{2} << 20;

// Smaller blocks are left to the allocator, which keeps them for the next list.
bool IsMapped(size_t size) {
    return size >= kLeastMapped;
}

}  // namespace

MemoryBlock::MemoryBlock(size_t size) : size_(size) {
    data_ = static_cast<char *>(IsMapped(size_) ? MapPages(size_) : std::malloc(size_));
    if (data_ == nullptr) size_ = 0;
}

MemoryBlock::~MemoryBlock() {
    if (IsMapped(size_)) {
        UnmapPages(data_, size_);
    } else {
        std::free(data_);
    }
}

MemoryBlock &MemoryBlock::operator=(MemoryBlock &&other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    return *this;
}

}  // namespace core_foundation
