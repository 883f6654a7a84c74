#include "content/zip_write.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "content/zip_extract.h"
#include "fixtures/temp_folder.h"
#include "platform/limits.h"
#include "tests/support/collected_log.h"
#include "tests/support/folder_contents.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

class ZipWriteTest : public ::testing::Test {
  protected:
    ZipWriteTest() { fs::create_directory(tree_); }
    // What another folder holds after the archive is unpacked there.
    auto Unpacked() const {
        const fs::path out = folder_.path() / "out";
        EXPECT_EQ(UnzipAll(zip_, out.string()), 0);
        return FolderContents(out);
    }
    // Beside the tree.
    auto FilesMade() const { return std::distance(fs::directory_iterator(folder_.path()), {}) - 1; }

    TempFolder folder_;
    std::string tree_ = (folder_.path() / "tree").string();
    // As long as the system takes it: a temporary name beside it must not be longer.
    std::string zip_ = (folder_.path() / std::string(255, 'z')).string();
    CollectedLog log_;
};

TEST_F(ZipWriteTest, EveryByteComesBackAndNothingOfAnOldArchive) {
    std::string noise(300000, ' ');
    std::generate(noise.begin(), noise.end(), std::mt19937(1));
    for (const size_t size : {0U, 1024U, 1025U, 300000U})
        folder_.Write("tree/OEBPS/a file/" + std::to_string(size), noise.substr(0, size));
    folder_.Write(zip_, std::string(1000000, 'x'));
    EXPECT_EQ(ZipFolder(tree_ + "\\", zip_), 0);
    EXPECT_EQ(FilesMade(), 1);
    EXPECT_EQ(Unpacked(), FolderContents(tree_));
    // Signature 0, version needed 4, which is that of zip64, flags 6, method 8, time 10 and date 12.
    EXPECT_EQ(ReadWholeFile(zip_).substr(0, 14), std::string("PK\3\4\x2D\0\0\0\x08\0\0\0\0\0", 14));
    EXPECT_LT(fs::file_size(zip_), 400000U);
    EXPECT_THAT(log_.Lines(), testing::IsEmpty());
    if (std::system("python3 -m zipfile -h >/dev/null") != 0) GTEST_SKIP() << "no Python here";
    const std::string out = (folder_.path() / "theirs").string();
    EXPECT_EQ(std::system(("python3 -m zipfile -e " + zip_ + " " + out).c_str()), 0);
    EXPECT_EQ(FolderContents(out), FolderContents(tree_));
}

TEST_F(ZipWriteTest, FailureLeavesWhatWasThereAndNothingNew) {
    folder_.Write(zip_, "old");
    EXPECT_EQ(ZipFolder(tree_ + "/missing", zip_), -3);
    EXPECT_EQ(ReadWholeFile(zip_), "old");
    const std::string nowhere = tree_ + "/missing/b.zip";
    EXPECT_EQ(ZipFolder(tree_, nowhere), -2);
    fs::remove(zip_);
    fs::create_directory(zip_);
    EXPECT_EQ(ZipFolder(tree_, zip_), -7);
    EXPECT_EQ(FilesMade(), 1);
    const std::string failed = "compress to \"" + zip_ + "\" failed\n";
    EXPECT_THAT(log_.Lines(), ElementsAre(failed, "create zip file \"" + nowhere + "\" failed\n", failed));
}

TEST_F(ZipWriteTest, LinksThatFormACycleAreWalkedOnceAndOthersUpToTheEntryLimit) {
    folder_.Write("tree/a/b/file", "1");
    // What is neither a file nor a folder is never opened.
    ASSERT_EQ(mkfifo((tree_ + "/pipe").c_str(), 0600), 0);
    fs::create_symlink("pipe", tree_ + "/link");
    fs::create_symlink("nowhere", tree_ + "/a/dangling");
    fs::create_directory_symlink(tree_, tree_ + "/a/b/top");
    fs::create_directory_symlink("..", tree_ + "/a/b/up");
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    EXPECT_THAT(Unpacked(), UnorderedElementsAre(Pair("a", "/"), Pair("a/b", "/"), Pair("a/b/file", "1")));
    // Each folder holds two links to the next: 2^17 paths without any cycle.
    for (int i = 0; i < 17; ++i) {
        fs::create_directory(folder_.path() / std::to_string(i));
        for (const char *link : {"/x", "/y"})
            fs::create_directory_symlink("../" + std::to_string(i + 1),
                                         folder_.path() / (std::to_string(i) + link));
    }
    fs::remove(zip_);
    EXPECT_EQ(ZipFolder((folder_.path() / "0").string(), zip_), -6);
    EXPECT_FALSE(fs::exists(zip_));
}

// A folder that lies too deep is a child that fails.
TEST_F(ZipWriteTest, OnlyTheLastChildsFailureCounts) {
    fs::path deep = fs::path(tree_) / "deep";
    for (uint64_t i = 2; i < limits::kPackedDepth.value; ++i)
        deep /= "d";
    fs::create_directories(deep);
    EXPECT_EQ(ZipFolder(tree_, zip_), 0);
    fs::create_directory(deep / "d");
    EXPECT_EQ(ZipFolder(tree_, zip_), -5);
    for (int i = 0; i < 8; ++i) {
        folder_.Write("tree/file" + std::to_string(i), "1");
        std::string last;
        for (const auto &entry : fs::directory_iterator(tree_))
            last = entry.path().filename().string();
        EXPECT_EQ(ZipFolder(tree_, zip_), last == "deep" ? -5 : 0) << "with " << last << " as the last";
    }
}

}  // namespace
