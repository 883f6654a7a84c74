#include "platform/core_foundation/calendar.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "platform/core_foundation/core_foundation.h"

namespace {

using core_foundation::CivilDate;
using core_foundation::CivilFromDays;
using core_foundation::DaysFromCivil;

// The standard library has a calendar of its own.
TEST(Calendar, AgreesWithTheStandardLibraryOnEveryDay) {
    using std::chrono::days, std::chrono::sys_days, std::chrono::year_month_day;
    const sys_days first{std::chrono::year(2001) / 1 / 1};
    for (int64_t day = -1'000'000; day <= 1'000'000; ++day) {
        const year_month_day expected{first + days(day)};
        const CivilDate date = CivilFromDays(day);
        ASSERT_EQ(date.year, static_cast<int>(expected.year())) << day;
        ASSERT_EQ(date.month, static_cast<int32_t>(static_cast<unsigned>(expected.month()))) << day;
        ASSERT_EQ(date.day, static_cast<int32_t>(static_cast<unsigned>(expected.day()))) << day;
        ASSERT_EQ(DaysFromCivil(date), day);
    }
}

TEST(Calendar, SplitsAMoment) {
    const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(-0.25, nullptr);
    EXPECT_EQ(date.year, 2000);
    EXPECT_EQ(date.month, 12);
    EXPECT_EQ(date.day, 31);
    EXPECT_EQ(date.hour, 23);
    EXPECT_EQ(date.minute, 59);
    EXPECT_DOUBLE_EQ(date.second, 59.75);
}

TEST(Calendar, BoundsMomentsThatHaveNoYear) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_GT(CFAbsoluteTimeGetGregorianDate(kInfinity, nullptr).year, 2'000'000'000);
    EXPECT_LT(CFAbsoluteTimeGetGregorianDate(-1e300, nullptr).year, -2'000'000'000);
    EXPECT_EQ(CFAbsoluteTimeGetGregorianDate(std::nan(""), nullptr).year, 2001);
}

}  // namespace
