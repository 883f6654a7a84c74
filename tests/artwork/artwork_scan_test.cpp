#include "artwork/artwork_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "fixtures/artwork_file.h"
#include "tests/artwork/thumb_tree.h"

namespace {

const std::string kLibrary = "0123456789ABCDEF";
const std::string kTrack = "FEDCBA9876543210";

struct ScanTree : ThumbTree {
    explicit ScanTree(const std::string &library_id = kLibrary) {
        AddAttribute(driver.root, "persistent_id", library_id.c_str());
        driver.library_folder = Location("");
    }
    DriverPath *AddMusic(const std::string &name, const std::string &persistent_id) {
        DriverPath *track = AddTrack(name, persistent_id);
        Hold(music, name, track);
        return track;
    }
    std::string AddFile(const std::string &name) const {
        Write("Album Artwork/" + name, ArtworkCacheFile({8}));
        return Location("\\Album Artwork/" + name);
    }
};

TEST(ArtworkScan, LinksEveryTrackWithTheIdToEveryFileOfIt) {
    ScanTree tree;
    DriverPath *one = tree.AddMusic("1.mp3", kTrack);
    DriverPath *same = tree.AddMusic("2.mp3", kTrack + "-and-more");
    DriverPath *unlisted = tree.AddTrack("3", kTrack);
    const std::string files[] = {tree.AddFile("Cache/00/" + kLibrary + "-" + kTrack + ".itc"),
                                 tree.AddFile("Download/" + kLibrary + "_" + kTrack + ".itc2")};
    for (const char *id : {"FEDCBA9876543211", "", "FEDCBA987654321", "abcdefabcdefabcd"})
        tree.AddMusic(std::string("x") + id, id);
    // Of another library, with another end, too long, too short; case counts, and bytes do, not letters.
    for (const std::string &name :
         {"0123456789abcdef-" + kTrack + ".itc", kLibrary + "-" + kTrack + ".ITC",
          kLibrary + "-" + kTrack + ".jpg", kLibrary + "-" + kTrack + ".itc22",
          kLibrary + "-" + kTrack + "0.itc2", kLibrary + "-" + kTrack.substr(1) + ".itc",
          kLibrary + "-ABCDEFABCDEFABCD.itc", kLibrary + "\xC3\xA9" + kTrack + ".itc",
          kLibrary + "-" + kTrack + "itc.itc/inside"})
        tree.AddFile(name);
    EXPECT_EQ(EnsureAlbumArtworkScan(&tree.driver), 0);
    for (DriverPath *track : {one, same, unlisted}) {
        EXPECT_THAT(ThumbTree::Names(track), testing::ElementsAre("thumb", "thumb"));
        const std::string thumbs = TreeText(track, "");
        EXPECT_THAT(thumbs, testing::HasSubstr("/thumb 1 4 43 location=" + files[0] + "\n"));
        EXPECT_THAT(thumbs, testing::HasSubstr("/thumb 1 4 43 location=" + files[1] + "\n"));
        EXPECT_EQ(FindAttribute(track, "media_has_thumb"), "true");
    }
    for (int32_t i = 2; i < ChildCount(tree.music); ++i) {
        EXPECT_EQ(ChildCount(ChildAt(tree.music, i)), 0) << i;
        EXPECT_EQ(FindAttribute(ChildAt(tree.music, i), "media_has_thumb"), std::nullopt);
    }
    EXPECT_EQ(tree.StreamOf("library/music/2.mp3/thumb/small"), PngPicture(8));
}

TEST(ArtworkScan, RunsOnceWithTheFirstStepIntoAFileAndNeedsAWholeLibraryId) {
    ScanTree tree;
    DriverPath *track = tree.AddMusic("1.mp3", kTrack);
    tree.AddFile(kLibrary + "-" + kTrack + ".itc");
    EXPECT_NE(tree.At("library/music"), nullptr);
    EXPECT_EQ(tree.driver.artwork_scan, nullptr);
    EXPECT_NE(tree.At("library/music/1.mp3/thumb/small"), nullptr);
    EXPECT_NE(tree.driver.artwork_scan, nullptr);
    tree.AddFile(kLibrary + "-" + kTrack + ".itc2");
    EXPECT_EQ(tree.At("library/music/1.mp3"), track);
    EXPECT_EQ(ChildCount(track), 1);
    ScanTree short_id(kLibrary.substr(0, 15));
    track = short_id.AddMusic("1.mp3", kTrack);
    short_id.AddFile(kLibrary + "-" + kTrack + ".itc");
    EXPECT_EQ(short_id.At("library/music/1.mp3"), track);
    EXPECT_EQ(ChildCount(track), 0);
}

}  // namespace
