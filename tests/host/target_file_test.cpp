#include "host/target_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "fixtures/temp_folder.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

TEST(TargetFile, OnlyAFinishedFileTakesTheNameAndTheTime) {
    const TempFolder folder;
    const fs::path target = folder.Write("a.mp3", "old");
    const auto count = [&] { return std::distance(fs::directory_iterator(folder.path()), {}); };
    for (const bool finish : {false, true}) {
        TargetFile file(folder.path());
        file.Write("new ");
        file.Write("text");
        EXPECT_EQ(count(), 2);
        EXPECT_EQ(ReadWholeFile(target), "old");
        if (finish) file.Finish(target, 1'000'000'000);
    }
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(LookAtTarget(target, 99, 1'000'000'000), Existing::kSame);
    EXPECT_EQ(ReadWholeFile(target), "new text");
    EXPECT_THROW(TargetFile(folder.path() / "none"), std::system_error);
}

TEST(TargetFile, WhatStandsThereIsTheSameByTimeOrSize) {
    const TempFolder folder;
    const fs::path target = folder.Write("a.mp3", "12345");
    constexpr int64_t kTime = 1'000'000'000;
    { TargetFile(folder.path()).Finish(target, kTime); }
    fs::create_symlink("nowhere", folder.path() / "link");
    const auto look = [&](const char *name, std::optional<uint64_t> size, std::optional<int64_t> modified) {
        return LookAtTarget(folder.path() / name, size, modified);
    };
    EXPECT_EQ(look("b.mp3", 0, kTime), Existing::kNothing);
    for (const int64_t time : {kTime - 1, kTime + 1}) {
        EXPECT_EQ(look("a.mp3", 6, time), Existing::kSame);
        EXPECT_EQ(look("a.mp3", {}, time), Existing::kSame);
    }
    EXPECT_EQ(look("a.mp3", {}, {}), Existing::kSame);
    EXPECT_EQ(look("a.mp3", 0, 7), Existing::kSame);
    for (const int64_t time : {kTime - 2, kTime + 2})
        EXPECT_EQ(look("a.mp3", 6, time), Existing::kDifferent);
    EXPECT_EQ(look("a.mp3", 6, {}), Existing::kDifferent);
    EXPECT_EQ(look(".", {}, {}), Existing::kDifferent);
    EXPECT_EQ(look("link", 5, {}), Existing::kDifferent);
}

}  // namespace
}  // namespace velmarhost
