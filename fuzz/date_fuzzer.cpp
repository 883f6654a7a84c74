// Reads a text as a date along a format: the input is the format behind its length, and then the text. Dates
// of the usual form are compared with a calendar.
#include <chrono>
#include <string>
#include <vector>

#include "content/date_parser.h"
#include "fixtures/scoped_zone.h"
#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"

namespace {

constexpr std::string_view kUsualFormat = "%Y-%m-%d";

// Seconds since 1970 of "YYYY-MM-DD", all digits, from 1970 on; empty for any other text and for days that no
// month has.
std::optional<int64_t> SecondsOf(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    const auto number = [text](size_t start, size_t count) {
        int value = 0;
        for (const char digit : text.substr(start, count))
            value = digit >= '0' && digit <= '9' && value >= 0 ? value * 10 + digit - '0' : -1;
        return value;
    };
    const int year = number(0, 4), month = number(5, 2), day = number(8, 2);
    if (year < 1970 || month < 1 || day < 1) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return std::nullopt;
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::sys_days(date).time_since_epoch())
        .count();
}

std::string Input(std::string_view format, std::string_view text) {
    return std::string(1, static_cast<char>(format.size())).append(format).append(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const ScopedZone zone("UTC");
    Choices choices(AsText(bytes, size));
    const std::string format = choices.Text();
    const std::string text(choices.Rest());
    std::tm record = {};
    if (const auto rest = ParseTimeFields(text, format, record))
        Require(text.ends_with(*rest), "what is left is the end of the text");
    Require(ParseTimeStamp(text, format) >= -1, "a date is at or behind the beginning of time");
    if (const auto seconds = SecondsOf(text))
        Require(ParseTimeStamp(text, kUsualFormat) == *seconds, "a date is that of the calendar");
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    return {Input(kUsualFormat, "2009-03-21"), Input("%Y-%m-%dT%H:%M:%S%z", "2009-03-21T10:11:12+01:00"),
            Input("%A, %d %B %y %I:%M %p", "Saturday, 21 March 09 10:11 pm"),
            Input("%D %R %T %r %x %C %j %u %w", "03/21/09 10:11 10:11:12 10:11:12 am 2009:03:21 20 80 6 6"),
            Input("%a %b %e %k %l%n%t%%%z %Eh %OH", "Sat Mar 21 10 11\n\t%% Mar 12")};
}
