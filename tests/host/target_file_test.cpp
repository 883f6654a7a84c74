#include "host/target_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

TEST(TargetFile, NothingStaysWithoutFinish) {
    const TempFolder folder;
    {
        TargetFile file(folder.path());
        file.Write("half");
        EXPECT_FALSE(fs::is_empty(folder.path()));
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(TargetFile, FinishedFileTakesTheNameAndTheTime) {
    const TempFolder folder;
    const fs::path target = folder.Write("a.mp3", "old");
    {
        TargetFile file(folder.path());
        file.Write("new ");
        file.Write("text");
        EXPECT_EQ(ReadWholeFile(target), "old");
        file.Finish(target, 1'000'000'000);
    }
    EXPECT_EQ(ReadWholeFile(target), "new text");
    EXPECT_EQ(LookAtTarget(target, 99, 1'000'000'000), Existing::kSame);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(TargetFile, WhatStandsThereIsTheSameByTimeOrSize) {
    const TempFolder folder;
    const fs::path target = folder.Write("a.mp3", "12345");
    EXPECT_EQ(LookAtTarget(folder.path() / "b.mp3", 5, {}), Existing::kNothing);
    EXPECT_EQ(LookAtTarget(target, {}, {}), Existing::kSame);
    EXPECT_EQ(LookAtTarget(target, 5, 1'000'000'000), Existing::kSame);
    EXPECT_EQ(LookAtTarget(target, 6, 1'000'000'000), Existing::kDifferent);
    EXPECT_EQ(LookAtTarget(folder.path(), {}, {}), Existing::kDifferent) << "a folder";
    fs::create_symlink("nowhere", folder.path() / "link");
    EXPECT_EQ(LookAtTarget(folder.path() / "link", 5, {}), Existing::kDifferent);
}

TEST(TargetFile, FolderThatIsNoneThrows) {
    const TempFolder folder;
    EXPECT_THROW(TargetFile(folder.path() / "none"), std::system_error);
}

}  // namespace
}  // namespace velmarhost
