#include <algorithm>
#include <cmath>

#include "platform/core_foundation/calendar.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/heap_object.h"

namespace core_foundation {

namespace {

// Some 2.1 thousand million years either way: the year still fits 32 bits.
constexpr double kFarthest = 6.7e16;

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime time) {
    return ToReference<CFDateRef>(NewScalar(MakeDate(time)));
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) {
    return date == nullptr ? 0 : ToValue(date)->real;
}

CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime time, CFTimeZoneRef) {
    const double bounded = std::isnan(time) ? 0 : std::clamp(time, -kFarthest, kFarthest);
    const double whole = std::floor(bounded);
    const auto seconds = static_cast<int64_t>(whole);
    const int64_t days = FloorDivide(seconds, kSecondsPerDay);
    const auto of_day = static_cast<int32_t>(seconds - days * kSecondsPerDay);
    const CivilDate date = CivilFromDays(days);
    return {static_cast<SInt32>(date.year),       static_cast<SInt8>(date.month),
            static_cast<SInt8>(date.day),         static_cast<SInt8>(of_day / 3600),
            static_cast<SInt8>(of_day / 60 % 60), of_day % 60 + (bounded - whole)};
}
