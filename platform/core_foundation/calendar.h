// The Gregorian calendar, counted in days from 2001-01-01, and continued before its introduction.
#ifndef PLATFORM_CORE_FOUNDATION_CALENDAR_H
#define PLATFORM_CORE_FOUNDATION_CALENDAR_H

#include <cstdint>

namespace core_foundation {

struct CivilDate {
    int64_t year;
    int32_t month;  // 1 to 12
    int32_t day;    // 1 to 31
};

constexpr int64_t kSecondsPerDay = 86400;

// A year is taken from March to February, which puts the leap day last: then the first day of a month depends
// on the month alone, and 400 years are always as long. Day 0 of this count is 2000-03-01, 306 days before
// 2001-01-01.
constexpr int64_t kDaysFromMarch2000 = 306;
constexpr int64_t kDaysPer400Years = 146097;

constexpr int64_t FloorDivide(int64_t dividend, int64_t divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

constexpr int64_t DaysFromCivil(const CivilDate &date) {
    const int64_t months = date.month < 3 ? date.month + 9 : date.month - 3;  // since March
    const int64_t years = date.year - 2000 - (date.month < 3 ? 1 : 0);
    const int64_t leap_days = FloorDivide(years, 4) - FloorDivide(years, 100) + FloorDivide(years, 400);
    return years * 365 + leap_days + (153 * months + 2) / 5 + date.day - 1 - kDaysFromMarch2000;
}

constexpr CivilDate CivilFromDays(int64_t days) {
    days += kDaysFromMarch2000;
    const int64_t cycle = FloorDivide(days, kDaysPer400Years);
    const int64_t day_of_cycle = days - cycle * kDaysPer400Years;
    // Takes out the leap days before this day: one in 1461 days, but none in 36524, but one at the very end.
    const int64_t year =
        (day_of_cycle - day_of_cycle / 1460 + day_of_cycle / 36524 - day_of_cycle / (kDaysPer400Years - 1)) /
        365;
    const int64_t day_of_year = day_of_cycle - (365 * year + year / 4 - year / 100);
    const int64_t month = (5 * day_of_year + 2) / 153;
    const bool is_next_year = month >= 10;
    return {2000 + 400 * cycle + year + (is_next_year ? 1 : 0),
            static_cast<int32_t>(is_next_year ? month - 9 : month + 3),
            static_cast<int32_t>(day_of_year - (153 * month + 2) / 5 + 1)};
}

static_assert(DaysFromCivil({2001, 1, 1}) == 0);
static_assert(DaysFromCivil({1970, 1, 1}) == -11323);
static_assert(CivilFromDays(-307).month == 2 && CivilFromDays(-307).day == 29);

}  // namespace core_foundation

#endif
