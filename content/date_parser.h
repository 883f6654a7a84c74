#ifndef CONTENT_DATE_PARSER_H
#define CONTENT_DATE_PARSER_H

#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <string_view>

// Dates as text, read along a format in the manner of strptime. Two things differ: the fields that were read
// before a mismatch count, and a time zone has no effect.

// Seconds since 1970, with the fields taken as local standard time; -1 before that, and for a text without a
// date.
int64_t ParseTimeStamp(std::string_view text, std::string_view format);

// Fills the fields that the format names, with any numbers, and gives the rest of the text; empty when the
// text does not match, which leaves the fields before the mismatch filled.
std::optional<std::string_view> ParseTimeFields(std::string_view text, std::string_view format,
                                                std::tm &record);

// The number of the first row with which the text begins, letter case counting; takes that name off the text.
std::optional<int> MatchNameTable(std::string_view &text, std::span<const std::string_view> table);

#endif
