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
#include "tests/support/collected_log.h"

namespace {

namespace fs = std::filesystem;

struct ScanTree : MediaTree {
    CollectedLog log;
    std::string Scan() {
        EXPECT_EQ(ScanBooks(&driver), 0);
        EXPECT_EQ(ScanApps(&driver), 0);
        return TreeText(GetLibraryRoot(&driver), "");
    }
};

TEST(Scan, ListsWhatTheLibraryDoesNotAndTheSameAgain) {
    ScanTree tree;
    tree.Scan();
    const std::string book = Archive(Epub("p.opf", Package("<dc:title>B</dc:title>", "")));
    const std::string app = Archive({{"Payload/A/Info.plist", "CFBundleIdentifier = b;"}});
    const std::pair<DriverPath *, std::string> known[] = {
        {tree.At({"Books"}), "books/Known.epub"}, {tree.At({"app"}), "mobile applications/Known.IPA"}};
    for (const auto &[root, file] : known) {
        ASSERT_NE(root, nullptr) << "made without any file";
        DriverPath *track = tree.AddTrack("7", "");
        AddAttribute(track, "location", (tree.folder.path() / "media" / file).string().substr(1).c_str());
        BareTree::Hold(root, "7", track);
    }
    for (const char *name : {"Known.epub", "sub/deep.epub/B: \"b\"?.EPUB", "sub/c.pdf", "song.mp3"})
        tree.Write(std::string("Books/") + name, book);
    for (const char *name : {"Known.ipa", "one.ipa", "two.zip", "sub/three.ipa"})
        tree.Write(std::string("Mobile Applications/") + name, app);
    tree.Write("Mobile Applications/four.ipa", "no archive");
    const std::string first = tree.Scan();
    EXPECT_EQ(ChildCount(tree.At({"Books"})), 3) << first;
    EXPECT_EQ(ChildCount(tree.At({"app"})), 3) << first;
    EXPECT_EQ(FindAttribute(tree.At({"Books", "B: \"b\"?.EPUB"}), "name"), "B");
    EXPECT_NE(tree.At({"app", "one.ipa"}), nullptr);
    EXPECT_EQ(tree.At({"app", "two.zip"})->subcategory, 0);
    RemoveScannedEntries(&tree.driver);
    EXPECT_EQ(ChildCount(tree.At({"Books"})), 1);
    EXPECT_EQ(tree.Scan(), first);
    LibraryDriver without_tree;
    EXPECT_EQ(ScanBooks(&without_tree), -1);
}

// What another reader found in the files of others.
TEST(Scan, ShowsWhatFilesOfOthersHold) {
    const fs::path samples = SAMPLES_FOLDER;
    if (!fs::exists(samples / "epub") || !fs::exists(samples / "ipa")) GTEST_SKIP() << "no samples";
    ScanTree tree;
    const fs::path media = tree.folder.path() / "media";
    fs::create_directory(media);
    fs::copy(samples / "epub", media / "Books", fs::copy_options::recursive);
    fs::copy(samples / "ipa", media / "Mobile Applications", fs::copy_options::recursive);
    const std::string all = tree.Scan();
    for (const char *text :
         {"name=Minimal EPUB 2.0\n", "artist=Lewis Carroll", "name=Alice's Adventures in Wonderland",
          " name=epubcheck-ocf-zip-unreadable-empty-fatal\n", "bundleId=com.icyleaf.bundle ",
          "bundleVersion=1 media_has_thumb=true name=made-iphone-with-iTunesArtwork.ipa genre=Utilities\n"})
        EXPECT_THAT(all, testing::HasSubstr(text));
}

}  // namespace
