#ifndef PLATFORM_MEMORY_LARGE_PAGES_H
#define PLATFORM_MEMORY_LARGE_PAGES_H

#include <cstddef>
#include <new>

// Memory in large pages, where the system has them: what is written once and read all over, as a library is,
// costs as much in page faults as in work otherwise.

constexpr size_t kLargePage = size_t{2} << 20;

constexpr size_t RoundToLargePage(size_t bytes) {
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

// Zeroed memory that begins on a large page, or null. `bytes` is a multiple of kLargePage, here and there.
void *MapLargePages(size_t bytes);
void UnmapLargePages(void *memory, size_t bytes);

// For tables that may grow large. Small ones come from the usual allocator.
template <typename T>
struct LargePageAllocator {
    using value_type = T;

    LargePageAllocator() = default;
    template <typename Other>
    explicit LargePageAllocator(const LargePageAllocator<Other> &) {}

    T *allocate(size_t count) {
        const size_t bytes = count * sizeof(T);
        void *memory = bytes < kLargePage ? ::operator new(bytes) : MapLargePages(RoundToLargePage(bytes));
        if (memory == nullptr) throw std::bad_alloc();
        return static_cast<T *>(memory);
    }
    void deallocate(T *memory, size_t count) {
        const size_t bytes = count * sizeof(T);
        if (bytes < kLargePage) {
            ::operator delete(memory);
        } else {
            UnmapLargePages(memory, RoundToLargePage(bytes));
        }
    }
    bool operator==(const LargePageAllocator &) const { return true; }
};

#endif
