#include "artwork/book_thumbnail.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/limits.h"
#include "tests/artwork/thumb_tree.h"

namespace {

namespace fs = std::filesystem;

struct BookTree : ThumbTree {
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

TEST(BookThumbnail, ACoverIsUnpackedOnceOrTheEntryForITunesInItsPlace) {
    BookTree tree;
    const std::string temp = tree.temp_folder.string() + "\\b.epub";
    const ZipBuilderEntry artwork = StoredEntry("iTunesArtwork", "artwork");
    const std::string pattern = "o/[a-z]{1}.jpg";  // fits an entry of another name
    DriverPath *packed = tree.AddPacked("O/Cover.png", {DeflatedEntry("O/Cover.png", "cover")});
    EXPECT_EQ(tree.Load(packed), Small(".png", temp + "\\O/Cover.png", "5"));
    EXPECT_EQ(tree.Load(packed), "1");
    EXPECT_EQ(tree.StreamOf("library/Books/b.epub/thumb/small"), "cover");
    EXPECT_EQ(tree.Load(tree.AddPacked(pattern, {StoredEntry("o/c.jpg", "c"), artwork})),
              Small(".jpg", temp + "/iTunesArtwork", "7"));
    EXPECT_EQ(ReadWholeFile(tree.temp_folder / "b.epub/iTunesArtwork"), "artwork");
    fs::remove(tree.temp_folder / "b.epub/iTunesArtwork");
    EXPECT_EQ(tree.Load(tree.AddPacked(pattern, {StoredEntry("o/c.jpg", "c")})),
              Small(".jpg", temp + "/iTunesArtwork", "0"));
    EXPECT_EQ(tree.Load(tree.AddPacked("iTunesArtwork", {artwork})),
              Small("", temp + "\\iTunesArtwork", "7"));
}

TEST(BookThumbnail, ABookThatIsAFolderHasItsCoverOnDiskAndOthersTellThatTheyHaveNone) {
    BookTree tree;
    const std::string on_disk = tree.Write("b.epub/images/cover.jpg", "12345");
    for (const std::string &path : {on_disk, tree.Location("gone.jpg")}) {
        DriverPath *thumb = tree.AddBook(path, tree.Location("b.epub"), path);
        AddAttribute(thumb, "is_directory", "TRUE");
        EXPECT_EQ(tree.Load(thumb), Small(".jpg", path, path == on_disk ? "5" : "0"));
    }
    std::filesystem::remove_all(tree.media);
    EXPECT_EQ(tree.Load(tree.books), "-1");
    EXPECT_EQ(tree.Load(tree.AddPacked("cover.jpg", {StoredEntry("other.jpg", "x")})), "(none)");
    EXPECT_EQ(tree.Load(tree.AddPacked("cover.jpg", {StoredEntry("cover.jpg", "")})), "-1");
    const std::string rows[][3] = {{tree.Location("a.pdf"), "", "(none)"},
                                   {tree.Location("a.pdf"), "c.jpg", "-1"},
                                   {"\\epub", "c.jpg", "-1"},
                                   {"C:/a.epub", "c.jpg", "-1"},
                                   {tree.Location("gone.epub"), "c.jpg", "(none)"}};
    for (const auto &[location, cover, result] : rows)
        EXPECT_EQ(tree.Load(tree.AddBook("x", location, cover)), result) << location << cover;
}

TEST(BookThumbnail, NothingIsUnpackedOrPointedToOutsideOfTheBooksFolder) {
    BookTree tree;
    tree.Write("secret.jpg", "secret");
    // A location from a library may mix its separators.
    tree.Write("up.epub", BuildZip({StoredEntry("cover.jpg", "evil")}));
    EXPECT_EQ(tree.Load(tree.AddBook("up", tree.Location("x") + "\\../up.epub", "cover.jpg")), "(none)");
    // With the folder and the separator one byte more than a temporary path may have.
    const size_t room = limits::kTempPathBytes.value - (tree.temp_folder.string() + "\\b.epub\\").size();
    const std::string longest = std::string(250, 'n') + "/" + std::string(room - 255, 'n') + ".jpg";
    const std::vector<std::string> covers = {"../../evil.jpg", "..\\../media/secret.jpg",     "/etc/hostname",
                                             "C:\\evil.jpg",   "a/../../../media/secret.jpg", "n" + longest};
    for (const std::string &cover : covers)
        EXPECT_EQ(tree.Load(tree.AddPacked(cover, {StoredEntry(cover, "evil")})), "(none)") << cover;
    EXPECT_TRUE(fs::is_empty(tree.temp_folder));
}

}  // namespace
