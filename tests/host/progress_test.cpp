#include "host/progress.h"

#include <gtest/gtest.h>

namespace velmarhost {
namespace {

TEST(Progress, LineTellsFilesAndBytes) {
    EXPECT_EQ(ProgressText({3, 12, 5000, 10000}, "Song.mp3", 100),
              "[##########          ] 50%  3/12 files  5.0 kB of 10.0 kB  Song.mp3");
    EXPECT_EQ(ProgressText({1, 2, 7, 0}, "x", 100), "[##########          ] 50%  1/2 files  7 B  x");
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
