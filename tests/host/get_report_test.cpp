#include "host/get_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmarhost {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(GetReport, CommonFolderEndsBetweenComponents) {
    EXPECT_EQ(CommonFolder("C:/a/bc", "C:/a/bd"), "C:/a");
    EXPECT_EQ(CommonFolder("C:/a", "C:/a/b"), "C:/a");
    EXPECT_EQ(CommonFolder("C:/ab", "C:/a"), "C:");
    EXPECT_EQ(CommonFolder("C:\\x\\y", "C:\\x\\z"), "C:\\x");
    EXPECT_EQ(CommonFolder("", "C:/a"), "");
}

TEST(GetReport, MissingFilesAreGroupedByDriveAndCutToExamples) {
    GetReport report;
    for (int i = 0; i < 5; ++i)
        report.AddNotFound("p" + std::to_string(i), "C:/M/" + std::to_string(i) + "/a.mp3");
    report.AddNotFound("q", "Volumes/Disk/b.mp3");
    EXPECT_EQ(report.Result(), ExitCode::kIncomplete);
    const std::vector<std::string> lines = report.Lines(false);
    EXPECT_THAT(lines, Contains("  5 files not found under \"C:/M\""));
    EXPECT_THAT(lines, Contains("    ... and 2 more (-v)"));
    EXPECT_THAT(lines, Contains("  1 file not found under \"Volumes/Disk\""));
    EXPECT_THAT(report.Lines(true), Contains("    p4"));
}

TEST(GetReport, AllGotIsTheOnlySuccess) {
    GetReport report;
    report.AddGot(5);
    report.AddAlreadyThere();
    EXPECT_EQ(report.Result(), ExitCode::kOk);
    EXPECT_THAT(report.Lines(false), ElementsAre("got 1 file (5 B), 1 already there"));
    report.AddProblem("reason", "p");
    EXPECT_EQ(report.Result(), ExitCode::kIncomplete);
}

}  // namespace
}  // namespace velmarhost
