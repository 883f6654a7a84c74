#include "platform/memory/pool.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "platform/memory/pages.h"

namespace {

// GCC defines a name for each sanitizer, clang answers questions about them.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(address_sanitizer) || \
    __has_feature(thread_sanitizer)
constexpr bool kPooled = false;  // so that the checker sees each piece by itself
#else
constexpr bool kPooled = true;
#endif

constexpr size_t kSlabBytes = size_t{2} << 20;
constexpr size_t kStep = alignof(std::max_align_t);
constexpr size_t kLargestPiece = 4096;

struct SlabDeleter {
    void operator()(std::byte *slab) const { UnmapPages(slab, kSlabBytes); }
};

using Slab = std::unique_ptr<std::byte[], SlabDeleter>;

// Held for a few instructions, hundreds of thousands of times in a load, and hardly ever waited for.
class SpinLock {
  public:
    void lock() {
        while (busy_.test_and_set(std::memory_order_acquire))
            std::this_thread::yield();
    }
    void unlock() { busy_.clear(std::memory_order_release); }

  private:
    std::atomic_flag busy_;
};

// A returned piece waits in the list of its size for the next taker.
class Pool {
  public:
    void *Take(size_t bytes) {
        const std::lock_guard lock(mutex_);
        const size_t steps = StepsOf(bytes);
        void *piece = free_[steps] != nullptr ? PopFree(steps) : Cut(steps * kStep);
        ++count_;
        return piece;
    }

    void Return(void *piece, size_t bytes) {
        const std::lock_guard lock(mutex_);
        if (--count_ == 0) {
            slabs_.clear();
            room_ = 0;
            free_ = {};
            return;
        }
        FreePiece *&first = free_[StepsOf(bytes)];
        first = new (piece) FreePiece{first};
    }

  private:
    struct FreePiece {
        FreePiece *next;
    };

    static size_t StepsOf(size_t bytes) { return (bytes + kStep - 1) / kStep; }

    void *PopFree(size_t steps) { return std::exchange(free_[steps], free_[steps]->next); }

    void *Cut(size_t bytes) {
        if (room_ < bytes) AddSlab();
        room_ -= bytes;
        return slabs_.back().get() + room_;
    }

    void AddSlab() {
        Slab slab(static_cast<std::byte *>(MapPages(kSlabBytes)));
        if (!slab) throw std::bad_alloc();
        slabs_.push_back(std::move(slab));
        room_ = kSlabBytes;
    }

    SpinLock mutex_;
    std::vector<Slab> slabs_;
    size_t room_ = 0;  // of the last slab, at its front
    std::array<FreePiece *, kLargestPiece / kStep + 1> free_ = {};
    size_t count_ = 0;
};

// Never destroyed: a host may release its containers at the very end of the process.
Pool &ThePool() {
    static Pool &pool = *new Pool;
    return pool;
}

constexpr bool IsPooled(size_t bytes) {
    return kPooled && bytes <= kLargestPiece;
}

}  // namespace

void *TakeFromPool(size_t bytes) noexcept {
    try {
        return IsPooled(bytes) ? ThePool().Take(bytes) : ::operator new(bytes);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void ReturnToPool(void *piece, size_t bytes) noexcept {
    if (piece == nullptr) return;
    if (IsPooled(bytes)) {
        ThePool().Return(piece, bytes);
    } else {
        ::operator delete(piece, bytes);
    }
}
