#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/windows/windows_api.h"

// A load asks for two times of each track, hundreds of thousands in a row, and mktime looks at the system's
// zone file again at each call. Here mktime is asked for midnights only. Where it shifts four midnights in a
// row alike, the zone's rules do not change on the day between the second and the third, nor so near that an
// hour of that day could be skipped, come twice, or be read with another day's rules; so every second of it
// is shifted alike as well.
//
// One thing more can part two times of a day. A time that is given as standard time, as all of ours are, and
// falls into the summer is read by the clock of the nearest standard time, for which mktime looks in strides
// of about a week. Such a day counts only if there is one clock alone to be found. Every other day, and every
// time outside the range below, goes to mktime itself.

namespace {

constexpr int64_t kDaySeconds = 86400;
// A week into 1970, so that no midnight that is asked for is negative, and 2100.
constexpr int64_t kFirstCached = 7 * kDaySeconds;
constexpr int64_t kEndOfCached = 4102444800;
// From 1900, so that no cached time has a month beyond.
constexpr int64_t kMaxMonths = 3600;

int64_t ExactTime(std::tm &fields) {
    std::tm normalised = fields;
    const int64_t time = std::mktime(&normalised);
    if (time < 0) return -1;
    fields = normalised;
    return time;
}

// The seconds from 1970 to the fields read as UTC, if they lie in the cached range. The seconds field must be
// in its own range: mktime counts what goes beyond as real seconds, not as those of the clock on the wall.
std::optional<int64_t> WallSeconds(const std::tm &fields) {
    const int64_t months = int64_t{fields.tm_year} * 12 + fields.tm_mon;
    if (fields.tm_sec < 0 || fields.tm_sec > 59 || months < 0 || months > kMaxMonths) return std::nullopt;
    const std::chrono::year_month_day first_of_month =
        std::chrono::year(static_cast<int>(1900 + months / 12)) / static_cast<int>(1 + months % 12) / 1;
    const int64_t days =
        std::chrono::sys_days(first_of_month).time_since_epoch().count() + int64_t{fields.tm_mday} - 1;
    const int64_t minutes = int64_t{fields.tm_hour} * 60 + fields.tm_min;
    const int64_t seconds = days * kDaySeconds + minutes * 60 + fields.tm_sec;
    return seconds >= kFirstCached && seconds < kEndOfCached ? std::optional(seconds) : std::nullopt;
}

void SetFields(std::tm &fields, int64_t wall_seconds) {
    const std::chrono::sys_days day{std::chrono::days(wall_seconds / kDaySeconds)};
    const std::chrono::year_month_day date = day;
    const auto rest = static_cast<int>(wall_seconds % kDaySeconds);
    fields.tm_year = static_cast<int>(date.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    fields.tm_hour = rest / 3600;
    fields.tm_min = rest / 60 % 60;
    fields.tm_sec = rest % 60;
    fields.tm_wday = static_cast<int>(std::chrono::weekday(day).c_encoding());
    fields.tm_yday = static_cast<int>((day - std::chrono::sys_days(date.year() / 1 / 1)).count());
}

// What mktime makes of one wall time: how far the moment and the normalised wall time are from it, and the
// zone then.
struct Shift {
    int64_t to_moment = 0;
    int64_t to_wall = 0;
    int is_dst = 0;
    long utc_offset = 0;
    const char *zone = nullptr;
    bool operator==(const Shift &) const = default;
};

// Empty if mktime refuses the time.
std::optional<Shift> AskMktime(int64_t wall_seconds) {
    std::tm fields = {};
    SetFields(fields, wall_seconds);
    const int64_t moment = std::mktime(&fields);
    const std::optional<int64_t> wall = WallSeconds(fields);
    if (moment < 0 || !wall) return std::nullopt;
    return Shift{moment - wall_seconds, *wall - wall_seconds, fields.tm_isdst, fields.tm_gmtoff,
                 fields.tm_zone};
}

class ShiftCache {
  public:
    // The shift of every time of a day; empty if mktime has to say for each.
    std::optional<Shift> OfDay(int64_t day) {
        const std::lock_guard lock(mutex_);
        Day &known = days_[static_cast<size_t>(day) % kKnownDays];
        if (known.day != day) known = {static_cast<int32_t>(day), NumberOf(Agreed(day))};
        return known.shift == kNoShift ? std::nullopt : std::optional(shifts_[known.shift]);
    }

    void Forget() {
        const std::lock_guard lock(mutex_);
        tzset();
        midnights_.clear();
        one_clock_.clear();
        shifts_.clear();
        days_.assign(kKnownDays, {});
    }

  private:
    static constexpr uint32_t kNoShift = ~uint32_t{0};

    // What the midnights around a day agree on, by its number in `shifts_`. The days of a library, of some
    // twenty years, find room beside each other.
    struct Day {
        int32_t day = -1;
        uint32_t shift = kNoShift;
    };
    static constexpr size_t kKnownDays = 8192;

    uint32_t NumberOf(const std::optional<Shift> &shift) {
        if (!shift) return kNoShift;
        const auto known = std::find(shifts_.begin(), shifts_.end(), *shift);
        const auto number = static_cast<uint32_t>(known - shifts_.begin());
        if (known == shifts_.end()) shifts_.push_back(*shift);
        return number;
    }

    // In days. A summer or winter, with a stride to spare, is shorter than twice kNear; kReach is more than
    // what lies between one end of a block and the far end of what is near.
    static constexpr int64_t kBlockDays = 32;
    static constexpr int64_t kNear = 160;
    static constexpr int64_t kReach = 224;
    static constexpr int kStride = 8;

    // The shift of four midnights in a row, if it is the same.
    std::optional<Shift> Agreed(int64_t day) {
        const std::optional<Shift> &shift = OfMidnight(day);
        for (const int64_t neighbour : {day - 1, day + 1, day + 2}) {
            if (OfMidnight(neighbour) != shift) return std::nullopt;
        }
        const bool is_borrowed = shift && shift->is_dst != 0;
        return is_borrowed && !HasOneClock(day / kBlockDays) ? std::nullopt : shift;
    }

    // Whether there is but one clock that mktime can borrow on the days of a block: all midnights of standard
    // time within kReach of it have one shift, and enough of them in a row are so near that no stride passes
    // over them to a clock beyond the reach.
    bool HasOneClock(int64_t block) {
        const auto [place, added] = one_clock_.try_emplace(block);
        if (added) place->second = FindsOneClock(block * kBlockDays);
        return place->second;
    }

    bool FindsOneClock(int64_t first_day) {
        const int64_t last_day = first_day + kBlockDays - 1;
        std::optional<int64_t> clock;
        int in_a_row = 0;
        bool is_near = false;
        for (int64_t day = first_day - kReach; day <= last_day + kReach; ++day) {
            const std::optional<Shift> &shift = OfMidnight(day);
            const bool is_standard = shift && shift->is_dst == 0;
            if (is_standard && clock.value_or(shift->to_moment) != shift->to_moment) return false;
            if (is_standard) clock = shift->to_moment;
            in_a_row = is_standard && day >= first_day - kNear && day <= last_day + kNear ? in_a_row + 1 : 0;
            is_near = is_near || in_a_row > kStride;
        }
        return is_near;
    }

    const std::optional<Shift> &OfMidnight(int64_t day) {
        const auto [place, added] = midnights_.try_emplace(day);
        if (added) place->second = AskMktime(day * kDaySeconds);
        return place->second;
    }

    std::mutex mutex_;                                             // guards the rest
    std::unordered_map<int64_t, std::optional<Shift>> midnights_;  // references stay valid while it grows
    std::unordered_map<int64_t, bool> one_clock_;                  // by block
    std::vector<Shift> shifts_;                                    // a zone has a few
    std::vector<Day> days_ = std::vector<Day>(kKnownDays);         // by the remainder of their numbers
};

ShiftCache &TheShiftCache() {
    static ShiftCache cache;
    return cache;
}

}  // namespace

void _tzset() {
    TheShiftCache().Forget();
}

int64_t _mktime64(std::tm *time) {
    const std::optional<int64_t> wall = WallSeconds(*time);
    if (!wall || time->tm_isdst != 0) return ExactTime(*time);
    const std::optional<Shift> shift = TheShiftCache().OfDay(*wall / kDaySeconds);
    if (!shift) return ExactTime(*time);
    SetFields(*time, *wall + shift->to_wall);
    time->tm_isdst = shift->is_dst;
    time->tm_gmtoff = shift->utc_offset;
    time->tm_zone = shift->zone;
    return *wall + shift->to_moment;
}
