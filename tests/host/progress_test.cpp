#include "host/progress.h"

#include <gtest/gtest.h>

#include "host/text.h"
#include "host/transfer_rate.h"

namespace velmarhost {
namespace {

TEST(Progress, LineTellsFilesAndBytes) {
    EXPECT_EQ(ProgressText({3, 12, 5000, 10000}, "Song.mp3", 100),
              "[##########          ] 50%  3/12 files  5.0 kB of 10.0 kB  Song.mp3");
    EXPECT_EQ(ProgressText({1, 2, 7, 0}, "x", 100), "[##########          ] 50%  1/2 files  7 B  x");
}

TEST(Progress, PaceTellsTheTimeThatIsLeft) {
    EXPECT_NE(ProgressText({0, 1, 40'000'000, 100'000'000, 1e6}, "x", 100).find("  1.0 MB/s, 1:00 left  x"),
              std::string::npos);
    EXPECT_NE(ProgressText({0, 1, 0, 100'000'000'000, 1e3}, "x", 100).find(", over 99 hours left"),
              std::string::npos);
    EXPECT_EQ(FormatDuration(3 * 3600 + 59.6), "3:01:00");
    EXPECT_EQ(ProgressText({0, 1, 5, 0, 1e6}, "x", 100).find("left"), std::string::npos);
}

TEST(Progress, RateFollowsTheLastSeconds) {
    TransferRate rate;
    const TransferRate::Time start{};
    const auto at = [&](int tenths, uint64_t bytes) {
        return rate.BytesPerSecond(start + std::chrono::milliseconds(100 * tenths), bytes);
    };
    EXPECT_EQ(at(0, 0), 0);
    EXPECT_EQ(at(1, 1'000'000), 0) << "too early to tell";
    EXPECT_DOUBLE_EQ(at(10, 1'000'000), 1e6);
    for (int tenths = 20; tenths <= 200; tenths += 10)
        at(tenths, 1'000'000 + static_cast<uint64_t>(tenths) * 200);
    EXPECT_DOUBLE_EQ(at(210, 1'000'000 + 210 * 200), 2000) << "the fast start lies behind";
}

TEST(Progress, LineStaysInItsColumnsAndBounds) {
    const std::string full = ProgressText({1, 1, 500, 100}, "longer than told", 100);
    EXPECT_EQ(full.substr(0, 28), "[####################] 100% ");
    EXPECT_EQ(ProgressText({0, 0, 0, 0}, "", 100).substr(0, 25), "[                    ] 0%");
    EXPECT_EQ(ProgressText({}, "x", 5), "[    ");
    const std::string wide = ProgressText({}, "ジョーガ", 47);
    EXPECT_TRUE(wide.ends_with("  ジョ")) << wide;
    EXPECT_NE(ProgressText({}, "a\x1b[31m", 100).find("a\\x1b[31m"), std::string::npos);
}

}  // namespace
}  // namespace velmarhost
