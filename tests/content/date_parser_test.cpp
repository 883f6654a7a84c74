#include "content/date_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "fixtures/scoped_zone.h"

namespace {

constexpr const char *kBookFormat = "%Y-%m-%dT%H:%M:%S%z";
constexpr int64_t kDay = 86400;
constexpr int64_t kApril5 = 15435 * kDay;

TEST(ParseTimeStamp, FieldsBeforeTheFirstMismatchCountAndZonesDoNot) {
    const ScopedZone zone("UTC");
    const std::pair<const char *, int64_t> rows[] = {{" 2012-04-05", kApril5},
                                                     {"2012-04-05T10:20:30+08:00", kApril5 + 37230},
                                                     {"99999999999999999999-99999999999999999999", -1},
                                                     {"-99999999999999999999--99999999999999999999", -1},
                                                     {"+2012-04-35", kApril5 + 30 * kDay},
                                                     {"2012-04", kApril5 - 5 * kDay},
                                                     {"2012-", 15339 * kDay},
                                                     {"April 2012", -1},
                                                     {"-", -1},
                                                     {"1969-12-31", -1}};
    for (const auto &[text, seconds] : rows)
        EXPECT_EQ(ParseTimeStamp(text, kBookFormat), seconds) << text;
    const ScopedZone west("XST5");
    EXPECT_EQ(ParseTimeStamp("2012-04-05T10:20:30Z", kBookFormat), kApril5 + 37230 + 5 * 3600);
}

// Year, month, day, hour, minute, second, day of the week, day of the year, and the rest of the text; "null"
// for a mismatch.
std::string Parse(const std::string &text, const std::string &format) {
    std::tm record = {};
    const auto rest = ParseTimeFields(text, format, record);
    std::string fields;
    for (const int field : {record.tm_year, record.tm_mon, record.tm_mday, record.tm_hour, record.tm_min,
                            record.tm_sec, record.tm_wday, record.tm_yday})
        fields += std::to_string(field) + " ";
    return fields + (rest ? "'" + std::string(*rest) + "'" : "null");
}

TEST(ParseTimeFields, ReadsEveryConversion) {
    const std::tuple<const char *, const char *, const char *> rows[] = {
        {"69 5 366 2 12:05:06 pm", "%y %e %j %w %r", "169 0 5 12 5 6 2 365 ''"},
        {"20 7 12 am", "%C %u %I %p", "100 0 0 0 0 0 6 0 ''"},
        {"Tuesday 70 5 am", "%asday %y %l %p", "70 0 0 17 0 0 2 0 ''"},
        {"Mayor", "%B", "0 4 0 0 0 0 0 0 'or'"},
        {"may", "%h", "0 0 0 0 0 0 0 0 null"},
        {"12/31/99x", "%D", "99 11 31 0 0 0 0 0 'x'"},
        {"%\n\t   7%1 xz2", "%%%n%t %Od%z%w %z%M", "0 0 7 0 2 0 1 0 ''"},
        {"99999999999 99999999999 pm", "%C %H %p", "2147483647 0 0 2147483647 0 0 0 0 ''"}};
    for (const auto &[text, format, fields] : rows)
        EXPECT_EQ(Parse(text, format), fields);
    for (const char *format : {"%d", "%p", "%z", "%E", "%n", "%A", "%"})
        EXPECT_EQ(Parse("", format), "0 0 0 0 0 0 0 0 null") << format;
}

}  // namespace
