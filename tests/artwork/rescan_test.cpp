#include "driver/rescan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "artwork/media_folder_walk.h"
#include "artwork/ringtones.h"
#include "artwork/sound_length.h"
#include "fixtures/media_files.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// "TTA1"; format, channels and bits of a sample; rate, samples, checksum.
std::string TrueAudioFile() {
    return "TTA1" + LittleEndian(1, 2) + LittleEndian(1, 2) + LittleEndian(16, 2) + LittleEndian(44100) +
           LittleEndian(88200) + Zeros(200);
}

struct Rescan : ThumbTree, testing::Test {};

TEST_F(Rescan, TonesAreKnownByTheirFileNamesInBothFolders) {
    const std::string tone = M4aFile(3, MediaTags());
    for (const char *name : {"Ringtones/my.tone.m4r", "Ringtones/other.m4a", "Tones/my.tone.m4r",
                             "Ringtones/.m4r", "Ringtones/folder.m4r/inside.m4r"})
        Write(name, tone);
    EXPECT_EQ(ScanToneFolder(&driver, "Ringtones"), 0);
    const DriverPath *root = At("library/ringtone");
    EXPECT_EQ(TreeText(ChildAt(root, 0), ChildNameAt(root, 0)),
              "my.tone.m4r 4 2 21 st_size=" + std::to_string(tone.size()) +
                  " duration=3000 location=" + Location("Ringtones\\my.tone.m4r") + " name=my.tone\n");
    EXPECT_EQ(ChildAt(root, 0)->from_folder_scan, 1);
    Write("Tones/B.M4R", "garbage");
    EXPECT_EQ(ScanToneFolder(&driver, "Tones"), 0);
    EXPECT_THAT(Names(root), testing::UnorderedElementsAre("my.tone.m4r", "my.tone.m4r", "B.M4R"));
    EXPECT_EQ(FindAttribute(At("library/ringtone/B.M4R"), "duration"), std::nullopt);
}

// TagLib calls itself for each atom inside an atom, and looks at each byte for the sync of a frame.
TEST_F(Rescan, AnyFormatHasALengthAndHostileFilesCostNeitherTheStackNorMuchTime) {
    constexpr std::uint32_t kDepth = 200000;
    std::string atoms = BigEndian(16) + "ftypM4A " + Zeros(4);
    std::string chapters;
    for (std::uint32_t left = kDepth; left > 0; --left) {
        atoms += BigEndian(8 * left) + "moov";
        chapters += "CHAP" + BigEndian(18 + 28 * (left - 1)) + Zeros(2) + "a" + Zeros(17);
    }
    std::string syncs;
    for (int i = 0; i < 5 << 20; ++i)
        syncs += "\xFF\xFB";
    const std::pair<std::string, std::optional<int64_t>> rows[] = {
        {TrueAudioFile(), 2000},
        {Mp3File(4, MediaTags()), 4000},
        {Id3Tag(chapters) + SilentSound(3), 3000},
        {Id3Tag(chapters) + TrueAudioFile(), {}},
        {"", {}},
        {M4aFile(3, MediaTags()).substr(0, 100), {}},
        {atoms, {}},
        {syncs, {}}};
    for (const auto &[bytes, length] : rows)
        EXPECT_EQ(SoundLength(folder.Write("a.m4r", bytes).string()), length) << bytes.substr(0, 10);
    EXPECT_EQ(SoundLength((folder.path() / "gone.m4r").string()), std::nullopt);
}

TEST_F(Rescan, ScansEachFolderAndLeavesTheSameTreeTheSecondTime) {
    EnsureCategoryPath(&driver, "movie", node_category::kVideo, node_subcategory::kMovie);
    for (const char *name : {"Tones/a.m4r", "Movies/sub/film.m4v", "Automatically Add to iTunes/waits.mp3",
                             "Automatically Add to iTunes/Not Added/refused.mp3", "beside.mp3"})
        Write(name, SilentSound(1));
    std::filesystem::create_directory_symlink("..", media / "Movies/sub/up");
    const auto rescan = [&] {
        EXPECT_EQ(RescanLocalFolders(&driver), 0);
        return std::vector{Names(At("library/ringtone")), Names(At("library/movie")),
                           Names(At("library/music"))};
    };
    for (int round = 0; round < 2; ++round)
        EXPECT_THAT(rescan(), ElementsAre(ElementsAre("a.m4r"), ElementsAre("5000000.m4v"),
                                          ElementsAre("5000001.mp3")));
    std::filesystem::remove_all(media / "Automatically Add to iTunes");
    EXPECT_THAT(rescan(), ElementsAre(ElementsAre("a.m4r"), ElementsAre("5000000.m4v"), IsEmpty()));
    driver.add_folder.reset();
    EXPECT_THAT(rescan(), testing::Each(IsEmpty()));
    EXPECT_EQ(WalkMediaFolder(&driver, std::nullopt, true), -1);
}

// A program of the system serves as a file that has not changed for a while.
TEST_F(Rescan, WhatHasNotChangedIsNotReadAgain) {
    EnsureCategoryPath(&driver, "Books", node_category::kBook, node_subcategory::kBook);
    for (const char *name : {"Automatically Add to iTunes/a.mp3", "Tones/b.m4r", "Books/c.pdf"}) {
        std::filesystem::create_directories((media / name).parent_path());
        std::filesystem::create_symlink("/bin/sh", media / name);
    }
    const auto entries = [&](const std::string &number) {
        EXPECT_EQ(RescanLocalFolders(&driver), 0);
        return std::vector{At("library/music/" + number + ".mp3"), At("library/ringtone/b.m4r"),
                           At("library/Books/c.pdf")};
    };
    const auto first = entries("5000000");
    EXPECT_THAT(first, testing::Each(testing::NotNull()));
    Write("Movies/new.mp3", "comes first and takes the first number");
    EXPECT_EQ(entries("5000001"), first);
    EXPECT_EQ(FindAttribute(first[0], "id"), "5000001");
    std::filesystem::remove(media / "Tones/b.m4r");
    EXPECT_EQ(entries("5000001"), (std::vector<DriverPath *>{first[0], nullptr, first[2]}));
}

}  // namespace
