#include "driver/scanned_entries.h"

#include <gtest/gtest.h>

#include <string>

#include "driver/path_lookup.h"
#include "tests/driver/tree_fixture.h"

namespace {

struct ScannedTree : BareTree {
    DriverPath *books = EnsureCategoryPath(&driver, "Books", node_category::kBook, node_subcategory::kBook);

    DriverPath *AddScanned(const std::string &name, const std::string &location) {
        DriverPath *entry = CreateScannedEntry(&driver, node_kind::kFile, 5, 50);
        AddAttribute(entry, "location", location.c_str());
        AppendChild(books, name.c_str(), entry);
        return entry;
    }
    DriverPath *AddFromLibrary(const std::string &name, const std::string &location) {
        DriverPath *track = AddTrack(name, "");
        AddAttribute(track, "location", location.c_str());
        Hold(books, name, track);
        return track;
    }
    DriverPath *Open(const char *path) {
        DriverPath *found = nullptr;
        EXPECT_EQ(OpenDriverPath(&driver, 0, path, &found), 0) << path;
        return found;
    }
};

TEST(ScannedEntries, RemovalLeavesWhatTheLibraryListsUnderItsName) {
    ScannedTree tree;
    for (int i = 0; i < 40; ++i) {
        tree.AddScanned("scanned" + std::to_string(i), "C:\\Books\\x");
        if (i % 4 == 0) tree.AddFromLibrary("own" + std::to_string(i), "C:/Books/y");
    }
    EXPECT_EQ(TakeScannedId(&tree.driver), 5000000);
    DriverPath *kept = FindChild(tree.books, "own36");
    RemoveScannedEntries(&tree.driver);
    EXPECT_EQ(ChildCount(tree.books), 10);
    EXPECT_EQ(FindChild(tree.books, "own36"), kept);
    EXPECT_EQ(FindChild(tree.books, "scanned39"), nullptr);
    EXPECT_EQ(TakeScannedId(&tree.driver), 5000000);
    EXPECT_EQ(EnsureCategoryPath(&tree.driver, "Books", 5, 50), tree.books);
}

// The address sanitizer and the leak checker see to the rest.
TEST(ScannedEntries, WhatAHostHasOpenStaysReadableUntilItsLastClose) {
    ScannedTree tree;
    DriverPath *entry = tree.AddScanned("a.epub", "C:\\Books\\a.epub");
    tree.AddList(entry, "thumb", "");
    DriverPath *opened = tree.Open("library/Books/a.epub");
    DriverPath *thumb = tree.Open("library/Books/a.epub/thumb");
    DriverPath *never_closed = tree.AddScanned("b.epub", "C:\\Books\\b.epub");
    tree.Open("library/Books/b.epub");
    tree.Open("library/Books/a.epub");
    RemoveScannedEntries(&tree.driver);
    EXPECT_TRUE(never_closed->dropped);
    DriverPath *found = nullptr;
    EXPECT_EQ(OpenDriverPath(&tree.driver, 0, "library/Books/a.epub", &found), -2);
    EXPECT_EQ(CloseDriverPath(opened), 0);
    DriverPathInfo info = {};
    ASSERT_EQ(GetDriverPathInfo(opened, &info), 0);
    EXPECT_STREQ(info.open_path, "library/Books/a.epub");
    EXPECT_EQ(FindAttribute(opened, "location"), "C:\\Books\\a.epub");
    EXPECT_STREQ(ChildNameAt(opened, 0), "thumb");
    EXPECT_EQ(CloseDriverPath(opened), 0);
    EXPECT_EQ(tree.driver.dropped_paths.size(), 2U);
    EXPECT_EQ(CloseDriverPath(thumb), 0);
    EXPECT_EQ(tree.driver.dropped_paths.size(), 1U);
}

TEST(ScannedEntries, AnEntryWaitsForItsFileUnlessAHostHasItOpenOrTheFileChanges) {
    ScannedTree tree;
    const FileStamp stamp{1, 2, 3};
    DriverPath *kept = tree.AddScanned("kept", "C:\\kept");
    for (const char *name : {"changed", "gone", "opened"})
        KeepEntry(tree.AddScanned(name, std::string("C:\\") + name), std::string("C:\\") + name, stamp);
    KeepEntry(kept, "C:\\kept", stamp);
    EXPECT_EQ(TakeKeptEntry(&tree.driver, "C:\\kept", stamp), nullptr) << "still in the tree";
    DriverPath *opened = tree.Open("library/Books/opened");
    RemoveScannedEntries(&tree.driver);
    EXPECT_EQ(ChildCount(tree.books), 0);
    EXPECT_EQ(TakeKeptEntry(&tree.driver, "C:\\opened", stamp), nullptr);
    EXPECT_EQ(TakeKeptEntry(&tree.driver, "C:\\changed", {1, 2, 4}), nullptr);
    KeepEntry(tree.AddScanned("changed", "C:\\changed"), "C:\\changed", {1, 2, 4});
    EXPECT_EQ(TakeKeptEntry(&tree.driver, "C:\\kept", stamp), kept);
    AppendChild(tree.books, "kept", kept);
    ReleaseKeptEntries(&tree.driver);
    EXPECT_EQ(tree.driver.scanned_files.size(), 2U);
    CloseDriverPath(opened);
}

TEST(IsLocationKnown, FindsWhatTheLibraryListsInAnyCaseAndWithOrWithoutTheFirstSlash) {
    ScannedTree tree;
    tree.AddFromLibrary("1.epub", "home/user/Books/A Book.epub");
    tree.AddScanned("b.epub", "\\home\\user\\Books\\B.epub");
    EXPECT_TRUE(IsLocationKnown(tree.books, "\\home\\user\\books\\a book.EPUB"));
    EXPECT_FALSE(IsLocationKnown(tree.books, "\\home\\user\\Books\\B.epub")) << "added by a scan";
    EXPECT_FALSE(IsLocationKnown(tree.books, "\\user\\Books\\A Book.epub"));
    // What comes later is found too, and what has gone is not.
    DriverPath *late = tree.AddScanned("c.epub", "home/c.epub");
    EXPECT_TRUE(IsLocationKnown(tree.books, "/home/c.epub"));
    ASSERT_EQ(ChildAt(tree.books, 2), late);
    DropChild(tree.books, 2);
    EXPECT_FALSE(IsLocationKnown(tree.books, "/home/c.epub"));
    EXPECT_TRUE(IsLocationKnown(tree.books, "/home/user/Books/A Book.epub"));
}

}  // namespace
