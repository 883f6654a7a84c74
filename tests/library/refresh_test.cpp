#include "library/refresh.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "content/plist_values.h"
#include "tests/library/loaded_library.h"

namespace {

using testing::ElementsAre;

void AddTrack(LibraryXml &xml, const char *id, const char *name, const char *file, const char *flag = "-") {
    const std::string location = *file == '\0' ? "" : LocationUrl(file);
    xml.Track(id, {{"Name", XmlText(name)}, {"Location", XmlText(location)}, {flag, "<true/>"}});
}

TEST(Refresh, TakesInNewTracksAndLeavesTheRestAlone) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTrack(xml, "1", "Gone", "/m/1.mp3");
        AddTrack(xml, "2", "Old", "/m/2.mp3");
        xml.Playlist({.name = "Music", .distinguished_kind = 4, .track_ids = {1, 2}});
        xml.Playlist({.name = "Mine", .track_ids = {2}});
    });
    const CFTypeRef plist = library.driver.library_plist.get();
    library.Rewrite([](LibraryXml &xml) {
        AddTrack(xml, "2", "Changed", "/m/other.mp3");
        AddTrack(xml, "3", "New", "/m/x/3.audiobook");
        AddTrack(xml, "4", "Cloud", "");
        AddTrack(xml, "5", "Podcast", "/m/5.mp3", "Podcast");
        AddTrack(xml, "aB", "Show", "/m/6.m4v", "TV Show");
        AddTrack(xml, "Ab", "The same", "/m/7.m4v", "Movie");
        xml.Playlist({.name = "Mine", .track_ids = {3, 4, 5}});
    });
    // The second time, all tracks are known.
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(RefreshLibrary(&library.driver), 0);
        EXPECT_THAT(library.NamesUnder("library/music"), ElementsAre("1.mp3", "2.mp3", "3.audiobook", "4"));
        EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("5.mp3", "aB.m4v"));
        EXPECT_THAT(library.NamesUnder("playlist/Mine"), ElementsAre("2.mp3"));
        EXPECT_EQ(library.Tracks().size(), 6U);
    }
    EXPECT_EQ(FindAttribute(library.At("library/music/2.mp3"), "name"), "Old");
    EXPECT_EQ(FindAttribute(library.At("library/music/3.audiobook"), "location"), "m/x/3.audiobook");
    EXPECT_THAT(OpenedPath(&library.driver, "library/movie/5.mp3").Numbers(), ElementsAre(4, 3, 9));
    EXPECT_EQ(library.At("library/movie/5.mp3")->share_count, 0);
    EXPECT_EQ(library.driver.library_plist.get(), plist);
}

TEST(Refresh, KeepsNothingOfWhatIsNoTrack) {
    LoadedLibrary library([](LibraryXml &xml) { AddTrack(xml, "1", "One", "/m/1.mp3"); });
    const auto refresh = [&](const std::string &list) {
        WriteFile(library.place.library_xml, ListFile(list));
        return RefreshLibrary(&library.driver);
    };
    for (const char *list : {"<array/>", "<dict/>", "<dict><key>Tracks</key><array/></dict>"})
        EXPECT_EQ(refresh(list), 0) << list;
    EXPECT_EQ(refresh("<dict>"), -1);
    EXPECT_EQ(library.log.Last(), "Open iTunes Preferences file error!");
    EXPECT_EQ(library.At("library/music"), nullptr);
    const std::string odd = "<key>9</key><string>odd</string><key></key><dict/>";
    EXPECT_EQ(refresh("<dict><key>Tracks</key><dict>" + odd + "</dict></dict>"), 0);
    EXPECT_THAT(library.NamesUnder("library/music"), ElementsAre("9"));
    EXPECT_EQ(library.Tracks().at(1)->track_dictionary, nullptr);
    EXPECT_EQ(library.At("library/movie"), nullptr);
}

}  // namespace
