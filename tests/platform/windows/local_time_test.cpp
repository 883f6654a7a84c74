#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <tuple>

#include "fixtures/scoped_zone.h"
#include "platform/windows/windows_api.h"

namespace {

// Rules in the zone text itself, north and south, with a change at midnight and one of half an hour.
const char *const kRules[] = {"UTC0",
                              "CET-1CEST,M3.5.0,M10.5.0/3",
                              "EST5EDT,M3.2.0,M11.1.0",
                              "<-03>3<-02>,M10.3.0/0,M2.3.0/0",
                              "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0",
                              "<+0545>-5:45"};

// Zones with a history: standard time that moved, skipped days, double changes, summer time all year, odd
// minutes, and a winter of one week, which is met or passed over within one and the same day.
const char *const kNamedZones[] = {
    "Europe/London", "Europe/Moscow",     "Europe/Istanbul",     "America/Sao_Paulo",
    "Asia/Gaza",     "Africa/Casablanca", "Africa/Monrovia",     "America/Cambridge_Bay",
    "Pacific/Apia",  "Pacific/Kwajalein", "Australia/Lord_Howe", "America/Argentina/San_Luis",
    "Asia/Kolkata",  "Antarctica/Troll",  "Asia/Pyongyang",      "Europe/Dublin",
    "Africa/Cairo",
};

auto FieldsOf(const std::tm &time) {
    return std::tuple(time.tm_year, time.tm_mon, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                      time.tm_wday, time.tm_yday, time.tm_isdst, time.tm_gmtoff,
                      std::string(time.tm_zone ? time.tm_zone : ""));
}

// Compares result and record with what mktime gives, which is the definition of both.
void ExpectMktimes(const std::tm &time) {
    if (testing::Test::HasFailure()) return;  // one report is enough
    std::tm ours = time, reference = time;
    const int64_t result = _mktime64(&ours);
    const int64_t expected = std::mktime(&reference);
    if (expected < 0) reference = time;
    ASSERT_EQ(result, expected < 0 ? -1 : expected) << testing::PrintToString(FieldsOf(time));
    ASSERT_EQ(FieldsOf(ours), FieldsOf(reference));
}

std::tm WallTime(int year, int month, int day, int hour, int minute, int second, int is_dst) {
    return {second, minute, hour, day, month - 1, year - 1900, 0, 0, is_dst, 0, nullptr};
}

// Around each day on which the zone changes its offset between 1970 and 2040.
void CheckDaysOfChange(int flag) {
    long last = std::numeric_limits<long>::max();
    for (int day = 10; day < 70 * 365; ++day) {
        const time_t moment = time_t{day} * 86400;
        std::tm local = {};
        localtime_r(&moment, &local);
        if (std::exchange(last, local.tm_gmtoff) == local.tm_gmtoff) continue;
        for (int minutes = -2 * 1440; minutes < 3 * 1440; minutes += 30)
            ExpectMktimes(WallTime(1970, 1, 1 + day, 0, minutes, minutes & 31, flag));
    }
}

void CheckWholeRange() {
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const std::tm &time :
         {std::tm{}, WallTime(1904, 1, 1, 0, 0, 0, 0), WallTime(1969, 12, 31, 23, 59, 59, 0),
          WallTime(1970, 1, 1, 0, 0, 0, 0), WallTime(1970, 1, kMost, kMost, kMost, 59, 0),
          WallTime(kMost, kMost, kMost, kMost, kMost, kMost, 0)})
        ExpectMktimes(time);
    std::mt19937 random(4711);
    const auto up_to = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
    for (int day = 0; day < 140 * 365; day += 1 + up_to(8)) {
        // The flag 1 is rare, since mktime searches decades for summer time where a zone has none.
        const int flag = up_to(50) == 0 ? 1 : -up_to(2);
        ExpectMktimes(WallTime(1969, 12, 1 + day, up_to(24), up_to(60), up_to(60), flag));
    }
    for (int i = 0; i < 500; ++i)
        ExpectMktimes(WallTime(1970 + up_to(90), up_to(400) - 200, up_to(4000) - 2000, up_to(9000) - 4500,
                               up_to(90000) - 45000, up_to(900000) - 450000, 0));
    for (int minutes = 0; minutes < 24 * 60 * 366; minutes += 20)
        ExpectMktimes(WallTime(2000, 1, 1, 0, minutes, 19, 0));
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
    for (const char *zone : kNamedZones) {
        const ScopedZone environment(zone);
        SCOPED_TRACE(zone);
        std::tm time = WallTime(2000, 1, 1, 0, 0, 0, 0);
        if (zone == std::string("Asia/Kolkata") && std::mktime(&time) == 946684800)
            GTEST_SKIP() << "the machine has no list of zones";
        CheckDaysOfChange(0);
        CheckWholeRange();
    }
}

TEST(LocalTime, MayBeAskedOnManyThreads) {
    const ScopedZone environment("CET-1CEST,M3.5.0,M10.5.0/3");
    std::thread other(CheckDaysOfChange, 0);
    CheckWholeRange();
    other.join();
}

}  // namespace
