#ifndef PLATFORM_MEMORY_PREFETCH_H
#define PLATFORM_MEMORY_PREFETCH_H

#if defined(_MSC_VER)
#include <intrin.h>
#endif

// A large library is many times the size of the processor's caches. Where the next places to be visited are
// known some steps ahead, their memory is sent for before its turn, so that the processor need not wait for
// each.

// How many places are sent for at once: a few more than the processor can wait for.
constexpr int kPrefetchedPlaces = 16;

// Sends for the memory around a place. Any pointer may be given.
inline void Prefetch(const void *place) {
#if defined(_MSC_VER)
    _mm_prefetch(static_cast<const char *>(place), _MM_HINT_T0);
#else
    __builtin_prefetch(place);
#endif
}

#endif
