#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/windows/windows_api.h"
#include "tests/support/scoped_zone.h"

namespace {

// Rules in the zone text itself, north and south, with a change at midnight and one of half an hour.
const char *const kRules[] = {
    "UTC0",
    "CET-1CEST,M3.5.0,M10.5.0/3",
    "EST5EDT,M3.2.0,M11.1.0",
    "<-03>3<-02>,M10.3.0/0,M2.3.0/0",
    "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0",
    "<+0545>-5:45",
};

// Zones with a history: standard time that moved, skipped days, double changes, summer time all year, odd
// minutes.
const char *const kNamedZones[] = {
    "Europe/London", "Europe/Moscow",     "Europe/Istanbul",     "America/Sao_Paulo",
    "Asia/Gaza",     "Africa/Casablanca", "Africa/Monrovia",     "America/Cambridge_Bay",
    "Pacific/Apia",  "Pacific/Kwajalein", "Australia/Lord_Howe", "America/Argentina/San_Luis",
    "Asia/Kolkata",  "Antarctica/Troll",  "Asia/Pyongyang",      "Europe/Dublin",
};

auto FieldsOf(const std::tm &time) {
    return std::tuple(time.tm_year, time.tm_mon, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                      time.tm_wday, time.tm_yday, time.tm_isdst, time.tm_gmtoff,
                      std::string(time.tm_zone ? time.tm_zone : ""));
}

// Compares result and record with what mktime gives, which is the definition of both.
testing::AssertionResult AgreesWithMktime(const std::tm &time) {
    std::tm ours = time;
    std::tm reference = time;
    const int64_t result = _mktime64(&ours);
    const int64_t expected = std::mktime(&reference);
    if (expected < 0) reference = time;
    if (result == (expected < 0 ? -1 : expected) && FieldsOf(ours) == FieldsOf(reference)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << result << " for " << expected << " at year " << time.tm_year << " month " << time.tm_mon
           << " day " << time.tm_mday << " time " << time.tm_hour << ":" << time.tm_min << ":" << time.tm_sec
           << " flag " << time.tm_isdst;
}

std::tm WallTime(int year, int month, int day, int hour, int minute, int second, int is_dst) {
    std::tm time = {};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    time.tm_isdst = is_dst;
    return time;
}

// The days on which the zone changes its offset between 1970 and 2040, counted from 1970.
std::vector<int> DaysOfChange() {
    std::vector<int> days;
    long last = std::numeric_limits<long>::max();
    for (int day = 10; day < 70 * 365; ++day) {
        const time_t moment = time_t{day} * 86400;
        std::tm local = {};
        localtime_r(&moment, &local);
        if (local.tm_gmtoff != last) days.push_back(day);
        last = local.tm_gmtoff;
    }
    return days;
}

void CheckDaysOfChange(int flag) {
    for (const int day : DaysOfChange()) {
        for (int minutes = -2 * 1440; minutes < 3 * 1440; minutes += 30) {
            ASSERT_TRUE(AgreesWithMktime(WallTime(1970, 1, 1 + day, 0, minutes, minutes & 31, flag)));
        }
    }
}

void CheckWholeRange() {
    std::mt19937 random(4711);
    const auto up_to = [&random](int bound) {
        return static_cast<int>(random() % static_cast<unsigned>(bound));
    };
    for (int day = 0; day < 140 * 365; day += 1 + up_to(8)) {
        // The flag 1 is rare, since mktime searches decades for summer time where a zone has none.
        const int flag = up_to(50) == 0 ? 1 : -up_to(2);
        ASSERT_TRUE(AgreesWithMktime(WallTime(1969, 12, 1 + day, up_to(24), up_to(60), up_to(60), flag)));
    }
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(
            AgreesWithMktime(WallTime(1970 + up_to(90), up_to(400) - 200, up_to(4000) - 2000,
                                      up_to(9000) - 4500, up_to(90000) - 45000, up_to(900000) - 450000, 0)));
    }
}

TEST(LocalTime, AgreesWithMktimeUnderRules) {
    for (const char *zone : kRules) {
        const ScopedZone environment(zone);
        SCOPED_TRACE(zone);
        CheckDaysOfChange(0);
        CheckDaysOfChange(1);
        CheckWholeRange();
    }
}

TEST(LocalTime, AgreesWithMktimeInZonesWithAHistory) {
    {
        const ScopedZone environment("Asia/Kolkata");
        std::tm time = WallTime(2000, 1, 1, 0, 0, 0, 0);
        if (std::mktime(&time) == 946684800) GTEST_SKIP() << "the machine has no list of zones";
    }
    for (const char *zone : kNamedZones) {
        const ScopedZone environment(zone);
        SCOPED_TRACE(zone);
        CheckDaysOfChange(0);
        CheckWholeRange();
    }
}

// A winter of one week, at half a year's distance, is met or passed over within one and the same day.
TEST(LocalTime, AgreesWithMktimeWhereAClockIsBorrowedForAnHour) {
    for (const char *zone : {"America/Cambridge_Bay", "Asia/Gaza", "Africa/Cairo", "Europe/Moscow"}) {
        const ScopedZone environment(zone);
        SCOPED_TRACE(zone);
        for (int minutes = 0; minutes < 24 * 60 * 366; minutes += 20) {
            ASSERT_TRUE(AgreesWithMktime(WallTime(2000, 1, 1, 0, minutes, 19, 0)));
        }
    }
}

TEST(LocalTime, GivesMinusOneBefore1970AndForZeroedRecords) {
    const ScopedZone environment("UTC0");
    std::tm zeroed = {};
    EXPECT_EQ(_mktime64(&zeroed), -1);
    std::tm last = WallTime(1969, 12, 31, 23, 59, 59, 0);
    EXPECT_EQ(_mktime64(&last), -1);
    std::tm first = WallTime(1970, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(_mktime64(&first), 0);
    std::tm old = WallTime(1904, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(_mktime64(&old), -1);
    constexpr int kMost = std::numeric_limits<int>::max();
    std::tm huge = {};
    huge.tm_year = huge.tm_mon = huge.tm_mday = huge.tm_hour = huge.tm_min = huge.tm_sec = kMost;
    EXPECT_TRUE(AgreesWithMktime(huge));
    std::tm far = WallTime(1970, 1, kMost, kMost, kMost, 59, 0);
    EXPECT_TRUE(AgreesWithMktime(far));
}

TEST(LocalTime, AChangeOfTheZoneCountsFromTheNextSettingOn) {
    const std::tm noon = WallTime(2015, 6, 1, 12, 0, 0, 0);
    for (int round = 0; round < 3; ++round) {
        for (const char *zone : kRules) {
            const ScopedZone environment(zone);
            EXPECT_TRUE(AgreesWithMktime(noon)) << zone;
        }
    }
}

TEST(LocalTime, MayBeAskedOnManyThreads) {
    const ScopedZone environment("CET-1CEST,M3.5.0,M10.5.0/3");
    constexpr int kThreads = 4;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    std::atomic<int> failures = 0;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&failures, thread] {
            for (int day = 0; day < 2000; ++day) {
                std::tm winter = WallTime(2000 + thread, 1, 1 + day, 12, 0, 0, 0);
                const int64_t base = 946724400 + int64_t{86400} * (day + (thread * 1461 + 3) / 4);
                if (_mktime64(&winter) != base) ++failures;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
}

}  // namespace
