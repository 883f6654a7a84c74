#include "host/modified_time.h"

#include <ctime>

namespace velmarhost {
namespace {

constexpr int64_t kFirstOf1904 = int64_t{1} << 31;
constexpr int64_t kSecondsFrom1904To1970 = 2082844800;
// Far beyond any real file, and near enough that no clock overflows.
constexpr int64_t kLatestTime = 8'000'000'000;

}  // namespace

int64_t TimeOfNumber(int64_t number) {
    if (number < kFirstOf1904 || number >= kLatestTime) return number;
    const auto wall = static_cast<std::time_t>(number - kSecondsFrom1904To1970);
    std::tm fields = *std::gmtime(&wall);
    fields.tm_isdst = -1;
    return std::mktime(&fields);
}

std::optional<int64_t> ModifiedTime(const Node &node) {
    const std::optional<int64_t> number = node.NumberAttribute("st_mtime");
    if (!number || *number <= 0) return std::nullopt;
    const int64_t seconds = TimeOfNumber(*number);
    return seconds > 0 && seconds < kLatestTime ? std::make_optional(seconds) : std::nullopt;
}

}  // namespace velmarhost
