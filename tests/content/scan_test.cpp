// The scans of the folders of books and of applications.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "content/application_scan.h"
#include "content/book.h"
#include "content/book_scan.h"
#include "driver/scanned_entries.h"
#include "tests/content/captured_log.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"

namespace {

namespace fs = std::filesystem;

struct ScanTree : MediaTree {
    CapturedLog log;
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

// The name and the author, or the identifier, as another reader found them in the files of others.
TEST(Scan, ShowsWhatFilesOfOthersHold) {
    const std::tuple<const char *, const char *, const char *> rows[] = {
        {"epub/epubcheck-epub2-ocf-minimal-valid.epub", "Minimal EPUB 2.0", "-"},
        {"epub/epubcheck-ocf-filename-utf8-valid.epub", "Minimal EPUB 3.0", "-"},
        {"epub/epubcheck-ocf-zip-mimetype-entry-extra-field-error.epub", "Minimal EPUB 3.0", "-"},
        {"epub/epubjs-alice.epub", "Alice's Adventures in Wonderland", "Lewis Carroll"},
        {"epub/folder-epub-tests-ocf-package_arbitrary.epub", "ocf-package_arbitrary", "Dave Cramer"},
        {"pdf/exiftool-PDF.pdf", "exiftool-PDF", "-"},
        {"ipa/app-info-ipad.ipa", "app-info-ipad.ipa", "com.icyleaf.bundle"}};
    for (const auto &[file, name, more] : rows) {
        const fs::path sample = fs::path(SAMPLES_FOLDER) / file;
        if (!fs::exists(sample)) GTEST_SKIP() << "no samples";
        ScanTree tree;
        const bool is_app = sample.extension() == ".ipa";
        const fs::path folder = tree.folder.path() / "media" / (is_app ? "Mobile Applications" : "Books");
        fs::create_directories(folder);
        fs::copy(sample, folder / sample.filename(), fs::copy_options::recursive);
        tree.Scan();
        DriverPath *root = tree.At({is_app ? "app" : "Books"});
        if (fs::is_directory(sample)) AddLocalBook(root, BackslashPath(folder / sample.filename()));
        const DriverPath *entry = FindChild(root, sample.filename().string());
        EXPECT_EQ(FindAttribute(entry, "name"), name);
        EXPECT_EQ(FindAttribute(entry, is_app ? "bundleId" : "artist").value_or("-"), more) << file;
    }
}

}  // namespace
