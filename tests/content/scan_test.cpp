// The scans of the folders of books and of applications.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "content/application_scan.h"
#include "content/book_scan.h"
#include "driver/scanned_entries.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"

namespace {

namespace fs = std::filesystem;

struct Scan : MediaTree, testing::Test {
    std::string Text() {
        EXPECT_EQ(ScanBooks(&driver), 0);
        EXPECT_EQ(ScanApps(&driver), 0);
        return TreeText(GetLibraryRoot(&driver), "");
    }
};

TEST_F(Scan, ListsWhatTheLibraryDoesNotAndTheSameAgain) {
    Text();
    const std::string book = Archive(Epub("p.opf", Package("<dc:title>B</dc:title>", "")));
    const std::string app = Archive({{"Payload/A/Info.plist", "CFBundleIdentifier = b;"}});
    const std::pair<DriverPath *, std::string> known[] = {
        {At("library/Books"), "books/Known.epub"}, {At("library/app"), "mobile applications/Known.IPA"}};
    for (const auto &[root, file] : known) {
        ASSERT_NE(root, nullptr) << "made without any file";
        DriverPath *track = AddTrack("7", "");
        AddAttribute(track, "location", (folder.path() / "media" / file).string().substr(1).c_str());
        BareTree::Hold(root, "7", track);
    }
    for (const char *name : {"Known.epub", "sub/deep.epub/B: \"b\"?.EPUB", "sub/c.pdf", "song.mp3"})
        Write(std::string("Books/") + name, book);
    for (const char *name : {"Known.ipa", "one.ipa", "two.zip", "sub/three.ipa"})
        Write(std::string("Mobile Applications/") + name, app);
    Write("Mobile Applications/four.ipa", "no archive");
    const std::string first = Text();
    EXPECT_EQ(ChildCount(At("library/Books")), 3) << first;
    EXPECT_EQ(ChildCount(At("library/app")), 3) << first;
    EXPECT_EQ(FindAttribute(At("library/Books/B: \"b\"?.EPUB"), "name"), "B");
    EXPECT_NE(At("library/app/one.ipa"), nullptr);
    EXPECT_EQ(At("library/app/two.zip")->subcategory, 0);
    RemoveScannedEntries(&driver);
    EXPECT_EQ(ChildCount(At("library/Books")), 1);
    EXPECT_EQ(Text(), first);
    LibraryDriver without_tree;
    EXPECT_EQ(ScanBooks(&without_tree), -1);
}

// What another reader found in the files of others.
TEST_F(Scan, ShowsWhatFilesOfOthersHold) {
    const fs::path samples = SAMPLES_FOLDER;
    if (!fs::exists(samples / "epub") || !fs::exists(samples / "ipa")) GTEST_SKIP() << "no samples";
    const fs::path media = folder.path() / "media";
    fs::create_directory(media);
    fs::copy(samples / "epub", media / "Books", fs::copy_options::recursive);
    fs::copy(samples / "ipa", media / "Mobile Applications", fs::copy_options::recursive);
    const std::string all = Text();
    for (const char *text :
         {"name=Minimal EPUB 2.0\n", "artist=Lewis Carroll", "name=Alice's Adventures in Wonderland",
          " name=epubcheck-ocf-zip-unreadable-empty-fatal\n", "bundleId=com.icyleaf.bundle ",
          "bundleVersion=1 media_has_thumb=true name=made-iphone-with-iTunesArtwork.ipa genre=Utilities\n"})
        EXPECT_THAT(all, testing::HasSubstr(text));
}

}  // namespace
