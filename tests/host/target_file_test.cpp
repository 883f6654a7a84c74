#include "host/target_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "tests/support/temp_folder.h"

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
    EXPECT_EQ(ReadWholeFile(target), "new text");
    EXPECT_THROW(TargetFile(folder.path() / "none"), std::system_error);
}

TEST(TargetFile, WhatStandsThereIsTheSameByTimeOrSize) {
    const TempFolder folder;
    const fs::path target = folder.Write("a.mp3", "12345");
    constexpr int64_t kTime = 1'000'000'000;
    fs::last_write_time(
        target, std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(kTime))));
    fs::create_symlink("nowhere", folder.path() / "link");
    using Case = std::tuple<const char *, std::optional<uint64_t>, std::optional<int64_t>, Existing>;
    for (const auto &[name, size, modified, existing] :
         std::vector<Case>{{"b.mp3", 5, {}, Existing::kNothing},
                           {"a.mp3", {}, {}, Existing::kSame},
                           {"a.mp3", 5, 7, Existing::kSame},
                           {"a.mp3", 6, 7, Existing::kDifferent},
                           {"a.mp3", 6, {}, Existing::kDifferent},
                           {"a.mp3", 6, kTime + 1, Existing::kSame},
                           {"a.mp3", {}, kTime - 1, Existing::kSame},
                           {"a.mp3", 6, kTime + 2, Existing::kDifferent},
                           {"a.mp3", 6, kTime - 2, Existing::kDifferent},
                           {".", {}, {}, Existing::kDifferent},
                           {"link", 5, {}, Existing::kDifferent}})
        EXPECT_EQ(LookAtTarget(folder.path() / name, size, modified), existing) << name;
}

}  // namespace
}  // namespace velmarhost
