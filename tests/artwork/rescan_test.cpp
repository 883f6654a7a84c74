#include "driver/rescan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "artwork/ringtones.h"
#include "artwork/sound_length.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"
#include "tests/support/media_files.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

struct MediaTree : ThumbTree {
    MediaTree() { driver.add_folder = Location("Automatically Add to iTunes"); }
    std::vector<std::string> Under(const std::string &path) {
        const DriverPath *node = At(path);
        return node == nullptr ? std::vector<std::string>{"(no node)"} : Names(node);
    }
};

// "TTA1"; format, channels and bits of a sample; rate, samples, checksum.
std::string TrueAudioFile() {
    return "TTA1" + LittleEndian(1, 2) + LittleEndian(1, 2) + LittleEndian(16, 2) + LittleEndian(44100) +
           LittleEndian(88200) + Zeros(200);
}

TEST(Ringtones, AreKnownByTheirFileNamesInBothFolders) {
    MediaTree tree;
    tree.Write("Ringtones/my.tone.m4r", M4aFile(3, MediaTags()));
    tree.Write("Ringtones/B.M4R", "garbage");
    tree.Write("Ringtones/.m4r", "no name");
    tree.Write("Ringtones/other.m4a", "no tone");
    tree.Write("Ringtones/folder.m4r/inside.m4r", "not entered");
    tree.Write("Tones/my.tone.m4r", "another");
    EXPECT_EQ(ScanToneFolder(&tree.driver, "Ringtones"), 0);
    EXPECT_THAT(tree.Under("library/ringtone"), UnorderedElementsAre("my.tone.m4r", "B.M4R"));
    EXPECT_EQ(ScanToneFolder(&tree.driver, "Tones"), 0);
    EXPECT_EQ(tree.Under("library/ringtone")[2], "my.tone.m4r");
    const DriverPath *tone = tree.At("library/ringtone/my.tone.m4r");
    EXPECT_EQ(std::vector({tone->kind, tone->category, tone->subcategory, tone->from_folder_scan}),
              std::vector({4, 2, 21, 1}));
    EXPECT_EQ(ThumbTree::Text(tone, "location"), tree.Location("Ringtones\\my.tone.m4r"));
    EXPECT_EQ(ThumbTree::Text(tone, "name"), "my.tone");
    EXPECT_EQ(ThumbTree::Text(tone, "duration"), "3000");
    EXPECT_EQ(ThumbTree::Text(tone, "st_size"), std::to_string(M4aFile(3, MediaTags()).size()));
    EXPECT_EQ(FindAttribute(tone, "id"), std::nullopt);
    const DriverPath *odd = tree.At("library/ringtone/B.M4R");
    EXPECT_EQ(ThumbTree::Text(odd, "st_size"), "7");
    EXPECT_EQ(FindAttribute(odd, "duration"), std::nullopt);
}

TEST(Ringtones, AnyFormatThatTagLibKnowsHasALength) {
    TempFolder folder;
    const auto length = [&](const std::string &bytes) {
        return SoundLength(folder.Write("a.m4r", bytes).string());
    };
    EXPECT_EQ(length(TrueAudioFile()), 2000);
    EXPECT_EQ(length(Mp3File(4, MediaTags())), 4000);
    EXPECT_EQ(length(""), std::nullopt);
    EXPECT_EQ(length(M4aFile(3, MediaTags()).substr(0, 100)), std::nullopt);
    EXPECT_EQ(SoundLength((folder.path() / "gone.m4r").string()), std::nullopt);
}

// TagLib calls itself for each atom inside an atom, and looks at each byte for the sync of a frame.
TEST(Ringtones, HostileFilesCostNeitherTheStackNorMuchTime) {
    TempFolder folder;
    constexpr std::uint32_t kDepth = 200000;
    std::string atoms = BigEndian(16) + "ftypM4A " + Zeros(4);
    for (std::uint32_t left = kDepth; left > 0; --left)
        atoms += BigEndian(8 * left) + "moov";
    std::string syncs;
    for (int i = 0; i < 5 << 20; ++i)
        syncs += "\xFF\xFB";
    std::string chapters;
    for (std::uint32_t i = kDepth; i > 0; --i)
        chapters += "CHAP" + BigEndian(18 + 28 * (i - 1)) + Zeros(2) + "a" + Zeros(17);
    EXPECT_EQ(SoundLength(folder.Write("deep.m4r", atoms).string()), std::nullopt);
    EXPECT_EQ(SoundLength(folder.Write("sound.m4r", Id3Tag(chapters) + SilentSound(3)).string()), 3000);
    EXPECT_EQ(SoundLength(folder.Write("other.m4r", Id3Tag(chapters) + TrueAudioFile()).string()),
              std::nullopt);
    EXPECT_EQ(SoundLength(folder.Write("syncs.m4r", syncs).string()), std::nullopt);
}

TEST(RescanLocalFolders, ScansEachFolderAndLeavesTheSameTreeTheSecondTime) {
    MediaTree tree;
    EnsureCategoryPath(&tree.driver, "movie", node_category::kVideo, node_subcategory::kMovie);
    tree.Write("Tones/a.m4r", "a");
    tree.Write("Movies/Film/film.m4v", "film");
    tree.Write("Automatically Add to iTunes/waits.mp3", SilentSound(1));
    tree.Write("Automatically Add to iTunes/Not Added/refused.mp3", SilentSound(1));
    tree.Write("Automatically Add to iTunes/note.txt", "no media");
    tree.Write("beside.mp3", SilentSound(1));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
        EXPECT_THAT(tree.Under("library/ringtone"), ElementsAre("a.m4r"));
        EXPECT_THAT(tree.Under("library/movie"), ElementsAre("5000000.m4v"));
        EXPECT_THAT(tree.Under("library/music"), ElementsAre("5000001.mp3"));
    }
    std::filesystem::remove_all(tree.files.path() / "Automatically Add to iTunes");
    EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
    EXPECT_THAT(tree.Under("library/music"), IsEmpty());
    tree.driver.add_folder.reset();
    EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
    EXPECT_THAT(tree.Under("library/ringtone"), IsEmpty());
}

// A program of the system serves as a file that has not changed for a while.
TEST(RescanLocalFolders, WhatHasNotChangedIsNotReadAgain) {
    MediaTree tree;
    EnsureCategoryPath(&tree.driver, "Books", node_category::kBook, node_subcategory::kBook);
    for (const char *name : {"Automatically Add to iTunes/a.mp3", "Tones/b.m4r", "Books/c.pdf"}) {
        std::filesystem::create_directories((tree.files.path() / name).parent_path());
        std::filesystem::create_symlink("/bin/sh", tree.files.path() / name);
    }
    const auto entries = [&] {
        EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
        return std::vector{tree.At("library/music/5000000.mp3"), tree.At("library/ringtone/b.m4r"),
                           tree.At("library/Books/c.pdf")};
    };
    const auto first = entries();
    EXPECT_THAT(first, testing::Each(testing::NotNull()));
    EXPECT_EQ(entries(), first);
    EXPECT_EQ(ThumbTree::Text(first[0], "id"), "5000000");
    tree.Write("Movies/new.mp3", "comes first and takes the first number");
    EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
    EXPECT_EQ(tree.At("library/music/5000001.mp3"), first[0]);
    EXPECT_EQ(ThumbTree::Text(first[0], "id"), "5000001");
    std::filesystem::remove(tree.files.path() / "Tones/b.m4r");
    EXPECT_EQ(RescanLocalFolders(&tree.driver), 0);
    EXPECT_THAT(tree.Under("library/ringtone"), IsEmpty());
}

}  // namespace
