#include "content/zip_write.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_extract.h"
#include "tests/content/captured_log.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_builder.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::vector<std::string> EntryNames(const std::string &path) {
    std::vector<std::string> names;
    const ZipReadHandle zip = OpenZipForRead(path);
    if (!zip) return {"no archive"};
    for (ZipCursor cursor(zip.get()); cursor.Valid(); cursor.Next())
        names.push_back(CurrentZipEntry(zip.get())->name);
    return names;
}

class ZipWriteTest : public ::testing::Test {
  protected:
    ZipWriteTest() : tree_((folder_.path() / "tree").string()), zip_((folder_.path() / "a.zip").string()) {
        fs::create_directory(tree_);
    }
    void ExpectOnlyTreeAndZip() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder_.path()))
            names.push_back(entry.path().filename().string());
        EXPECT_THAT(names, UnorderedElementsAre("tree", "a.zip"));
    }

    TempFolder folder_;
    std::string tree_;
    std::string zip_;
};

TEST_F(ZipWriteTest, EmptyFolderGivesAnArchiveWithoutEntries) {
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_EQ(ReadWholeFile(zip_), BuildZip({}));
}

TEST_F(ZipWriteTest, TopOfTheTreeHasNoEntry) {
    folder_.Write("tree/a/b.txt", "text");
    EXPECT_EQ(ZipFolder(tree_ + "\\", zip_), 0);
    EXPECT_THAT(EntryNames(zip_), ElementsAre("a/", "a/b.txt"));
}

TEST_F(ZipWriteTest, HeadersCarryNoDateAndAllowZip64) {
    // Bytes that are no text: minizip marks an entry that it takes for text.
    folder_.Write("tree/a", Zeros(5000));
    ASSERT_EQ(ZipFolder(tree_, zip_), 0);
    // Local header: signature 0, version needed 4, flags 6, method 8, time 10, date 12, name length 26, extra
    // length 28, name 30, extra.
    const std::string bytes = ReadWholeFile(zip_);
    ASSERT_GT(bytes.size(), 33U);
    EXPECT_EQ(bytes.substr(0, 6), std::string("PK\3\4\x2D\0", 6));
    EXPECT_EQ(bytes.substr(6, 8), std::string("\0\0\x08\0\0\0\0\0", 8));
    EXPECT_EQ(bytes.substr(31, 2), std::string("\1\0", 2)) << "the extra field of zip64";
    EXPECT_LT(bytes.size(), 500U);
    const ZipReadHandle zip = OpenZipForRead(zip_);
    ASSERT_EQ(unzGoToFirstFile(zip.get()), UNZ_OK);
    unz_file_info64 info;
    ASSERT_EQ(unzGetCurrentFileInfo64(zip.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0), UNZ_OK);
    EXPECT_EQ(info.dosDate, 0U);
    EXPECT_EQ(info.internal_fa, 0U);
    EXPECT_EQ(info.external_fa, 0U);
    EXPECT_EQ(info.size_file_comment, 0U);
}

TEST_F(ZipWriteTest, RoundTripKeepsEveryByte) {
    std::string noise;
    for (unsigned i = 0, state = 1; i < 300000; ++i, state = state * 1664525 + 1013904223)
        noise += static_cast<char>(state >> 24);
    const std::vector<std::pair<std::string, std::string>> files = {
        {"mimetype", "application/epub+zip"},
        {"empty", ""},
        {"OEBPS/noise", noise},
        {"OEBPS/\xC3\xA9 name/1024", noise.substr(0, 1024)},
        {"OEBPS/1025", noise.substr(0, 1025)}};
    for (const auto &[name, bytes] : files)
        folder_.Write("tree/" + name, bytes);
    ASSERT_EQ(ZipFolder(tree_, zip_), 0);
    ASSERT_EQ(UnzipAll(zip_, (folder_.path() / "out").string()), 0);
    for (const auto &[name, bytes] : files)
        EXPECT_TRUE(ReadWholeFile(folder_.path() / "out" / name) == bytes) << name;
}

TEST_F(ZipWriteTest, OldArchiveIsReplaced) {
    folder_.Write("a.zip", std::string(100000, 'x'));
    folder_.Write("tree/new", "new");
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_THAT(EntryNames(zip_), ElementsAre("new"));
    ExpectOnlyTreeAndZip();
}

TEST_F(ZipWriteTest, FailureLeavesTheOldArchiveAndNothingNew) {
    folder_.Write("a.zip", "old");
    const CapturedLog log;
    EXPECT_EQ(ZipFolder(tree_ + "/missing", zip_), -3);
    EXPECT_EQ(ReadWholeFile(zip_), "old");
    ExpectOnlyTreeAndZip();
    const std::string nowhere = tree_ + "/missing/b.zip";
    EXPECT_EQ(ZipFolder(tree_, nowhere), -2);
    EXPECT_THAT(log.lines(), ElementsAre("compress to \"" + zip_ + "\" failed\n",
                                         "create zip file \"" + nowhere + "\" failed\n"));
}

TEST_F(ZipWriteTest, FolderInTheArchivesPlaceIsAFailure) {
    fs::create_directory(zip_);
    EXPECT_LT(ZipFolder(tree_, zip_), 0);
    ExpectOnlyTreeAndZip();
}

TEST_F(ZipWriteTest, LongNameOfAFolderIsKept) {
    const std::string zip = (folder_.path() / std::string(255, 'n')).string();
    EXPECT_EQ(ZipFolder(tree_, zip), 0);
    EXPECT_EQ(ReadWholeFile(zip), BuildZip({}));
}

TEST_F(ZipWriteTest, LinksThatFormACycleAreWalkedOnce) {
    folder_.Write("tree/a/b/file", "1");
    fs::create_directory_symlink(tree_, tree_ + "/a/b/top");
    fs::create_directory_symlink("..", tree_ + "/a/b/up");
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_THAT(EntryNames(zip_), UnorderedElementsAre("a/", "a/b/", "a/b/file"));
}

TEST_F(ZipWriteTest, LinksThatMultiplyEndAtTheEntryLimit) {
    // Each folder holds two links to the next: 2^17 paths without any cycle.
    for (int i = 0; i < 17; ++i) {
        const fs::path level = folder_.path() / ("level" + std::to_string(i));
        fs::create_directory(level);
        for (const char *link : {"x", "y"})
            fs::create_directory_symlink("../level" + std::to_string(i + 1), level / link);
    }
    EXPECT_EQ(ZipFolder((folder_.path() / "level0").string(), zip_), -6);
    EXPECT_FALSE(fs::exists(zip_));
}

TEST_F(ZipWriteTest, PipeAndDanglingLinkArePassedOver) {
    ASSERT_EQ(mkfifo((tree_ + "/pipe").c_str(), 0600), 0);
    fs::create_symlink("pipe", tree_ + "/link");
    fs::create_symlink("nowhere", tree_ + "/dangling");
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_EQ(ReadWholeFile(zip_), BuildZip({}));
}

// A folder that lies too deep is a child that fails.
TEST_F(ZipWriteTest, OnlyTheLastChildsFailureCounts) {
    fs::path deep = fs::path(tree_) / "deep";
    for (int i = 0; i < 200; ++i)
        deep /= "d";
    fs::create_directories(deep);
    EXPECT_EQ(ZipFolder(tree_, zip_), -5);
    for (int i = 0; i < 8; ++i) {
        folder_.Write("tree/file" + std::to_string(i), "1");
        std::string last;
        for (const auto &entry : fs::directory_iterator(tree_))
            last = entry.path().filename().string();
        EXPECT_EQ(ZipFolder(tree_, zip_), last == "deep" ? -5 : 0) << "with " << last << " as the last";
    }
}

TEST_F(ZipWriteTest, FileThatHoldsLessThanItsSizeIsPackedShorter) {
    // The kernel gives this file the size of a page and a line of text.
    const fs::path shrunk = "/sys/devices/system/cpu/online";
    std::error_code none;
    const std::string text = ReadWholeFile(shrunk);
    const uintmax_t size = fs::file_size(shrunk, none);
    if (none || size <= text.size()) GTEST_SKIP() << "no file here holds less than its size";
    fs::create_symlink(shrunk, tree_ + "/file");
    const CapturedLog log;
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_THAT(log.lines(), ElementsAre("total = " + std::to_string(text.size()) +
                                         ", size = " + std::to_string(size) + "\n"));
    EXPECT_EQ(ExtractEntryToFile(zip_, "file", zip_ + ".file"), 0);
    EXPECT_EQ(ReadWholeFile(zip_ + ".file"), text);
}

}  // namespace
