#include "platform/memory/pages.h"

#include <sys/mman.h>

namespace {

// A larger block may stay empty for the most part.
constexpr size_t kMostFetched = size_t{2} << 20;

}  // namespace

void *MapPages(size_t bytes) {
    const int fetch = bytes <= kMostFetched ? MAP_POPULATE : 0;
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | fetch, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

void UnmapPages(void *memory, size_t bytes) {
    munmap(memory, bytes);
}
