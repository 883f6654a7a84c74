#include "platform/core_foundation/document.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <new>

namespace core_foundation {

namespace {

// Blocks double in size up to the largest. That bounds what is taken in vain at the end of a list.
constexpr size_t kFirstBlock = 4 << 10;
constexpr size_t kLargestBlock = 2 << 20;

// The value blocks of all published documents, by their first byte past the end: the block of an address is
// the first whose end lies behind it. Asked only when a value of an arena is retained or released.
struct Registry {
    struct Range {
        const char *begin;
        Document *document;
    };
    std::mutex mutex;
    std::map<const char *, Range, std::less<>> ranges;
};

Registry &TheRegistry() {
    static auto *const registry = new Registry;  // outlives every static object that holds a value
    return *registry;
}

const char *EndOf(const MemoryBlock &block) {
    return block.data() + block.size();
}

}  // namespace

void Arena::AddBlock(size_t size) {
    const size_t previous = blocks_.empty() ? kFirstBlock / 2 : blocks_.back().size();
    MemoryBlock block(std::max(size, std::min(2 * previous, kLargestBlock)));
    if (!block) throw std::bad_alloc();
    next_ = block.data();
    limit_ = block.data() + block.size();
    blocks_.push_back(std::move(block));
}

Document::~Document() {
    Registry &registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    for (const MemoryBlock &block : values_.blocks())
        registry.ranges.erase(EndOf(block));
}

const char *Document::CopyText(std::string_view text) {
    char *copy = AllocateBytes(text.size() + 1);
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

CFPropertyListRef Document::Publish(std::unique_ptr<Document> document, const Value &root) {
    Value *published = document->Allocate<Value>(1);
    *published = root;
    Registry &registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    for (const MemoryBlock &block : document->values_.blocks()) {
        registry.ranges[EndOf(block)] = {block.data(), document.get()};
    }
    static_cast<void>(document.release());  // found again through the address of its root
    return published;
}

void Document::Release() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

Document *Document::Of(const Value *value) {
    const auto *address = reinterpret_cast<const char *>(value);
    Registry &registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto found = registry.ranges.upper_bound(address);
    if (found == registry.ranges.end() || std::less<>()(address, found->second.begin)) return nullptr;
    return found->second.document;
}

}  // namespace core_foundation
