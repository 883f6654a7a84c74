#include "library/add_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <string>
#include <thread>

#include "tests/support/collected_log.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class AddFolder : public testing::Test {
  protected:
    // Each folder is created a moment after the one before it.
    void MakeFolder(const std::string &name) {
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        fs::create_directories(folder_.path() / name);
    }
    int32_t Find() {
        driver_.add_folder = folder_.path().string();
        return FindAddFolder(&driver_);
    }
    // Names and bytes of all files below a folder.
    std::set<std::pair<std::string, std::string>> FilesIn(const std::string &name) const {
        std::set<std::pair<std::string, std::string>> files;
        for (const auto &entry : fs::recursive_directory_iterator(folder_.path() / name)) {
            if (entry.is_regular_file()) {
                files.emplace(fs::relative(entry.path(), folder_.path() / name), ReadWholeFile(entry.path()));
            }
        }
        return files;
    }

    TempFolder folder_;
    CollectedLog log_;
    LibraryDriver driver_;
};

TEST_F(AddFolder, IsToldByItsNameAlone) {
    for (const char *other : {"iTunes_1234", "Add to itunes folder", "Music", "iTunes"})
        MakeFolder(other);
    folder_.Write("Automatically Add to iTunes file", "");
    EXPECT_EQ(Find(), -1);
    EXPECT_EQ(log_.Last(), "Can't find \"Automatically Add to iTunes\" folder under iTunes Media Folder");
    MakeFolder("iTunes_12345");
    EXPECT_EQ(Find(), 0);
    EXPECT_EQ(driver_.add_folder, folder_.path().string() + "\\iTunes_12345");
}

TEST_F(AddFolder, AFinalBackslashOfThePreferencesStays) {
    MakeFolder("Zu iTunes hinzufügen");
    driver_.add_folder = folder_.path().string() + "\\";
    EXPECT_EQ(FindAddFolder(&driver_), 0);
    EXPECT_EQ(driver_.add_folder, folder_.path().string() + "\\\\Zu iTunes hinzufügen");
}

TEST_F(AddFolder, NoMediaFolderIsNoAddFolder) {
    const ScopedEnvironment home("HOME", folder_.path());
    const ScopedEnvironment music("XDG_MUSIC_DIR", std::nullopt);
    EXPECT_EQ(FindAddFolder(&driver_), -1);
    MakeFolder("Music/iTunes/iTunes Media/Automatically Add to iTunes");
    EXPECT_EQ(FindAddFolder(&driver_), 0);
    EXPECT_TRUE(driver_.add_folder->ends_with("\\iTunes\\iTunes Media\\Automatically Add to iTunes"));
}

TEST_F(AddFolder, SeveralAreMergedIntoTheYoungestAndNothingIsLost) {
    // Enough of them that the folder's own order is not the order of creation.
    std::set<std::string> contents;
    std::string youngest;
    for (int i = 0; i < 6; ++i) {
        youngest = std::to_string(i * 7 % 6) + " Add to iTunes";
        MakeFolder(youngest);
        for (const char *file : {"same.mp3", "Not Added/deep.mp3"}) {
            const std::string bytes = youngest + file;
            folder_.Write(youngest + "/" + file, bytes);
            contents.insert(bytes);
        }
    }
    ASSERT_EQ(Find(), 0);
    EXPECT_EQ(driver_.add_folder, folder_.path().string() + "\\" + youngest);
    std::set<std::string> kept;
    for (const auto &[name, bytes] : FilesIn(youngest))
        kept.insert(bytes);
    EXPECT_EQ(kept, contents);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()), 1);
}

TEST_F(AddFolder, TwoNamesOfOneFolderLoseNothing) {
    MakeFolder("Automatically Add to iTunes");
    folder_.Write("Automatically Add to iTunes/song.mp3", "bytes");
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
    fs::create_directory_symlink("Automatically Add to iTunes", folder_.path() / "Link to the iTunes folder");
    ASSERT_EQ(Find(), 0);
    const auto files = FilesIn("Automatically Add to iTunes");
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files.begin()->second, "bytes");
}

}  // namespace
