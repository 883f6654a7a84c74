#include "platform/core_foundation/memory_block.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

namespace core_foundation {

namespace {

constexpr size_t kHugePage = size_t{2} << 20;

// Smaller blocks are left to the allocator, which keeps them for the next list.
constexpr size_t kMappedFrom = kHugePage;

bool IsMapped(size_t size) {
    return size >= kMappedFrom;
}

// A mapping that begins on a huge page: the system gives small pages to what lies before the first boundary,
// so the mapping is made larger and both ends are cut off.
char *MapAligned(size_t size) {
    void *mapping = mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    const auto start = reinterpret_cast<uintptr_t>(mapping);
    const uintptr_t aligned = (start + kHugePage - 1) / kHugePage * kHugePage;
    if (aligned > start) munmap(mapping, aligned - start);
    char *data = static_cast<char *>(mapping) + (aligned - start);
    const size_t tail = kHugePage - (aligned - start);
    if (tail > 0) munmap(data + size, tail);
    madvise(data, size, MADV_HUGEPAGE);  // advice: where there are no huge pages the small ones serve
    return data;
}

size_t RoundToHugePage(size_t size) {
    return (size + kHugePage - 1) / kHugePage * kHugePage;
}

}  // namespace

MemoryBlock::MemoryBlock(size_t size) : size_(IsMapped(size) ? RoundToHugePage(size) : size) {
    data_ = IsMapped(size_) ? MapAligned(size_) : static_cast<char *>(std::malloc(size_));
    if (data_ == nullptr) size_ = 0;
}

MemoryBlock::~MemoryBlock() {
    if (IsMapped(size_)) {
        munmap(data_, size_);
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
