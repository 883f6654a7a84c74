#include "artwork/book_thumbnail.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/limits.h"
#include "tests/artwork/thumb_tree.h"

namespace {

namespace fs = std::filesystem;

struct BookThumbnail : ThumbTree, testing::Test {
    DriverPath *books = EnsureCategoryPath(&driver, "Books", node_category::kBook, node_subcategory::kBook);

    DriverPath *AddBook(const std::string &name, const std::string &location, const std::string &cover) {
        DriverPath *thumb = AddThumb(name, location, books);
        if (!cover.empty()) AddAttribute(thumb, "cover-image-path", cover.c_str());
        return thumb;
    }
    DriverPath *AddPacked(const std::string &cover, const std::vector<ZipBuilderEntry> &entries) {
        return AddBook("b.epub", Write("b.epub", BuildZip(entries)), cover);
    }
    // What comes of a thumb node: the one thumbnail with its attributes, or the number of an error.
    std::string Load(DriverPath *thumb) {
        const int32_t result = LoadBookThumbnail(&driver, thumb);
        if (result != 0) return std::to_string(result);
        EXPECT_LE(ChildCount(thumb), 1);
        return ChildCount(thumb) == 0 ? "(none)" : TreeText(ChildAt(thumb, 0), ChildNameAt(thumb, 0));
    }
};

std::string Small(const std::string &type, const std::string &location, const std::string &size) {
    return "small 4 4 44 " + (type.empty() ? "" : "thumb_type=" + type + " ") + "location=" + location +
           " st_size=" + size + "\n";
}

TEST_F(BookThumbnail, ACoverIsUnpackedOnceOrTheEntryForITunesInItsPlace) {
    const std::string unpacked = temp_folder.string() + "\\b.epub";
    const ZipBuilderEntry artwork = StoredEntry("iTunesArtwork", "artwork");
    const std::string pattern = "o/[a-z]{1}.jpg";  // fits an entry of another name
    DriverPath *packed = AddPacked("O/Cover.png", {DeflatedEntry("O/Cover.png", "cover")});
    EXPECT_EQ(Load(packed), Small(".png", unpacked + "\\O/Cover.png", "5"));
    EXPECT_EQ(Load(packed), "1");
    EXPECT_EQ(StreamOf("library/Books/b.epub/thumb/small"), "cover");
    EXPECT_EQ(Load(AddPacked(pattern, {StoredEntry("o/c.jpg", "c"), artwork})),
              Small(".jpg", unpacked + "/iTunesArtwork", "7"));
    EXPECT_EQ(ReadWholeFile(temp_folder / "b.epub/iTunesArtwork"), "artwork");
    fs::remove(temp_folder / "b.epub/iTunesArtwork");
    EXPECT_EQ(Load(AddPacked(pattern, {StoredEntry("o/c.jpg", "c")})),
              Small(".jpg", unpacked + "/iTunesArtwork", "0"));
    EXPECT_EQ(Load(AddPacked("iTunesArtwork", {artwork})), Small("", unpacked + "\\iTunesArtwork", "7"));
}

TEST_F(BookThumbnail, ABookThatIsAFolderHasItsCoverOnDiskAndOthersTellThatTheyHaveNone) {
    const std::string on_disk = Write("b.epub/images/cover.jpg", "12345");
    for (const std::string &path : {on_disk, Location("gone.jpg")}) {
        DriverPath *thumb = AddBook(path, Location("b.epub"), path);
        AddAttribute(thumb, "is_directory", "TRUE");
        EXPECT_EQ(Load(thumb), Small(".jpg", path, path == on_disk ? "5" : "0"));
    }
    std::filesystem::remove_all(media);
    EXPECT_EQ(Load(books), "-1");
    EXPECT_EQ(Load(AddPacked("cover.jpg", {StoredEntry("other.jpg", "x")})), "(none)");
    EXPECT_EQ(Load(AddPacked("cover.jpg", {StoredEntry("cover.jpg", "")})), "-1");
    const std::string rows[][3] = {{Location("a.pdf"), "", "(none)"},
                                   {Location("a.pdf"), "c.jpg", "-1"},
                                   {"\\epub", "c.jpg", "-1"},
                                   {"C:/a.epub", "c.jpg", "-1"},
                                   {Location("gone.epub"), "c.jpg", "(none)"}};
    for (const auto &[location, cover, result] : rows)
        EXPECT_EQ(Load(AddBook("x", location, cover)), result) << location << cover;
}

TEST_F(BookThumbnail, NothingIsUnpackedOrPointedToOutsideOfTheBooksFolder) {
    Write("secret.jpg", "secret");
    // A location from a library may mix its separators.
    Write("up.epub", BuildZip({StoredEntry("cover.jpg", "evil")}));
    EXPECT_EQ(Load(AddBook("up", Location("x") + "\\../up.epub", "cover.jpg")), "(none)");
    // With the folder and the separator one byte more than a temporary path may have.
    const size_t room = limits::kTempPathBytes.value - (temp_folder.string() + "\\b.epub\\").size();
    const std::string longest = std::string(250, 'n') + "/" + std::string(room - 255, 'n') + ".jpg";
    const std::vector<std::string> covers = {"../../evil.jpg", "..\\../media/secret.jpg",     "/etc/hostname",
                                             "C:\\evil.jpg",   "a/../../../media/secret.jpg", "n" + longest};
    for (const std::string &cover : covers)
        EXPECT_EQ(Load(AddPacked(cover, {StoredEntry(cover, "evil")})), "(none)") << cover;
    EXPECT_TRUE(fs::is_empty(temp_folder));
}

}  // namespace
