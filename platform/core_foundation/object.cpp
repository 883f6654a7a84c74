#include <tuple>
#include <utility>
#include <vector>

#include "platform/core_foundation/container.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/document.h"
#include "platform/core_foundation/heap_object.h"

namespace core_foundation {

void RetainValue(const Value *value) {
    if (value == nullptr || Has(*value, kConstant)) return;
    if (Has(*value, kOnHeap)) {
        auto *object = static_cast<HeapObject *>(const_cast<Value *>(value));
        object->references_.fetch_add(1, std::memory_order_relaxed);
    } else if (Document *document = Document::Of(value)) {
        document->Retain();
    }
}

// The object whose last reference this was, or null.
HeapObject *HeapObject::DropReference(const Value *value) {
    if (value == nullptr || Has(*value, kConstant)) return nullptr;
    if (!Has(*value, kOnHeap)) {
        if (Document *document = Document::Of(value)) document->Release();
        return nullptr;
    }
    auto *object = static_cast<HeapObject *>(const_cast<Value *>(value));
    return object->references_.fetch_sub(1, std::memory_order_acq_rel) == 1 ? object : nullptr;
}

// Needs no memory, which may be what has run out.
void ReleaseValue(const Value *value) {
    HeapObject *object = HeapObject::DropReference(value);
    while (object != nullptr) {
        const Value *reference = nullptr;
        if (!object->TakeReference(reference)) {
            delete std::exchange(object, object->holder_);
        } else if (HeapObject *held = HeapObject::DropReference(reference)) {
            held->holder_ = std::exchange(object, held);
        }
    }
}

namespace {

using Comparison = std::pair<const Value *, const Value *>;

bool SameNumber(const Value &first, const Value &second) {
    if (((first.flags ^ second.flags) & (kReal | kWide)) != 0) return false;
    if (Has(first, kReal)) return first.real == second.real;
    if (!Has(first, kWide)) return first.integer == second.integer;
    return first.wide->high == second.wide->high && first.wide->low == second.wide->low;
}

bool SameBytes(const Value &first, const Value &second) {
    return std::string_view(reinterpret_cast<const char *>(first.bytes), first.length) ==
           std::string_view(reinterpret_cast<const char *>(second.bytes), second.length);
}

bool SameScalar(const Value &first, const Value &second) {
    switch (first.type) {
        case ValueType::kString:
        case ValueType::kUrl:
            return TextOf(first) == TextOf(second);
        case ValueType::kNumber:
            return SameNumber(first, second);
        case ValueType::kBoolean:
        case ValueType::kUid:
            return first.integer == second.integer;
        case ValueType::kDate:
            return first.real == second.real;
        case ValueType::kData:
            return SameBytes(first, second);
        default:
            return &first == &second;
    }
}

// Compares the sizes and leaves the content to later comparisons.
bool BeginContainers(const Value &first, const Value &second, std::vector<Comparison> &open) {
    if (CountOf(first) != CountOf(second)) return false;
    const std::vector<const Value *> children = ChildrenOf(first);
    if (first.type == ValueType::kArray) {
        for (size_t i = 0; i < children.size(); ++i)
            open.emplace_back(children[i], ItemAt(second, i));
        return true;
    }
    for (size_t i = 0; i < children.size(); i += 2) {
        const Value *counterpart = FindValue(second, TextOf(*children[i]));
        if (counterpart == nullptr) return false;
        open.emplace_back(children[i + 1], counterpart);
    }
    return true;
}

bool SameValues(const Value *first, const Value *second) {
    std::vector<Comparison> open{{first, second}};
    while (!open.empty()) {
        std::tie(first, second) = open.back();
        open.pop_back();
        if (first == second) continue;
        if (first == nullptr || second == nullptr || first->type != second->type) return false;
        if (IsContainer(*first) ? !BeginContainers(*first, *second, open) : !SameScalar(*first, *second))
            return false;
    }
    return true;
}

CFTypeID TypeId(ValueType type) {
    return static_cast<CFTypeID>(type);
}

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef value) {
    RetainValue(ToValue(value));
    return value;
}

void CFRelease(CFTypeRef value) {
    ReleaseValue(ToValue(value));
}

CFTypeID CFGetTypeID(CFTypeRef value) {
    return value == nullptr ? 0 : TypeId(ToValue(value)->type);
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
    return SameValues(ToValue(first), ToValue(second));
}

CFTypeID CFStringGetTypeID() {
    return TypeId(ValueType::kString);
}

CFTypeID CFNumberGetTypeID() {
    return TypeId(ValueType::kNumber);
}

CFTypeID CFBooleanGetTypeID() {
    return TypeId(ValueType::kBoolean);
}

CFTypeID CFDateGetTypeID() {
    return TypeId(ValueType::kDate);
}

CFTypeID CFDataGetTypeID() {
    return TypeId(ValueType::kData);
}

CFTypeID CFArrayGetTypeID() {
    return TypeId(ValueType::kArray);
}

CFTypeID CFDictionaryGetTypeID() {
    return TypeId(ValueType::kDictionary);
}
