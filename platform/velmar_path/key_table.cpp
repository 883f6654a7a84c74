#include "platform/velmar_path/key_table.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <new>

namespace {

constexpr size_t kMaxKeys = 1024;
constexpr size_t kSlots = 4 * kMaxKeys;
constexpr size_t kLongestKey = 256;

struct Key {
    uint32_t size;
    char text[kLongestKey + 1];
};

// Up to eight bytes of a text as a number.
uint64_t Word(const char *text, size_t size) {
    uint64_t word = 0;
    std::memcpy(&word, text, size);
    return word;
}

size_t FirstSlot(std::string_view text) {
    constexpr uint64_t kFactor = 0x9E3779B97F4A7C15;
    constexpr size_t kWord = sizeof(uint64_t);
    uint64_t hash = text.size();
    size_t at = 0;
    for (; at + kWord <= text.size(); at += kWord)
        hash = (hash ^ Word(text.data() + at, kWord)) * kFactor;
    hash = (hash ^ Word(text.data() + at, text.size() - at)) * kFactor;
    return (hash >> 32) % kSlots;
}

// Written once for each slot, under the lock; read without it.
class KeyTable {
  public:
    uint16_t Find(std::string_view text) const {
        return slots_[SlotOf(text)].load(std::memory_order_acquire);
    }

    uint16_t Take(std::string_view text) {
        if (const uint16_t known = Find(text)) return known;
        const std::lock_guard lock(mutex_);
        std::atomic<uint16_t> &slot = slots_[SlotOf(text)];
        if (slot.load(std::memory_order_relaxed) != kUnknownKey) return slot.load(std::memory_order_relaxed);
        if (count_ == kMaxKeys || text.size() > kLongestKey) return kUnknownKey;
        Key *key = new (std::nothrow) Key{static_cast<uint32_t>(text.size()), {}};
        if (key == nullptr) return kUnknownKey;
        text.copy(key->text, text.size());
        keys_[++count_] = key;
        slot.store(static_cast<uint16_t>(count_), std::memory_order_release);
        return static_cast<uint16_t>(count_);
    }

    std::string_view Text(uint16_t key) const { return {keys_[key]->text, keys_[key]->size}; }

  private:
    // The slot that holds the text, or the free one where it would go.
    size_t SlotOf(std::string_view text) const {
        size_t at = FirstSlot(text);
        while (true) {
            const uint16_t key = slots_[at].load(std::memory_order_acquire);
            if (key == kUnknownKey || Text(key) == text) return at;
            at = (at + 1) % kSlots;
        }
    }

    std::mutex mutex_;
    size_t count_ = 0;
    std::array<const Key *, kMaxKeys + 1> keys_ = {};
    std::array<std::atomic<uint16_t>, kSlots> slots_ = {};
};

// Never destroyed: a host may read its containers at the very end of the process.
KeyTable &TheKeyTable() {
    static KeyTable &table = *new KeyTable;
    return table;
}

// The key that last stood at an address, which is the one that stands there now as a rule: most keys are
// constants of a program.
std::atomic<uint16_t> &RecentKey(const char *address) {
    constexpr size_t kRecent = 256;
    static std::array<std::atomic<uint16_t>, kRecent> recent = {};
    return recent[reinterpret_cast<uintptr_t>(address) % kRecent];
}

bool IsKey(uint16_t key, const char *text) {
    return key != kUnknownKey && std::strcmp(TheKeyTable().Text(key).data(), text) == 0;
}

}  // namespace

uint16_t FindKey(const char *text) {
    const uint16_t likely = RecentKey(text).load(std::memory_order_acquire);
    return IsKey(likely, text) ? likely : TheKeyTable().Find(text);
}

uint16_t TakeKey(const char *text) {
    std::atomic<uint16_t> &recent = RecentKey(text);
    const uint16_t likely = recent.load(std::memory_order_acquire);
    if (IsKey(likely, text)) return likely;
    const uint16_t key = TheKeyTable().Take(text);
    recent.store(key, std::memory_order_release);
    return key;
}

std::string_view TextOfKey(uint16_t key) {
    return TheKeyTable().Text(key);
}
