#include "platform/memory/large_pages.h"

#include <sys/mman.h>

#include <cstdint>

// The system gives small pages to what lies before the first boundary, so the mapping is made larger and both
// ends are cut off.
void *MapLargePages(size_t bytes) {
    void *mapping = mmap(nullptr, bytes + kLargePage, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    const auto start = reinterpret_cast<uintptr_t>(mapping);
    const uintptr_t aligned = RoundToLargePage(start);
    if (aligned > start) munmap(mapping, aligned - start);
    char *memory = static_cast<char *>(mapping) + (aligned - start);
    const size_t tail = kLargePage - (aligned - start);
    if (tail > 0) munmap(memory + bytes, tail);
    madvise(memory, bytes, MADV_HUGEPAGE);  // advice: where there are no large pages the small ones serve
    return memory;
}

void UnmapLargePages(void *memory, size_t bytes) {
    munmap(memory, bytes);
}
