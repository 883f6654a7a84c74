#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/document.h"
#include "platform/core_foundation/heap_object.h"
#include "platform/limits.h"

namespace core_foundation {

namespace {

class DataObject : public HeapObject {
  public:
    DataObject() : HeapObject(ValueType::kData) {}

    // Memory for `size` bytes, which takes the place of the present one as soon as `bytes` is set to it.
    uint8_t *NewStorage(size_t size) {
        previous_ = std::move(storage_);
        storage_ = std::make_unique<uint8_t[]>(size);
        return storage_.get();
    }

  private:
    std::unique_ptr<uint8_t[]> storage_;
    std::unique_ptr<uint8_t[]> previous_;  // until the next change: it is the source of the copy
};

// New memory with the life of the data: its own, or its document's.
uint8_t *NewStorageFor(Value &data, size_t size) {
    if (Has(data, kOnHeap)) return static_cast<DataObject &>(data).NewStorage(size);
    Document *document = Document::Of(&data);
    return document == nullptr ? nullptr : reinterpret_cast<uint8_t *>(document->AllocateBytes(size));
}

bool IsInside(CFRange range, const Value &data) {
    return range.location >= 0 && range.length >= 0 && static_cast<size_t>(range.location) <= data.length &&
           static_cast<size_t>(range.length) <= data.length - static_cast<size_t>(range.location);
}

void CopyBytes(uint8_t *target, const uint8_t *source, size_t count) {
    if (count > 0) std::memmove(target, source, count);
}

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8 *bytes, CFIndex length) {
    if (length < 0 || (bytes == nullptr && length > 0) ||
        limits::kListBytes.IsPassedBy(static_cast<size_t>(length)))
        return nullptr;
    const auto size = static_cast<size_t>(length);
    auto *data = new DataObject;
    data->bytes = data->NewStorage(size);
    data->length = static_cast<uint32_t>(size);
    CopyBytes(data->bytes, bytes, size);
    return ToReference<CFDataRef>(data);
}

CFIndex CFDataGetLength(CFDataRef data) {
    return data == nullptr ? 0 : static_cast<CFIndex>(ToValue(data)->length);
}

const UInt8 *CFDataGetBytePtr(CFDataRef data) {
    return data == nullptr ? nullptr : ToValue(data)->bytes;
}

void CFDataGetBytes(CFDataRef data, CFRange range, UInt8 *buffer) {
    if (data == nullptr || buffer == nullptr || !IsInside(range, *ToValue(data))) return;
    CopyBytes(buffer, ToValue(data)->bytes + range.location, static_cast<size_t>(range.length));
}

void CFDataReplaceBytes(CFMutableDataRef data, CFRange range, const UInt8 *new_bytes, CFIndex new_length) {
    if (data == nullptr || new_length < 0 || (new_bytes == nullptr && new_length > 0)) return;
    Value &value = *const_cast<Value *>(ToValue(data));
    if (!IsInside(range, value)) return;
    const auto before = static_cast<size_t>(range.location);
    const auto replaced = static_cast<size_t>(range.length);
    const auto inserted = static_cast<size_t>(new_length);
    const size_t after = value.length - before - replaced;
    const size_t length = before + inserted + after;
    if (limits::kListBytes.IsPassedBy(length)) return;
    uint8_t *target = length <= value.length ? value.bytes : NewStorageFor(value, length);
    if (target == nullptr) return;
    if (target != value.bytes) CopyBytes(target, value.bytes, before);
    CopyBytes(target + before + inserted, value.bytes + before + replaced, after);
    CopyBytes(target + before, new_bytes, inserted);
    value.bytes = target;
    value.length = static_cast<uint32_t>(length);
}
