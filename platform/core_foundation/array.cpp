#include "platform/core_foundation/container.h"
#include "platform/core_foundation/core_foundation.h"

namespace core_foundation {

bool MutableArray::TakeReference(const Value *&reference) {
    if (values_.empty()) return false;
    reference = values_.back();
    values_.pop_back();
    return true;
}

void MutableArray::Append(const Value *value) {
    values_.push_back(value);
    RetainValue(value);
}

const Value *ItemAt(const Value &array, size_t index) {
    if (index >= CountOf(array)) return nullptr;
    return Has(array, kMutable) ? AsMutableArray(array).values()[index] : array.items + index;
}

}  // namespace core_foundation

using namespace core_foundation;

const CFArrayCallBacks kCFTypeArrayCallBacks = {0};

CFIndex CFArrayGetCount(CFArrayRef array) {
    return array == nullptr ? 0 : static_cast<CFIndex>(CountOf(*ToValue(array)));
}

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    if (array == nullptr || index < 0) return nullptr;
    return ItemAt(*ToValue(array), static_cast<size_t>(index));
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks *) {
    return ToReference<CFMutableArrayRef>(new MutableArray);
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef, CFIndex, CFArrayRef array) {
    if (array == nullptr) return nullptr;
    auto *copy = new MutableArray;
    for (const Value *value : ChildrenOf(*ToValue(array)))
        copy->Append(value);
    return ToReference<CFMutableArrayRef>(copy);
}

void CFArrayAppendValue(CFMutableArrayRef array, const void *value) {
    if (array == nullptr || value == nullptr || !Has(*ToValue(array), kMutable)) return;
    const_cast<MutableArray &>(AsMutableArray(*ToValue(array))).Append(ToValue(value));
}
