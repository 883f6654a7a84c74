#include "library/refresh.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "content/plist_values.h"
#include "tests/library/loaded_library.h"
#include "tests/support/generated_library.h"

namespace {

using testing::ElementsAre;
using testing::Optional;

constexpr int kMusicKind = 4;

XmlEntries Entries(const std::string &name, const std::string &file, const char *flag = nullptr) {
    XmlEntries entries =
        TrackEntries(file.empty() ? "" : LocationUrl("/m/" + file), {{"Name", XmlText(name)}});
    if (flag != nullptr) entries.push_back({flag, "<true/>"});
    return entries;
}

std::vector<std::string> Ids(const LibraryDriver &driver) {
    std::vector<std::string> ids;
    for (int32_t i = 0; i < GetVelmarArraySize(driver.tracks); ++i) {
        void *track = nullptr;
        GetVelmarArrayItem(driver.tracks, i, &track);
        ids.emplace_back(FindAttribute(static_cast<DriverPath *>(track), "id").value_or("none"));
    }
    return ids;
}

TEST(Refresh, TakesInNewTracksAndLeavesTheRestAlone) {
    LoadedLibrary library([](LibraryXml &xml) {
        xml.Track("1", Entries("Gone", "1.mp3"));
        xml.Track("2", Entries("Old", "2.mp3"));
        xml.Playlist({.name = "Music", .distinguished_kind = kMusicKind, .track_ids = {1, 2}});
        xml.Playlist({.name = "Mine", .track_ids = {2}});
    });
    const CFTypeRef plist = library.driver.library_plist.get();
    const auto rewrite = [](LibraryXml &xml) {
        xml.Track("2", Entries("Changed", "other.mp3"));
        xml.Track("3", Entries("New", "x/3.audiobook"));
        xml.Track("4", Entries("Cloud", ""));
        xml.Track("5", Entries("Podcast", "5.mp3", "Podcast"));
        xml.Track("aB", Entries("Show", "6.m4v", "TV Show"));
        xml.Track("Ab", Entries("The same", "7.m4v", "Movie"));
        xml.Playlist({.name = "Mine", .track_ids = {3, 4, 5}});
        xml.Playlist({.name = "Later", .track_ids = {3}});
    };
    // The second time, all tracks are known.
    for (int round = 0; round < 2; ++round) {
        library.Rewrite(rewrite);
        ASSERT_EQ(RefreshLibrary(&library.driver), 0);
        EXPECT_THAT(library.NamesUnder("library/music"), ElementsAre("1.mp3", "2.mp3", "3.audiobook", "4"));
        EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("5.mp3", "aB.m4v"));
        EXPECT_THAT(library.NamesUnder("playlist/Mine"), ElementsAre("2.mp3"));
        EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("Mine"));
        EXPECT_THAT(Ids(library.driver), testing::UnorderedElementsAre("1", "2", "3", "4", "5", "aB"));
    }
    EXPECT_EQ(FindAttribute(library.At("library/music/2.mp3"), "name"), "Old");
    EXPECT_EQ(FindAttribute(library.At("library/music/3.audiobook"), "location"), "m/x/3.audiobook");
    const DriverPath *podcast = library.At("library/movie/5.mp3");
    EXPECT_EQ(std::vector({podcast->kind, podcast->category, podcast->subcategory, podcast->share_count}),
              std::vector({4, 3, 9, 0}));
    EXPECT_EQ(podcast->track_dictionary, nullptr);
    EXPECT_EQ(library.driver.library_plist.get(), plist);
}

TEST(Refresh, KeepsNothingOfAnEntryThatIsNoTrack) {
    LoadedLibrary library([](LibraryXml &) {});
    ASSERT_EQ(library.result, 0);
    library.RewriteAs(
        "<dict><key>Tracks</key><dict><key>9</key><string>odd</string><key></key><dict/></dict></dict>");
    EXPECT_EQ(RefreshLibrary(&library.driver), 0);
    EXPECT_THAT(library.NamesUnder("library/music"), ElementsAre("9"));
    EXPECT_EQ(library.At("library/music/9")->track_dictionary, nullptr);
    EXPECT_EQ(library.At("library/movie"), nullptr);
}

TEST(Refresh, LeavesTheTreeAloneWithoutTracks) {
    LoadedLibrary library([](LibraryXml &xml) { xml.Track("1", Entries("One", "1.mp3")); });
    for (const char *list : {"<array/>", "<dict/>", "<dict><key>Tracks</key><array/></dict>"}) {
        library.RewriteAs(list);
        EXPECT_EQ(RefreshLibrary(&library.driver), 0) << list;
    }
    library.RewriteAs("<dict>");
    EXPECT_EQ(RefreshLibrary(&library.driver), -1);
    EXPECT_EQ(library.log.Last(), "Open iTunes Preferences file error!");
    EXPECT_THAT(Ids(library.driver), ElementsAre("1"));
    EXPECT_EQ(library.At("library/music"), nullptr);
}

}  // namespace
