#include "content/date_parser.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/scoped_zone.h"

namespace {

constexpr const char *kBookFormat = "%Y-%m-%dT%H:%M:%S%z";
constexpr int64_t kDay = 86400;
constexpr int64_t kApril5 = 15435 * kDay;

TEST(ParseTimeStamp, FieldsBeforeTheFirstMismatchCountAndZonesDoNot) {
    const ScopedZone zone("UTC");
    const std::pair<const char *, int64_t> rows[] = {
        {"2012-04-05T10:20:30Z", kApril5 + 37230},
        {"2012-04-05T10:20:30+08:00", kApril5 + 37230},
        {" 2012-04-05", kApril5},
        {"2012-04-35", kApril5 + 30 * kDay},
        {"2012-04", kApril5 - 5 * kDay},
        {"2012-", 15339 * kDay},
        {"April 2012", -1},
        {"", -1},
        {"-", -1},
        {"1969-12-31", -1},
        {"99999999999999999999-99999999999999999999-99999999999999999999", -1},
        {"-99999999999999999999--99999999999999999999", -1}};
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
    const struct {
        const char *text;
        const char *format;
        const char *fields;
    } rows[] = {{"69 5", "%y %e", "169 0 5 0 0 0 0 0 ''"},
                {"70", "%y", "70 0 0 0 0 0 0 0 ''"},
                {"20 366 7", "%C %j %u", "100 0 0 0 0 0 6 365 ''"},
                {"12:05:06 pm", "%r", "0 0 0 12 5 6 0 0 ''"},
                {"12 am", "%I %p", "0 0 0 0 0 0 0 0 ''"},
                {"5 am", "%l %p", "0 0 0 17 0 0 0 0 ''"},
                {"Tuesday", "%a", "0 0 0 0 0 0 2 0 'sday'"},
                {"Mayor", "%B", "0 4 0 0 0 0 0 0 'or'"},
                {"may", "%h", "0 0 0 0 0 0 0 0 null"},
                {"12/31/99x", "%D", "99 11 31 0 0 0 0 0 'x'"},
                {"%\n\t   7", "%%%n%t %Od", "0 0 7 0 0 0 0 0 ''"},
                {"%1 xz2", "%z%w %z%M", "0 0 0 0 2 0 1 0 ''"},
                {"99999999999 99999999999 pm", "%C %H %p", "2147483647 0 0 2147483647 0 0 0 0 ''"}};
    for (const auto &row : rows)
        EXPECT_EQ(Parse(row.text, row.format), row.fields) << row.format;
    for (const char *format : {"%d", "%p", "%z", "%E", "%n", "%A", "%"})
        EXPECT_EQ(Parse("", format), "0 0 0 0 0 0 0 0 null") << format;
}

}  // namespace
