// What a user is told of files on their way, and of those that did not come.
#include "host/progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "host/get_report.h"
#include "host/text.h"
#include "host/transfer_rate.h"

namespace velmarhost {
namespace {

using testing::ElementsAre;

TEST(Progress, LineTellsWhatIsDoneAndTheTimeThatIsLeft) {
    const auto one = [](double rate, uint64_t done, uint64_t total) {
        return TransferState{0, 1, done, total, rate};
    };
    const std::string none = "[                    ] 0%  0/";
    using Case = std::tuple<TransferState, std::string, std::size_t, std::string>;
    for (const auto &[state, file, columns, line] : std::vector<Case>{
             {{3, 12, 5000, 10000}, "a", 100, "[##########          ] 50%  3/12 files  5.0 kB of 10.0 kB  a"},
             {{1, 2, 7, 0}, "x", 100, "[##########          ] 50%  1/2 files  7 B  x"},
             {one(1e6, 0, 60'000'000), "x", 100, none + "1 files  0 B of 60.0 MB  1.0 MB/s, 1:00 left  x"},
             {one(1e3, 0, 1'000'000'000), "", 100,
              none + "1 files  0 B of 1.0 GB  1.0 kB/s, over 99 hours left  "},
             {one(1e6, 5, 0), "x", 100, none + "1 files  5 B  1.0 MB/s  x"},
             {{1, 1, 500, 100}, "longer than told", 30, "[####################] 100%  1"},
             {{}, "x", 5, "[    "},
             {{}, "ジョーガ", 47, none + "0 files  0 B  ジョ"},
             {{}, "a\x1b[31m", 100, none + "0 files  0 B  a\\x1b[31m"}})
        EXPECT_EQ(ProgressText(state, file, columns), line);
    EXPECT_EQ(FormatDuration(3 * 3600 + 59.6), "3:01:00");
    EXPECT_EQ(FormatDuration(99 * 3600.0), "99:00:00");
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

TEST(GetReport, CommonFolderEndsBetweenComponents) {
    const std::vector<std::array<const char *, 3>> cases = {
        {"C:/a/bc", "C:/a/bd", "C:/a"}, {"C:/a", "C:/a/b", "C:/a"},        {"C:/a/b", "C:/a", "C:/a"},
        {"C:/ab", "C:/a", "C:"},        {"C:\\x\\y", "C:\\x\\z", "C:\\x"}, {"", "C:/a", ""}};
    for (const auto &[a, b, common] : cases)
        EXPECT_EQ(CommonFolder(a, b), common);
}

TEST(GetReport, MissingFilesAreGroupedByDriveAndCutToExamples) {
    GetReport report;
    report.AddGot(5);
    EXPECT_EQ(report.Result(), ExitCode::kOk);
    for (int i = 0; i < 5; ++i)
        report.AddNotFound("p" + std::to_string(i), "C:/M/" + std::to_string(i) + "/a.mp3");
    report.AddNotFound("q", "Volumes/Disk/b.mp3");
    EXPECT_EQ(report.Result(), ExitCode::kIncomplete);
    EXPECT_THAT(report.Lines(false),
                ElementsAre("got 1 file (5 B), 0 already there", "  5 files not found under \"C:/M\"",
                            "    p0", "    p1", "    p2", "    ... and 2 more (-v)",
                            "  1 file not found under \"Volumes/Disk\"", "    q",
                            testing::StartsWith("If these files are in another place now")));
    EXPECT_THAT(report.Lines(true), testing::Contains("    p4"));
}

}  // namespace
}  // namespace velmarhost
