// Values that are made one by one and counted one by one.
#ifndef PLATFORM_CORE_FOUNDATION_HEAP_OBJECT_H
#define PLATFORM_CORE_FOUNDATION_HEAP_OBJECT_H

#include <atomic>

#include "platform/core_foundation/value.h"

namespace core_foundation {

class HeapObject : public Value {
  public:
    explicit HeapObject(ValueType object_type) {
        type = object_type;
        flags = kOnHeap;
    }
    virtual ~HeapObject() = default;
    HeapObject(const HeapObject &) = delete;
    HeapObject &operator=(const HeapObject &) = delete;

    // Gives up one reference that the object holds, before it is destroyed: a structure of any depth is then
    // released by a loop and not by nested destructors. False when it holds no more.
    virtual bool TakeReference(const Value *&) { return false; }

  private:
    friend void RetainValue(const Value *value);
    friend void ReleaseValue(const Value *value);
    static HeapObject *DropReference(const Value *value);

    std::atomic<intptr_t> references_{1};
    HeapObject *holder_ = nullptr;  // of an object that is being released: what held it and is being so too
};

// A scalar that carries nothing but the record itself.
inline const Value *NewScalar(const Value &scalar) {
    auto *object = new HeapObject(scalar.type);
    static_cast<Value &>(*object) = scalar;
    object->flags |= kOnHeap;
    return object;
}

// Both take null. A value of an arena stands for its document.
void RetainValue(const Value *value);
void ReleaseValue(const Value *value);

// The reference of the C interface for a value. Handing out a const pointer as a mutable reference is how
// that interface is made: mutable and immutable values of a class share one opaque type.
template <typename Reference>
Reference ToReference(const Value *value) {
    return reinterpret_cast<Reference>(const_cast<Value *>(value));
}

}  // namespace core_foundation

#endif
