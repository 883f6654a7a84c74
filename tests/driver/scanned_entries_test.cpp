#include "driver/scanned_entries.h"

#include <gtest/gtest.h>

#include "driver/path_lookup.h"
#include "tests/driver/tree_fixture.h"

namespace {

struct ScannedEntries : BareTree, testing::Test {
    DriverPath *books = EnsureCategoryPath(&driver, "Books", node_category::kBook, node_subcategory::kBook);

    // Its file has the same name.
    DriverPath *AddScanned(const std::string &name) {
        LoosePath entry = CreateScannedEntry(&driver, node_kind::kFile, 5, 50);
        AddAttribute(entry.get(), "location", name.c_str());
        return AppendChild(books, name.c_str(), std::move(entry));
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

TEST_F(ScannedEntries, RemovalLeavesWhatTheLibraryListsUnderItsName) {
    for (int i = 0; i < 40; ++i)
        i % 4 == 0 ? AddFromLibrary(std::to_string(i), "C:/y") : AddScanned(std::to_string(i));
    DriverPath *kept = FindChild(books, "36");
    EXPECT_EQ(TakeScannedId(&driver), 5000000);
    RemoveScannedEntries(&driver);
    EXPECT_EQ(TakeScannedId(&driver), 5000000);
    EXPECT_EQ(ChildCount(books), 10);
    EXPECT_EQ(FindChild(books, "36"), kept);
    EXPECT_EQ(FindChild(books, "39"), nullptr);
}

// The address sanitizer and the leak checker see to the rest.
TEST_F(ScannedEntries, WhatAHostHasOpenStaysReadableUntilItsLastClose) {
    AddList(AddScanned("a"), "thumb", "");
    DriverPath *opened = Open("library/Books/a");
    DriverPath *thumb = Open("library/Books/a/thumb");
    AddScanned("never closed");
    Open("library/Books/never closed");
    Open("library/Books/a");
    RemoveScannedEntries(&driver);
    EXPECT_EQ(ChildCount(books), 0);
    EXPECT_EQ(CloseDriverPath(opened), 0);
    EXPECT_STREQ(opened->open_path, "library/Books/a");
    EXPECT_EQ(FindAttribute(opened, "location"), "a");
    EXPECT_STREQ(ChildNameAt(opened, 0), "thumb");
    CloseDriverPath(opened);
    EXPECT_EQ(driver.dropped_paths.size(), 2U);
    EXPECT_EQ(CloseDriverPath(thumb), 0);
    EXPECT_EQ(driver.dropped_paths.size(), 1U);
}

TEST_F(ScannedEntries, AnEntryWaitsForItsFileUnlessAHostHasItOpenOrTheFileChanges) {
    const FileStamp stamp{1, 2, 3};
    for (const std::string name : {"kept", "changed", "gone", "opened"})
        KeepEntry(AddScanned(name), name, stamp);
    DriverPath *kept = FindChild(books, "kept");
    EXPECT_EQ(TakeKeptEntry(&driver, "kept", stamp), nullptr) << "still in the tree";
    DriverPath *opened = Open("library/Books/opened");
    RemoveScannedEntries(&driver);
    EXPECT_EQ(ChildCount(books), 0);
    EXPECT_EQ(TakeKeptEntry(&driver, "opened", stamp), nullptr);
    EXPECT_EQ(TakeKeptEntry(&driver, "changed", {1, 2, 4}), nullptr);
    KeepEntry(AddScanned("changed"), "changed", {1, 2, 4});
    LoosePath taken = TakeKeptEntry(&driver, "kept", stamp);
    EXPECT_EQ(taken.get(), kept);
    EXPECT_EQ(TakeKeptEntry(&driver, "kept", stamp), nullptr) << "taken";
    KeepEntry(AppendChild(books, "kept", std::move(taken)), "kept", stamp);
    ReleaseKeptEntries(&driver);
    EXPECT_EQ(driver.scanned_files.size(), 2U);
    CloseDriverPath(opened);
}

TEST_F(ScannedEntries, ALocationOfTheLibraryIsKnownInAnyCaseAndWithOrWithoutTheFirstSlash) {
    const auto is_known = [this](const char *location) { return IsLocationKnown(books, location); };
    AddFromLibrary("1.epub", "home/user/Books/A Book.epub");
    AddScanned("\\home\\b.epub");
    EXPECT_TRUE(is_known("\\home\\user\\books\\a book.EPUB"));
    EXPECT_FALSE(is_known("\\home\\b.epub")) << "added by a scan";
    EXPECT_FALSE(is_known("\\user\\Books\\A Book.epub"));
    // What comes later is found too, and what has gone is not.
    AddScanned("home/c.epub");
    EXPECT_TRUE(is_known("/home/c.epub"));
    DropChild(books, 2);
    EXPECT_FALSE(is_known("/home/c.epub"));
    EXPECT_TRUE(is_known("/home/user/Books/A Book.epub"));
}

}  // namespace
