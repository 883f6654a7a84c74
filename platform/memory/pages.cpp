#include "platform/memory/pages.h"

#include <sys/mman.h>

void *MapPages(size_t bytes) {
    void *memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

void UnmapPages(void *memory, size_t bytes) {
    munmap(memory, bytes);
}
