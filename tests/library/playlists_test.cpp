// What the comparison of whole trees does not show.
#include "library/playlists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fixtures/itl_file.h"
#include "library/track_import.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"
#include "tests/library/loaded_library.h"

namespace {

using testing::ElementsAre;

TEST(LoadPlaylists, BooksAndApplicationsGetThePicturesOfTheirFiles) {
    const TempFolder media;
    const std::string bundle = "<plist><dict><key>CFBundleIdentifier</key><string>x</string></dict></plist>";
    media.Write("a.epub", Archive(Epub("o/p.opf", Package("<dc:title>T</dc:title>", CoverItemXml("c", "")))));
    media.Write("c.ipa", Archive({{"Payload/A.app/Info.plist", bundle}, {"iTunesArtwork", "12345"}}));
    media.Write("d.ipa", Archive({{"Payload/A.app/Info.plist", bundle}}));
    LoadedLibrary library([&](LibraryXml &xml) {
        int id = 0;
        for (const char *name : {"a.epub", "c.ipa", "d.ipa", "gone.ipa"})
            xml.Track(std::to_string(++id),
                      {{"Location", XmlText(LocationUrl((media.path() / name).string()))}});
        // A list without a name holds its track, though no walk reaches it.
        xml.RawPlaylist({{"Playlist Persistent ID", XmlText("A")}}, PlaylistItem(XmlInteger(1)));
        xml.Playlist({.name = "Books", .distinguished_kind = 5, .track_ids = {1, 1}});
        xml.Playlist({.name = "Apps", .distinguished_kind = 18, .track_ids = {2, 3, 4, 2}});
    });
    // The location loses its first slash on the way from the URL.
    const auto location = [&](const std::string &name) {
        return "location=" + BackslashPath(media.path() / name).substr(1);
    };
    DriverPath *book = library.At("library/book/1.epub");
    EXPECT_EQ(book->share_count, 3);
    EXPECT_EQ(FindAttribute(book, "name"), std::nullopt) << "only a scan reads the metadata";
    EXPECT_EQ(ChildCount(book), 1);
    EXPECT_THAT(AttributeLines(FindChild(book, "thumb")),
                ElementsAre(location("a.epub"), "cover-image-path=o\\c"));
    EXPECT_EQ(FindAttribute(library.At("library/app/2.ipa"), "media_has_thumb"), "true");
    EXPECT_EQ(ChildCount(library.At("library/app/2.ipa")), 1);
    EXPECT_THAT(AttributeLines(library.At("library/app/2.ipa/thumb/small")),
                ElementsAre("thumb_type=png", location("c.ipa"), "icon_image=iTunesArtwork", "is_ipa=true",
                            "is_artwork=true", "st_size=5"));
    for (const char *path : {"library/app/3.ipa", "library/app/4.ipa"}) {
        EXPECT_EQ(FindAttribute(library.At(path), "media_has_thumb"), std::nullopt);
        EXPECT_EQ(ChildCount(library.At(path)), 0);
    }
}

TEST(LoadPlaylists, TheOtherSourceGivesItsTracksUnclassifiedAndSmartLists) {
    ItlFile file(ItlForm12());
    file.AddTrack({.id = static_cast<std::uint32_t>(-3), .texts = {{kItlKind, "MPEG audio file"}}});
    file.AddTrack({.id = 2});
    file.AddPlaylist({.name = "####!####", .id = 76, .master = true, .items = {2}});
    file.AddPlaylist({.name = "Mine", .id = 77, .items = {2, static_cast<std::uint32_t>(-3), 9}});
    file.AddPlaylist({.name = "Films", .kind = 2, .id = 78, .items = {2}});
    LoadedLibrary library("itl", file.Bytes());
    ASSERT_EQ(library.result, 0);
    EXPECT_THAT(AttributeLines(library.driver.root),
                ElementsAre("terminal_type=iTunes", "persistent_id=A1B2C3D4E5F60718",
                            "application_version=12.9.4.102"));
    EXPECT_THAT(library.NamesUnder("playlist"), ElementsAre("Mine"));
    EXPECT_THAT(library.NamesUnder("playlist/Mine"), ElementsAre("2", "-3"));
    EXPECT_THAT(OpenedPath(&library.driver, "playlist/Mine").Numbers(), ElementsAre(1, 1, 3));
    EXPECT_EQ(FindAttribute(library.At("playlist/Mine"), "persistent_id"), "77");
    EXPECT_THAT(library.NamesUnder("library/movie"), ElementsAre("2"));
    EXPECT_EQ(library.driver.master_playlist, nullptr);
    EXPECT_THAT(OpenedPath(&library.driver, "playlist/Mine/-3").Numbers(), ElementsAre(4, 0, 0));
    const DriverPath *track = library.Tracks().at(0);
    EXPECT_EQ(FindAttribute(track, "genre"), "");
    EXPECT_EQ(FindAttribute(track, "kind"), "MPEG audio file");
    EXPECT_EQ(GetVelmarAttributeSize(track->attributes), 15);
}

}  // namespace
