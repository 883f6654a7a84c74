#include "host/added_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace velmarhost {
namespace {

using testing::ElementsAre;

std::vector<WaitingFile> Files(const std::vector<std::pair<std::string, int64_t>> &names_and_sizes) {
    std::vector<WaitingFile> files;
    for (const auto &[name, size] : names_and_sizes)
        files.push_back({name, size, {}, {}});
    return files;
}

std::vector<std::string> Names(const std::vector<CopiedFile> &copied, const std::vector<WaitingFile> &before,
                               const std::vector<WaitingFile> &after) {
    std::vector<std::string> names;
    for (const std::optional<std::size_t> &index : FindCopies(copied, before, after))
        names.push_back(index ? after.at(*index).name : "");
    return names;
}

TEST(AddedNames, NumbersOfOneNameAreNotThoseOfAnother) {
    const auto before = Files({{"song.mp3", 1}});
    EXPECT_THAT(Names({{"song.mp3", 5}, {"song1.mp3", 5}}, before,
                      Files({{"song1.mp3", 5}, {"song11.mp3", 5}, {"song.mp3", 1}})),
                ElementsAre("song1.mp3", "song11.mp3"));
    EXPECT_THAT(Names({{"song1.mp3", 5}, {"song.mp3", 5}}, before,
                      Files({{"song.mp3", 1}, {"song1.mp3", 5}, {"song2.mp3", 5}})),
                ElementsAre("song1.mp3", "song2.mp3"));
}

TEST(AddedNames, FilesThatITunesTookAreNotTakenForOthers) {
    EXPECT_THAT(
        Names({{"song.mp3", 5}, {"song1.mp3", 5}}, Files({{"song.mp3", 1}}), Files({{"song11.mp3", 5}})),
        ElementsAre("", "song11.mp3"));
    EXPECT_THAT(Names({{"a.mp3", 5}}, {}, Files({{"a.mp3", 6}, {"a.m4a", 5}, {"b.mp3", 5}})), ElementsAre(""))
        << "sizes and extensions must fit";
    EXPECT_THAT(Names({{"a.mp3", int64_t{1} << 32 | 0xF0000000}}, {}, Files({{"a.mp3", -0x10000000}})),
                ElementsAre("a.mp3"))
        << "of a large file the driver tells 32 bits";
}

TEST(AddedNames, WhatTheTreeDoesNotShowMayHaveTheExpectedName) {
    EXPECT_THAT(Names({{"Song.mp3", 5}, {"song1.mp3", 5}}, {}, Files({{"Song2.mp3", 5}, {"song11.mp3", 5}})),
                ElementsAre("Song2.mp3", "song11.mp3"));
}

// Against a folder that names its files in the plainest way.
TEST(AddedNames, AgreesWithAFolderThatIsThere) {
    std::mt19937 random(20);  // NOLINT: the same run every time
    const std::vector<std::string> stems = {"s", "s1", "s11", "s2", "S", "1", ""};
    for (int round = 0; round < 300; ++round) {
        std::set<std::string> folder;
        std::vector<WaitingFile> before;
        std::vector<WaitingFile> after;
        std::vector<CopiedFile> copied;
        std::vector<std::string> given;
        for (int i = 0; i < 12; ++i) {
            const std::string stem = stems[random() % stems.size()];
            std::string name = stem + ".mp3";
            for (int number = 1; folder.contains(name == "S.mp3" ? "s.mp3" : name); ++number)
                name = (stem == "S" ? "s" : stem) + std::to_string(number) + ".mp3";
            folder.insert(name == "S.mp3" ? "s.mp3" : name);
            after.push_back({name, 7, {}, {}});
            if (i < 4) {
                before.push_back(after.back());
            } else {
                copied.push_back({stem + ".mp3", 7});
                given.push_back(name);
            }
        }
        std::shuffle(after.begin(), after.end(), random);
        ASSERT_EQ(Names(copied, before, after), given) << "round " << round;
    }
}

}  // namespace
}  // namespace velmarhost
