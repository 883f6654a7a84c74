// What lists of books and applications read from the files of their tracks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"
#include "tests/library/loaded_library.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LibraryPlaylist Kind(int number, std::vector<std::int64_t> track_ids) {
    LibraryPlaylist list;
    list.name = "of kind " + std::to_string(number);
    list.distinguished_kind = number;
    list.track_ids = std::move(track_ids);
    return list;
}

TEST(LoadPlaylists, BooksAndApplicationsGetThePicturesOfTheirFiles) {
    const TempFolder media;
    const std::string bundle = "<plist><dict><key>CFBundleIdentifier</key><string>x</string></dict></plist>";
    media.Write("a.epub", Archive(Epub("o/p.opf", Package("<dc:title>T</dc:title>", CoverItemXml("c", "")))));
    media.Write("b.pdf", "%PDF");
    media.Write("c.ipa", Archive({{"Payload/A.app/Info.plist", bundle}, {"iTunesArtwork", "12345"}}));
    media.Write("d.ipa", Archive({{"Payload/A.app/Info.plist", bundle}}));
    LoadedLibrary library([&](LibraryXml &xml) {
        int id = 0;
        for (const char *name : {"a.epub", "b.pdf", "c.ipa", "d.ipa", "gone.ipa", "gone.epub"}) {
            const XmlEntry key = {"Track ID", XmlInteger(++id)};
            xml.Track(std::to_string(id), TrackEntries(LocationUrl((media.path() / name).string()), {key}));
        }
        xml.Playlist(Kind(5, {1, 2, 6, 1}));
        xml.Playlist(Kind(18, {3, 4, 5, 3}));
    });
    // The location loses its first slash on the way from the URL.
    const auto location = [&](const std::string &name) {
        return "location=" + BackslashPath(media.path() / name).substr(1);
    };
    DriverPath *book = library.At("library/book/1.epub");
    EXPECT_EQ(FindAttribute(book, "name"), std::nullopt) << "only a scan reads the metadata";
    EXPECT_THAT(library.NamesUnder("library/book/1.epub"), ElementsAre("thumb"));
    EXPECT_THAT(AttributeLines(FindChild(book, "thumb")),
                ElementsAre(location("a.epub"), "cover-image-path=o\\c"));
    for (const char *path : {"library/book/2.pdf/thumb", "library/book/6.epub/thumb"})
        EXPECT_EQ(AttributeLines(library.At(path)).size(), 1U) << path;

    DriverPath *app = library.At("library/app/3.ipa");
    EXPECT_EQ(FindAttribute(app, "media_has_thumb"), "true");
    EXPECT_THAT(library.NamesUnder("library/app/3.ipa"), ElementsAre("thumb"));
    EXPECT_THAT(AttributeLines(library.At("library/app/3.ipa/thumb/small")),
                ElementsAre("thumb_type=png", location("c.ipa"), "icon_image=iTunesArtwork", "is_ipa=true",
                            "is_artwork=true", "st_size=5"));
    for (const char *path : {"library/app/4.ipa", "library/app/5.ipa"}) {
        EXPECT_EQ(library.At(path)->subcategory, node_subcategory::kApplication);
        EXPECT_EQ(FindAttribute(library.At(path), "media_has_thumb"), std::nullopt);
        EXPECT_THAT(library.NamesUnder(path), IsEmpty());
    }
}

}  // namespace
