#include "library/add_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

#include "fixtures/scoped_environment.h"
#include "tests/support/collected_log.h"
#include "tests/support/folder_contents.h"

namespace {

struct AddFolder : TempFolder, testing::Test {
    // Each folder is created a moment after the one before it; one with a target is a link.
    void Make(const std::string &name, const std::string &target = "") const {
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        if (!target.empty()) return std::filesystem::create_directory_symlink(target, path() / name);
        std::filesystem::create_directories(path() / name);
    }
    // The folder that is found below a media folder, or "none".
    std::string Find(const std::optional<std::string> &media_folder) {
        driver.add_folder = media_folder;
        if (FindAddFolder(&driver) != 0) return "none";
        return driver.add_folder->substr(media_folder.value_or("").size());
    }

    CollectedLog log;
    LibraryDriver driver;
};

TEST_F(AddFolder, IsToldByItsNameAlone) {
    for (const char *other : {"iTunes_1234", "Add to itunes folder", "Music", "iTunes"})
        Make(other);
    Write("Automatically Add to iTunes file", "");
    EXPECT_EQ(Find(path()), "none");
    EXPECT_EQ(log.Last(), "Can't find \"Automatically Add to iTunes\" folder under iTunes Media Folder");
    Make("iTunes_12345");
    EXPECT_EQ(Find(path()), "\\iTunes_12345");
    // A final backslash of the preferences stays.
    EXPECT_EQ(Find(path().string() + "\\"), "\\iTunes_12345");
    // Without a media folder it lies under My Music.
    const ScopedEnvironmentValues environment(
        {{"HOME", path()}, {"XDG_MUSIC_DIR", ""}, {"XDG_CONFIG_HOME", path()}});
    EXPECT_EQ(Find(std::nullopt), "none");
    Make("Music/iTunes/iTunes Media/Zu iTunes hinzufügen");
    EXPECT_EQ(Find(std::nullopt), path().string() + "/Music\\iTunes\\iTunes Media\\Zu iTunes hinzufügen");
}

TEST_F(AddFolder, SeveralAreMergedIntoTheYoungestAndNothingIsLost) {
    // Enough of them that the folder's own order is not the order of creation.
    std::multiset<std::string> contents;
    std::string youngest;
    for (int i = 0; i < 6; ++i) {
        youngest = std::to_string(i * 7 % 6) + " Add to iTunes";
        Make(youngest);
        for (const char *file : {"/same.mp3", "/Not Added/deep.mp3"})
            contents.insert(ReadWholeFile(Write(youngest + file, youngest + file)));
    }
    for (const int folders : {1, 2}) {
        // Two names of one folder lose nothing either.
        if (folders == 2) Make("Link to the iTunes folder", youngest);
        const std::string found = Find(path());
        EXPECT_TRUE(folders == 2 || found == "\\" + youngest) << found;
        std::multiset<std::string> kept;
        for (const auto &[name, bytes] : FolderContents(path())) {
            if (bytes != "/" && !bytes.starts_with("-> ")) kept.insert(bytes);
        }
        EXPECT_EQ(kept, contents);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path()), {}), folders);
    }
}

}  // namespace
