#include "artwork/book_thumbnail.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/artwork/thumb_tree.h"
#include "tests/support/zip_builder.h"

using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

struct BookTree : ThumbTree {
    DriverPath *books = EnsureCategoryPath(&driver, "Books", node_category::kBook, node_subcategory::kBook);

    DriverPath *AddBook(const std::string &name, const std::string &location, const std::string &cover) {
        DriverPath *thumb = AddThumb(name, location, books);
        if (!cover.empty()) AddAttribute(thumb, "cover-image-path", cover.c_str());
        return thumb;
    }
    DriverPath *AddPacked(const std::string &name, const std::string &cover,
                          const std::vector<ZipBuilderEntry> &entries) {
        return AddBook(name, Write(name, BuildZip(entries)), cover);
    }
    std::string Temp(const std::string &rest) const { return temp.path().string() + rest; }
    // The location of the one thumbnail, if there is one.
    static std::string Cover(const DriverPath *thumb) {
        return ChildCount(thumb) == 0 ? "(none)" : Text(ChildAt(thumb, 0), "location");
    }
};

TEST(BookThumbnail, ACoverIsUnpackedOnTheFirstWalkIntoIt) {
    BookTree tree;
    DriverPath *thumb =
        tree.AddPacked("A Book.EPUB", "OEBPS/Cover.png", {DeflatedEntry("OEBPS/Cover.png", "cover bytes")});
    EXPECT_EQ(tree.StreamOf("library/Books/A Book.EPUB/thumb/small"), "cover bytes");
    EXPECT_EQ(BookTree::Cover(thumb), tree.Temp("\\A Book.EPUB\\OEBPS/Cover.png"));
    EXPECT_THAT(ThumbTree::Names(thumb), ElementsAre("small"));
    const DriverPath *small = ChildAt(thumb, 0);
    EXPECT_EQ(std::vector({small->kind, small->category, small->subcategory}), std::vector({4, 4, 44}));
    EXPECT_EQ(ThumbTree::Text(small, "thumb_type"), ".png");
    EXPECT_EQ(ThumbTree::Text(small, "st_size"), "11");
    EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 1);
}

TEST(BookThumbnail, TheEntryForITunesStandsInForACoverThatIsNotThere) {
    BookTree tree;
    const ZipBuilderEntry artwork = StoredEntry("iTunesArtwork", "artwork");
    // As a pattern the reference fits an entry of another name.
    DriverPath *thumb =
        tree.AddPacked("b.epub", "OEBPS/[a-z]{1}.jpg", {StoredEntry("OEBPS/c.jpg", "c"), artwork});
    EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
    EXPECT_EQ(BookTree::Cover(thumb), tree.Temp("\\b.epub/iTunesArtwork"));
    EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, 0), "thumb_type"), ".jpg");
    EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, 0), "st_size"), "7");
    EXPECT_EQ(tree.StreamOf("library/Books/b.epub/thumb/small"), "artwork");
    thumb = tree.AddPacked("c.epub", "OEBPS/[a-z]{1}.jpg", {StoredEntry("OEBPS/c.jpg", "c")});
    EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
    EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, 0), "st_size"), "0");
    EXPECT_EQ(tree.StreamOf("library/Books/c.epub/thumb/small"), "(does not open)");
    // As the cover itself it has no extension.
    thumb = tree.AddPacked("d.epub", "iTunesArtwork", {artwork});
    EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
    EXPECT_EQ(BookTree::Cover(thumb), tree.Temp("\\d.epub\\iTunesArtwork"));
    EXPECT_EQ(FindAttribute(ChildAt(thumb, 0), "thumb_type"), std::nullopt);
}

TEST(BookThumbnail, ABookThatIsAFolderHasItsCoverOnDisk) {
    BookTree tree;
    const std::string cover = tree.Write("b.epub/images/cover.jpg", "12345");
    for (const std::string &path : {cover, tree.Location("gone.jpg")}) {
        DriverPath *thumb = tree.AddBook(path, tree.Location("b.epub"), path);
        AddAttribute(thumb, "is_directory", "TRUE");
        EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
        EXPECT_EQ(BookTree::Cover(thumb), path);
        EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, 0), "st_size"), path == cover ? "5" : "0");
        EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, 0), "thumb_type"), ".jpg");
    }
}

TEST(BookThumbnail, WhatCannotHaveACoverTellsSo) {
    BookTree tree;
    const auto load = [&](DriverPath *thumb) { return LoadBookThumbnail(&tree.driver, thumb); };
    EXPECT_EQ(load(nullptr), -1);
    EXPECT_EQ(load(tree.books), -1);
    EXPECT_EQ(load(tree.AddBook("1", tree.Location("a.pdf"), "")), 0);
    EXPECT_EQ(load(tree.AddBook("2", "", "cover.jpg")), 0);
    EXPECT_EQ(load(tree.AddBook("3", tree.Location("a.pdf"), "cover.jpg")), -1);
    EXPECT_EQ(load(tree.AddBook("4", "\\epub", "cover.jpg")), -1);
    EXPECT_EQ(load(tree.AddBook("5", "C:/a.epub", "cover.jpg")), -1);
    EXPECT_EQ(load(tree.AddBook("6", tree.Location("gone.epub"), "cover.jpg")), 0);
    EXPECT_EQ(load(tree.AddPacked("7.epub", "cover.jpg", {StoredEntry("other.jpg", "x")})), 0);
    EXPECT_EQ(load(tree.AddPacked("8.epub", "cover.jpg", {StoredEntry("cover.jpg", "")})), -1);
    for (int32_t i = 0; i < ChildCount(tree.books); ++i)
        EXPECT_EQ(ChildCount(ChildAt(ChildAt(tree.books, i), 0)), 0) << i;
}

TEST(BookThumbnail, NothingIsUnpackedOrPointedToOutsideOfTheBooksFolder) {
    BookTree tree;
    const std::string secret = "../" + tree.files.path().filename().string() + "/secret.jpg";
    tree.Write("secret.jpg", "secret");
    const std::vector<std::string> covers = {
        "../../evil.jpg",       "..\\" + secret,
        "/etc/hostname",        "C:\\evil.jpg",
        "a/../../../" + secret, std::string(250, 'n') + "/" + std::string(250, 'n') + ".jpg"};
    for (const std::string &cover : covers) {
        DriverPath *thumb = tree.AddPacked("evil.epub", cover, {StoredEntry(cover, "evil")});
        EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
        EXPECT_EQ(BookTree::Cover(thumb), "(none)") << cover;
    }
    // A location from a library may mix its separators.
    const std::string archive = BuildZip({StoredEntry("cover.jpg", "evil")});
    tree.Write("up.epub", archive);
    DriverPath *thumb = tree.AddBook("up", tree.Location("x") + "\\../up.epub", "cover.jpg");
    EXPECT_EQ(LoadBookThumbnail(&tree.driver, thumb), 0);
    EXPECT_EQ(ChildCount(thumb), 0);
    EXPECT_TRUE(fs::is_empty(tree.temp.path()));
}

}  // namespace
