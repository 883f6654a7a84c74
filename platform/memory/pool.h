#ifndef PLATFORM_MEMORY_POOL_H
#define PLATFORM_MEMORY_POOL_H

#include <cstddef>

// Memory for the nodes and containers of a tree. A large library has hundreds of thousands of them, made at
// one time and released at one time; the pool takes its memory from the system in large slabs, and gives all
// of it back when the last piece is returned. Any thread may call. Each library that links this has a pool of
// its own.

// At least `bytes`, aligned for any type, or null.
void *TakeFromPool(size_t bytes) noexcept;

// `bytes` is what was asked for.
void ReturnToPool(void *piece, size_t bytes) noexcept;

// Gives a class its memory from the pool.
class Pooled {
  public:
    // Null when there is no memory.
    static void *operator new(size_t bytes) noexcept { return TakeFromPool(bytes); }
    static void operator delete(void *piece, size_t bytes) { ReturnToPool(piece, bytes); }
};

#endif
