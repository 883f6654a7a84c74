#include "content/zip_extract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "tests/content/captured_log.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_builder.h"

namespace {

namespace fs = std::filesystem;

class ZipExtractTest : public ::testing::Test {
  protected:
    std::string WriteZip(const std::vector<ZipBuilderEntry> &entries) const {
        return folder_.Write("a.zip", BuildZip(entries)).string();
    }
    fs::path Out(const std::string &name = "") const { return folder_.path() / "out" / name; }

    TempFolder folder_;
};

TEST_F(ZipExtractTest, FirstEntryThatMatchesTheNameAsAPatternWins) {
    const std::string zip =
        WriteZip({StoredEntry("oebps/coverXjpg", "loose"), StoredEntry("oebps/cover.jpg", "exact"),
                  StoredEntry("x/OEBPS/cover.jpg", "not anchored"), StoredEntry("a(b", "bracket")});
    EXPECT_EQ(ExtractEntry(zip, "OEBPS\\cover.jpg", Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("oebps/coverXjpg")), "loose");
    EXPECT_FALSE(fs::exists(Out("oebps/cover.jpg")));
    EXPECT_EQ(ExtractEntry(zip, "cover.jpg", Out().string()), -2);
    EXPECT_EQ(ExtractEntry(zip, "oebps/cover", Out().string()), -2);
    EXPECT_EQ(ExtractEntry(zip, "a(b", Out().string()), -2);
    EXPECT_EQ(ExtractEntry(zip + "x", "oebps/cover.jpg", Out().string()), -1);
}

TEST_F(ZipExtractTest, SearchLeavesTheCursorOnTheEntryFound) {
    const std::string path =
        WriteZip({StoredEntry("\xFFnot UTF-8", "1"), StoredEntry("Payload/A.app/Info.plist", "2"),
                  StoredEntry("Payload/A.app/sub/Info.plist", "3")});
    const ZipReadHandle zip = OpenZipForRead(path);
    ASSERT_TRUE(zip);
    EXPECT_EQ(FindEntryByRegex(zip.get(), "^payload/[^/]+/info.plist$"), "Payload/A.app/Info.plist");
    EXPECT_EQ(ReadCurrentZipEntry(zip.get(), limits::kZipEntryBytes), "2");
    EXPECT_EQ(FindEntryByRegex(zip.get(), "Info.plist"), std::nullopt)
        << "a match begins at the first character";
    EXPECT_EQ(FindEntryByRegex(zip.get(), "Payload/"), "Payload/A.app/Info.plist") << "and may end anywhere";
    EXPECT_TRUE(LocateZipEntry(zip.get(), "PAYLOAD/a.app/SUB/info.plist"));
    EXPECT_EQ(ReadCurrentZipEntry(zip.get(), limits::kZipEntryBytes), "3");
    EXPECT_FALSE(LocateZipEntry(zip.get(), "Payload/A.app/InfoXplist"));
}

TEST_F(ZipExtractTest, UnpackingReplacesFilesAndKeepsFolders) {
    const std::string zip =
        WriteZip({StoredEntry("a/", ""), DeflatedEntry("a/b.txt", "new"),
                  StoredEntry("c\\d.txt", "backslash"), StoredEntry("./e//f.txt", "dot")});
    folder_.Write("out/a/b.txt", "old and longer");
    folder_.Write("out/a/kept.txt", "kept");
    ASSERT_EQ(UnzipAll(zip, Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("a/b.txt")), "new");
    EXPECT_EQ(ReadWholeFile(Out("a/kept.txt")), "kept");
    EXPECT_EQ(ReadWholeFile(Out("c/d.txt")), "backslash");
    EXPECT_EQ(ReadWholeFile(Out("e/f.txt")), "dot");
}

TEST_F(ZipExtractTest, ArchiveWithoutEntriesIsUnpacked) {
    const CapturedLog log;
    EXPECT_EQ(UnzipAll(WriteZip({}), Out().string()), 0);
    EXPECT_EQ(UnzipAll(folder_.Write("no.zip", "").string(), Out().string()), -2);
    EXPECT_EQ(UnzipAll(folder_.path().string(), Out().string()), -2);
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
}

TEST_F(ZipExtractTest, FailedEntryIsLoggedUnderTheArchive) {
    const std::string zip = WriteZip({StoredEntry("a", "file"), StoredEntry("b", "file")});
    folder_.Write("out/a/child", "a folder that is not empty stands in the way");
    const CapturedLog log;
    EXPECT_EQ(UnzipAll(zip, Out().string()), -3);
    EXPECT_THAT(log.lines(), ::testing::ElementsAre("decompress file \"" + zip + "\" failed\n"));
    EXPECT_FALSE(fs::exists(Out("b")));
}

TEST_F(ZipExtractTest, EntryToFileWantsTheExactNameAndReplacesTheTarget) {
    const std::string zip = WriteZip({StoredEntry("IconXpng", "other"), DeflatedEntry("Icon.png", "icon")});
    const std::string target = folder_.Write("icon.jpg", "old").string();
    EXPECT_EQ(ExtractEntryToFile(zip, "iCON.PNG", target), 0);
    EXPECT_EQ(ReadWholeFile(target), "icon");
    EXPECT_EQ(ExtractEntryToFile(zip, "Icon", target), -1);
    EXPECT_EQ(ExtractEntryToFile(zip, "Icon.png", (folder_.path() / "none" / "icon").string()), -1);
    EXPECT_EQ(ExtractEntryToFile(zip + "x", "Icon.png", target), -1);
    EXPECT_EQ(ReadWholeFile(target), "icon");
}

TEST_F(ZipExtractTest, EntryThatCannotBeOpenedCountsAsDone) {
    ZipBuilderEntry encrypted = StoredEntry("secret", "noise");
    encrypted.flags = 1;
    ZipBuilderEntry unknown = StoredEntry("unknown", "noise");
    unknown.method = 97;
    const std::string zip = WriteZip({encrypted, unknown, StoredEntry("plain", "text")});
    EXPECT_EQ(UnzipAll(zip, Out().string()), 0);
    EXPECT_FALSE(fs::exists(Out("secret")));
    EXPECT_FALSE(fs::exists(Out("unknown")));
    EXPECT_EQ(ReadWholeFile(Out("plain")), "text");
    EXPECT_EQ(ExtractEntryToFile(zip, "secret", Out("icon").string()), -1);
    EXPECT_FALSE(fs::exists(Out("icon")));
}

}  // namespace
