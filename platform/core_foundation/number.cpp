#include <cmath>
#include <limits>
#include <optional>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/heap_object.h"

namespace core_foundation {

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 2 * kTwoTo63;

Value ConstantBoolean(bool truth) {
    Value value = MakeBoolean(truth);
    value.flags = kConstant;
    return value;
}

const Value kTrue = ConstantBoolean(true);
const Value kFalse = ConstantBoolean(false);

// The number as a signed 64-bit one, if it is one exactly.
std::optional<int64_t> AsInteger(const Value &number) {
    if (Has(number, kWide)) return std::nullopt;
    if (!Has(number, kReal)) return number.integer;
    const bool fits = number.real >= -kTwoTo63 && number.real < kTwoTo63;  // false for what is no number
    if (!fits || std::trunc(number.real) != number.real) return std::nullopt;
    return static_cast<int64_t>(number.real);
}

double AsReal(const Value &number) {
    if (Has(number, kReal)) return number.real;
    if (!Has(number, kWide)) return static_cast<double>(number.integer);
    return static_cast<double>(number.wide->high) * kTwoTo64 + static_cast<double>(number.wide->low);
}

bool Is32Bit(int64_t integer) {
    return integer >= std::numeric_limits<SInt32>::min() && integer <= std::numeric_limits<SInt32>::max();
}

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

const CFBooleanRef kCFBooleanTrue = ToReference<CFBooleanRef>(&kTrue);
const CFBooleanRef kCFBooleanFalse = ToReference<CFBooleanRef>(&kFalse);

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value) {
    if (value == nullptr) return nullptr;
    switch (type) {
        case kCFNumberSInt32Type:
            return ToReference<CFNumberRef>(NewScalar(MakeInteger(*static_cast<const SInt32 *>(value))));
        case kCFNumberSInt64Type:
            return ToReference<CFNumberRef>(NewScalar(MakeInteger(*static_cast<const SInt64 *>(value))));
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
            return ToReference<CFNumberRef>(NewScalar(MakeReal(*static_cast<const double *>(value))));
        default:
            return nullptr;
    }
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value) {
    if (number == nullptr || value == nullptr) return false;
    if (type == kCFNumberFloat64Type || type == kCFNumberDoubleType) {
        *static_cast<double *>(value) = AsReal(*ToValue(number));
        return true;
    }
    const std::optional<int64_t> integer = AsInteger(*ToValue(number));
    if (!integer) return false;
    if (type == kCFNumberSInt64Type) {
        *static_cast<SInt64 *>(value) = *integer;
        return true;
    }
    if (type != kCFNumberSInt32Type || !Is32Bit(*integer)) return false;
    *static_cast<SInt32 *>(value) = static_cast<SInt32>(*integer);
    return true;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return number != nullptr && Has(*ToValue(number), kReal);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return boolean != nullptr && ToValue(boolean)->integer != 0;
}
