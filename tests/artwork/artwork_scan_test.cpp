#include "artwork/artwork_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/artwork/thumb_tree.h"
#include "tests/support/artwork_file.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

const std::string kLibrary = "0123456789ABCDEF";
const std::string kTrack = "FEDCBA9876543210";

struct ScanTree : ThumbTree {
    ScanTree() {
        AddAttribute(driver.root, "persistent_id", kLibrary.c_str());
        driver.library_folder = BackslashPath(files.path());
    }
    DriverPath *AddMusic(const std::string &name, const std::string &persistent_id) {
        DriverPath *track = AddTrack(name, persistent_id);
        Hold(music, name, track);
        return track;
    }
    void AddFile(const std::string &name) const { Write("Album Artwork/" + name, ArtworkCacheFile({8})); }
    // Where the track's "thumb" nodes lead, below the folder.
    static std::vector<std::string> Thumbs(const DriverPath *track) {
        std::vector<std::string> files;
        for (int32_t i = 0; i < ChildCount(track); ++i) {
            const DriverPath *thumb = ChildAt(track, i);
            EXPECT_STREQ(ChildNameAt(track, i), "thumb");
            EXPECT_EQ(std::vector({thumb->kind, thumb->category, thumb->subcategory}),
                      std::vector({1, 4, 43}));
            const std::string location = Text(thumb, "location");
            files.push_back(location.substr(location.find("Album Artwork\\")));
        }
        return files;
    }
};

TEST(ArtworkScan, LinksEveryTrackWithTheIdToEveryFileOfIt) {
    ScanTree tree;
    DriverPath *one = tree.AddMusic("1.mp3", kTrack);
    DriverPath *same = tree.AddMusic("2.mp3", kTrack + "-and-more");
    DriverPath *unlisted = tree.AddTrack("3", kTrack);
    DriverPath *other = tree.AddMusic("4.mp3", "FEDCBA9876543211");
    DriverPath *without = tree.AddMusic("5.mp3", "");
    DriverPath *shorter = tree.AddMusic("6.mp3", kTrack.substr(0, 15));
    tree.AddFile("Cache/00/01/" + kLibrary + "-" + kTrack + ".itc");
    tree.AddFile("Download/" + kLibrary + "_" + kTrack + ".itc2");
    EXPECT_EQ(EnsureAlbumArtworkScan(&tree.driver), 0);
    for (DriverPath *track : {one, same, unlisted}) {
        EXPECT_THAT(ScanTree::Thumbs(track),
                    UnorderedElementsAre("Album Artwork\\Cache\\00\\01\\" + kLibrary + "-" + kTrack + ".itc",
                                         "Album Artwork\\Download\\" + kLibrary + "_" + kTrack + ".itc2"));
        EXPECT_EQ(ThumbTree::Text(track, "media_has_thumb"), "true");
    }
    for (DriverPath *track : {other, without, shorter}) {
        EXPECT_EQ(ChildCount(track), 0);
        EXPECT_EQ(FindAttribute(track, "media_has_thumb"), std::nullopt);
    }
    EXPECT_EQ(tree.StreamOf("library/music/2.mp3/thumb/small"), PngPicture(8));
}

TEST(ArtworkScan, ForeignNamesAreLeftAside) {
    ScanTree tree;
    DriverPath *track = tree.AddMusic("1.mp3", kTrack);
    DriverPath *lower = tree.AddMusic("2.mp3", "abcdefabcdefabcd");
    for (const std::string &name : {
             "0123456789abcdef-" + kTrack + ".itc",       // another library
             kLibrary + "-" + kTrack + ".ITC",            //
             kLibrary + "-" + kTrack + ".jpg",            //
             kLibrary + "-" + kTrack + ".itc22",          //
             kLibrary + "-" + kTrack + "0" + ".itc2",     // too long
             kLibrary + "-" + kTrack.substr(1) + ".itc",  // too short
             kLibrary + "-ABCDEFABCDEFABCD.itc",          // case counts
             kLibrary + "\xC3\xA9" + kTrack + ".itc",     // bytes are counted, not letters
             kLibrary + "-" + kTrack + "itc.itc/inside",  // a folder
         })
        tree.AddFile(name);
    EnsureAlbumArtworkScan(&tree.driver);
    EXPECT_EQ(ChildCount(track), 0);
    EXPECT_EQ(ChildCount(lower), 0);
}

TEST(ArtworkScan, RunsOnceAndWithTheFirstStepIntoAFile) {
    ScanTree tree;
    DriverPath *track = tree.AddMusic("1.mp3", kTrack);
    tree.AddFile(kLibrary + "-" + kTrack + ".itc");
    EXPECT_NE(tree.At("library/music"), nullptr);
    EXPECT_EQ(tree.driver.artwork_scan, nullptr);
    EXPECT_EQ(ChildCount(track), 0);
    EXPECT_NE(tree.At("library/music/1.mp3/thumb/small"), nullptr);
    ASSERT_NE(tree.driver.artwork_scan, nullptr);
    EXPECT_EQ(GetVelmarArraySize(tree.driver.artwork_scan), 0);
    tree.AddFile(kLibrary + "-" + kTrack + ".itc2");
    EXPECT_EQ(tree.At("library/music/1.mp3"), track);
    EXPECT_THAT(ScanTree::Thumbs(track), ElementsAre("Album Artwork\\" + kLibrary + "-" + kTrack + ".itc"));
}

TEST(ArtworkScan, WithoutAFolderOrALibraryIdThereIsNoArtwork) {
    ScanTree no_files;
    EXPECT_EQ(EnsureAlbumArtworkScan(&no_files.driver), 0);
    EXPECT_NE(no_files.driver.artwork_scan, nullptr);

    ThumbTree no_id;
    no_id.driver.library_folder = BackslashPath(no_id.files.path());
    no_id.Write("Album Artwork/" + kLibrary + "-" + kTrack + ".itc", ArtworkCacheFile({8}));
    const DriverPath *track = no_id.AddTrack("1", kTrack);
    EnsureAlbumArtworkScan(&no_id.driver);
    EXPECT_EQ(ChildCount(track), 0);
}

}  // namespace
