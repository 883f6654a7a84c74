#include "library/playlists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/track_import.h"
#include "tests/library/loaded_library.h"
#include "tests/support/itl_file.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LibraryPlaylist List(const std::string &name, std::vector<std::int64_t> track_ids,
                     const std::string &id = "") {
    LibraryPlaylist list;
    list.name = name;
    list.track_ids = std::move(track_ids);
    list.persistent_id = id;
    return list;
}

LibraryPlaylist Kind(int number, std::vector<std::int64_t> track_ids, const std::string &id = "") {
    LibraryPlaylist list = List("of kind " + std::to_string(number), std::move(track_ids), id);
    list.distinguished_kind = number;
    return list;
}

LibraryPlaylist Master(std::vector<std::int64_t> track_ids) {
    LibraryPlaylist list = List("Library", std::move(track_ids));
    list.master = true;
    return list;
}

LibraryPlaylist Under(const std::string &parent, LibraryPlaylist list) {
    list.parent_persistent_id = parent;
    return list;
}

void AddTracks(LibraryXml &xml, const std::vector<std::pair<std::string, std::string>> &locations) {
    for (const auto &[id, location] : locations)
        xml.Track(id, TrackEntries(location));
}

std::vector<int32_t> Numbers(const DriverPath *path) {
    return path == nullptr ? std::vector<int32_t>{}
                           : std::vector<int32_t>{path->kind, path->category, path->subcategory};
}

TEST(LoadPlaylists, EveryKindHasItsPlaceAndItsNumbers) {
    LoadedLibrary library([](LibraryXml &xml) {
        for (const int number : {2, 3, 4, 5, 6, 10, 18, 19, 22, 26, 31, 48, 57, 58, 59, 65, 200}) {
            xml.Playlist(Kind(number, {}));
        }
    });
    EXPECT_THAT(library.NamesUnder("library"), ElementsAre("movie", "tvshow", "music", "book", "podcast",
                                                           "app", "of kind 19", "of kind 31", "ringtone"));
    EXPECT_THAT(library.NamesUnder("genius"), ElementsAre("of kind 26"));
    EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("of kind 22", "of kind 65", "of kind 200"));
    EXPECT_THAT(Numbers(library.At("library/app")), ElementsAre(1, 6, 60));
    EXPECT_THAT(Numbers(library.At("library/of kind 19")), ElementsAre(1, 1, 11));
    EXPECT_THAT(Numbers(library.At("library/of kind 31")), ElementsAre(1, 1, 10));
    EXPECT_THAT(Numbers(library.At("playlist/of kind 22")), ElementsAre(1, 1, 13));
    EXPECT_THAT(Numbers(library.At("playlist/of kind 65")), ElementsAre(1, 1, 4));
}

TEST(LoadPlaylists, SmartInfoGoesBeforeFolderAndTheKeyAloneCounts) {
    LoadedLibrary library([](LibraryXml &xml) {
        xml.RawPlaylist(
            {{"Name", XmlText("both")}, {"Folder", XmlFlag(true)}, {"Smart Info", XmlData("x", 2)}}, {});
        xml.RawPlaylist({{"Name", XmlText("false folder")}, {"Folder", XmlFlag(false)}}, {});
        xml.RawPlaylist({{"Name", XmlText("empty info")}, {"Smart Info", XmlData("", 2)}}, {});
    });
    EXPECT_EQ(library.At("playlist/both")->subcategory, 3);
    EXPECT_EQ(library.At("playlist/false folder")->subcategory, 5);
    EXPECT_EQ(library.At("playlist/empty info")->subcategory, 3);
}

TEST(LoadPlaylists, TrackNamesTakeTheExtensionCutToFiveBytes) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTracks(xml, {{"1", "file:///m/a.mp3"},
                        {"2", "file:///m/a.mpeg4"},
                        {"3", "file:///m/dotted.folder/a"},
                        {"4", "file:///m/plain"},
                        {"5", ""},
                        {"6", "file:///m/a."}});
        xml.Playlist(List("l", {1, 2, 3, 4, 5, 6, 99, 1}));
    });
    EXPECT_THAT(library.NamesUnder("playlist/l"),
                ElementsAre("1.mp3", "2.mpeg", "3.fold", "4", "5", "6.", "1.mp3"));
    const DriverPath *track = library.At("playlist/l/1.mp3");
    EXPECT_EQ(track->share_count, 2) << "a list may hold a track twice";
}

TEST(LoadPlaylists, OddItemsAndListsArePassedOver) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTracks(xml, {{"1", ""}, {"2", ""}});
        xml.RawPlaylist({{"Name", XmlText("odd")}},
                        "<string>1</string><dict><key>Track ID</key><string>1</string></dict><dict/>" +
                            PlaylistItem(XmlReal("1.5")) + PlaylistItem(XmlInteger(2)));
        xml.RawPlaylist({{"Name", XmlText("no array")}, {"Playlist Items", XmlText("1")}}, {});
        xml.RawPlaylist({{"Playlist Persistent ID", XmlText("A")}}, PlaylistItem(XmlInteger(1)));
        xml.Playlist(List("####!####", {1}));
        xml.Playlist(List("twice", {1}));
        xml.Playlist(List("twice", {2}));
    });
    EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("odd", "no array", "twice", "twice"));
    EXPECT_THAT(library.NamesUnder("playlist/odd"), ElementsAre("2"));
    EXPECT_THAT(library.NamesUnder("playlist/twice"), ElementsAre("1"))
        << "the earlier of two names is reached";
    // The list without a name holds its track, though no walk reaches it.
    EXPECT_EQ(FindTrackById(&library.driver, "1")->share_count, 2);
}

TEST(LoadPlaylists, ListsHangUnderTheParentThatStandsBeforeThem) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTracks(xml, {{"1", ""}});
        xml.Playlist(Under("LATER", List("early", {1}, "E")));
        xml.Playlist(List("folder", {1}, "F"));
        xml.Playlist(Under("F", List("inside", {1}, "I")));
        xml.Playlist(Under("I", List("deep", {1})));
        xml.Playlist(List("later", {}, "LATER"));
        xml.Playlist(Under("f", List("case counts", {1})));
        xml.Playlist(Under("F", Kind(3, {1})));
    });
    EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("early", "folder", "later", "case counts"));
    EXPECT_THAT(library.NamesUnder("playlist/folder"), ElementsAre("1", "inside", "tvshow"));
    EXPECT_THAT(library.NamesUnder("playlist/folder/inside"), ElementsAre("deep"));
    EXPECT_THAT(library.NamesUnder("playlist/folder/inside/deep"), IsEmpty());
    EXPECT_THAT(library.NamesUnder("playlist/early"), IsEmpty()) << "a list with a parent stays empty";
}

TEST(LoadPlaylists, TwoKindsShareTheMovieRoot) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTracks(xml, {{"1", ""}, {"2", ""}, {"3", ""}});
        xml.Playlist(Kind(48, {1}, "FIRST"));
        xml.Playlist(Kind(2, {2, 3}, "SECOND"));
    });
    EXPECT_THAT(library.NamesUnder("library"), ElementsAre("movie", "ringtone", "Books", "app"));
    EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("1", "2", "3"));
    EXPECT_EQ(FindAttribute(library.At("library/movie"), "persistent_id"), "FIRST");
}

class MasterMovies : public testing::TestWithParam<bool> {};

TEST_P(MasterMovies, FilmsOfTheMasterListComeUnderMovieOnce) {
    const bool has_root = GetParam();
    LoadedLibrary library([&](LibraryXml &xml) {
        for (const char *film : {"1", "2", "3"})
            xml.Track(film, {{"Movie", XmlFlag(true)}});
        xml.Track("4", {{"TV Show", XmlFlag(true)}, {"Movie", XmlFlag(true)}});
        xml.Track("5", {{"Podcast", XmlFlag(true)}});
        xml.Track("6", {});
        xml.Playlist(Master({2}));
        xml.Playlist(Master({1, 1, 3, 4, 5, 6}));
        if (has_root) xml.Playlist(Kind(2, {3}));
    });
    if (has_root) {
        EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("3", "1"));
    } else {
        EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("1", "3"))
            << "the root is made when it is missing";
    }
    EXPECT_THAT(Numbers(library.At("library/movie")), ElementsAre(1, 3, 30));
}

INSTANTIATE_TEST_SUITE_P(RootOrNot, MasterMovies, testing::Bool());

TEST(LoadPlaylists, BooksAndApplicationsTakeTheNumbersOfTheirList) {
    LoadedLibrary library([](LibraryXml &xml) {
        AddTracks(xml, {{"1", "file:///C:/b/A.EPUB"},
                        {"2", "file:///C:/b/B.pdf"},
                        {"3", "file:///C:/b/c.txt"},
                        {"4", ""},
                        {"5", "file:///C:/a/Game.ipa"}});
        xml.Playlist(Kind(5, {1, 2, 3, 4}));
        xml.Playlist(Kind(18, {5}));
    });
    const char *formats[] = {"EPUB", "PDF", "Unknown"};
    const char *names[] = {"1.EPUB", "2.pdf", "3.txt"};
    for (int i = 0; i < 3; ++i) {
        const DriverPath *book = library.At(std::string("library/book/") + names[i]);
        EXPECT_THAT(Numbers(book), ElementsAre(4, 5, 50));
        EXPECT_EQ(FindAttribute(book, "format"), formats[i]);
        EXPECT_EQ(FindAttribute(book, "media_has_thumb"), "true");
    }
    const DriverPath *thumb = library.At("library/book/1.EPUB/thumb");
    EXPECT_THAT(Numbers(thumb), ElementsAre(1, 4, 43));
    EXPECT_EQ(FindAttribute(thumb, "location"), "C:\\b\\A.EPUB");
    EXPECT_THAT(Numbers(library.At("library/book/4")), ElementsAre(4, 5, 50));
    EXPECT_EQ(FindAttribute(library.At("library/book/4"), "media_has_thumb"), std::nullopt);
    EXPECT_THAT(Numbers(library.At("library/app/5.ipa")), ElementsAre(4, 6, 60));
}

TEST(LoadPlaylists, ListsOfTheOtherSourceAreAllSmart) {
    ItlFile file(ItlForm12());
    file.AddTrack({.id = 1});
    file.AddTrack({.id = 2});
    file.AddPlaylist({.name = "####!####", .id = 76, .master = true, .items = {1}});
    file.AddPlaylist({.name = "Mine", .id = 77, .items = {2, 1, 9}});
    file.AddPlaylist({.name = "Films", .kind = 2, .id = 78, .items = {1}});
    LoadedLibrary library("itl", file.Bytes());
    ASSERT_EQ(library.result, 0);
    EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("Mine"));
    EXPECT_THAT(library.NamesUnder("playlist/Mine"), ElementsAre("2", "1"));
    EXPECT_THAT(Numbers(library.At("playlist/Mine")), ElementsAre(1, 1, 3));
    EXPECT_EQ(FindAttribute(library.At("playlist/Mine"), "persistent_id"), "77");
    EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("1"));
    EXPECT_EQ(library.driver.master_playlist, nullptr);
}

}  // namespace
