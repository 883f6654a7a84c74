// The private environment, seen through a driver that copies what its variables point to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/host_process.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char *kLibrary =
    "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>\n"
    "<key>Music Folder</key><string>file://localhost/C:/Old%20Music/</string>\n"
    "<key>Location</key><string>file://localhost/C:/Old%20Music/Music/a%20&#38;%20b.mp3</string>\n"
    "<key>Location</key><string>file://localhost/C:/Old%20Music/iTunes%20Extras/c.mp3</string>\n"
    "<key>Location</key><string>file://localhost/D:/Else/d.mp3</string>\n</dict></plist>\n";

class Environment : public testing::Test {
  protected:
    Environment() {
        host_.Set("FAKE_DRIVER_SNAPSHOT", Snapshot().string());
        fs::create_directories(Snapshot());
        host_.files().Write("old/Library.xml", kLibrary);
        host_.files().Write("old/Album Artwork/cover", "x");
        host_.files().Write("disk/Music/a & b.mp3", "x");
        host_.files().Write("disk/Books/book.epub", "x");
        host_.files().Write("disk/iTunes Extras/c.mp3", "x");
        host_.files().Write("disk/Automatically Add to iTunes/waiting.mp3", "x");
    }
    fs::path Snapshot() const { return host_.folder() / "snapshot"; }
    std::string Library() const { return (host_.folder() / "old" / "Library.xml").string(); }
    std::string Disk() const { return (host_.folder() / "disk").string(); }

    HostProcess host_;
};

TEST_F(Environment, UsersOwnLibraryKeepsTheUsersEnvironment) {
    host_.Set("APPDATA", (host_.folder() / "disk").string());
    EXPECT_EQ(host_.Run({"ls"}).exit_code, 0);
    EXPECT_TRUE(fs::exists(Snapshot() / "APPDATA" / "Books"));
    EXPECT_TRUE(fs::is_empty(Snapshot() / "TEMP")) << "temporary files of the driver are to be removed";
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

TEST_F(Environment, LibraryFileStandsAlone) {
    const HostResult result = host_.Run({"--library", Library(), "ls"});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_TRUE(fs::exists(Snapshot() / "APPDATA" / "Apple Computer" / "iTunes" / "iTunesPrefs.xml"));
    EXPECT_EQ(fs::read_symlink(Snapshot() / "library" / "iTunes Library.xml"), Library());
    EXPECT_TRUE(fs::exists(Snapshot() / "library" / "Album Artwork" / "cover"));
    EXPECT_TRUE(fs::is_empty(Snapshot() / "media" / "Automatically Add to iTunes"));
    EXPECT_THAT(ReadWholeFile(Snapshot() / "XDG_CONFIG_HOME" / "user-dirs.dirs"), HasSubstr("/music\""));
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

TEST_F(Environment, ItlFileIsTheOnlyLibraryThere) {
    const fs::path itl = host_.files().Write("old/iTunes Library.itl", "hdfm");
    const HostResult result = host_.Run({"--library", itl.string(), "ls"});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(fs::read_symlink(Snapshot() / "music" / "iTunes" / "iTunes Library.itl"), itl);
    EXPECT_FALSE(fs::is_symlink(Snapshot() / "library" / "iTunes Library.xml"));
    EXPECT_TRUE(fs::exists(Snapshot() / "library" / "Album Artwork" / "cover"));
}

TEST_F(Environment, MediaFolderIsLinkedAndLocationsMove) {
    const HostResult result = host_.Run({"--library", Library(), "--media", Disk(), "ls"});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(fs::read_symlink(Snapshot() / "media" / "Books"), Disk() + "/Books");
    EXPECT_FALSE(fs::exists(Snapshot() / "media" / "iTunes Extras")) << "the driver would merge it";
    EXPECT_FALSE(fs::is_symlink(Snapshot() / "media" / "Automatically Add to iTunes"));
    EXPECT_TRUE(fs::is_empty(Snapshot() / "media" / "Automatically Add to iTunes"));
    const std::string copy = ReadWholeFile(Snapshot() / "library" / "iTunes Library.xml");
    EXPECT_THAT(copy, HasSubstr("/media/Music/a%20%26%20b.mp3</string>"));
    EXPECT_THAT(copy, HasSubstr("file://localhost" + Disk() + "/iTunes%20Extras/c.mp3</string>"));
    EXPECT_THAT(copy, HasSubstr("<string>file://localhost/D:/Else/d.mp3</string>"));
    EXPECT_TRUE(fs::exists(Disk() + "/Automatically Add to iTunes/waiting.mp3"));
    EXPECT_EQ(ReadWholeFile(Library()), kLibrary);
}

TEST_F(Environment, OnlyAddReachesTheRealAddFolder) {
    const std::string song = host_.files().Write("song.mp3", "bytes").string();
    const std::vector<std::string> add = {"--library", Library(), "--media", Disk(), "add", song};
    const HostResult result = host_.Run(add);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(fs::read_symlink(Snapshot() / "media" / "Automatically Add to iTunes"),
              Disk() + "/Automatically Add to iTunes");
    EXPECT_EQ(ReadWholeFile(Disk() + "/Automatically Add to iTunes/song.mp3"), "bytes");
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

TEST_F(Environment, AddFolderIsKnownByItsOtherNames) {
    const std::string song = host_.files().Write("song.mp3", "bytes").string();
    const auto add = [&] {
        return host_.Run({"--library", Library(), "--media", Disk(), "add", "--json", song});
    };
    host_.Set("FAKE_DRIVER_SNAPSHOT", "");
    fs::path folder = Disk() + "/Automatically Add to iTunes";
    for (const char *name : {"Automatically Add to Music.localized", "Automatisch zu iTunes hinzufügen"}) {
        fs::remove_all(Disk() + "/iTunes Extras");  // would do for one, too
        fs::rename(folder, Disk() + "/" + name);
        folder = Disk() + "/" + name;
        EXPECT_THAT(add().output, HasSubstr("\"location\":\"" + folder.string() + "/song.mp3\"")) << name;
        fs::remove(folder / "song.mp3");
    }
    fs::remove_all(folder);
    const HostResult none = add();
    EXPECT_EQ(none.exit_code, 2);
    EXPECT_THAT(none.errors, HasSubstr(Disk() + "\" holds no folder \"Automatically Add to iTunes\""));
    EXPECT_EQ(host_.Run({"--library", Library(), "add", song}).exit_code, 2);
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

TEST_F(Environment, DrivesAreMappedBesideTheUsersOwn) {
    fs::create_directories(host_.folder() / "home" / ".wine" / "dosdevices");
    fs::create_directory_symlink("/usr", host_.folder() / "home" / ".wine" / "dosdevices" / "c:");
    fs::create_directory_symlink("/usr", host_.folder() / "home" / ".wine" / "dosdevices" / "z:");
    EXPECT_EQ(host_.Run({"--drive", "C:=" + Disk(), "--drive", "d=" + Disk(), "ls"}).exit_code, 0);
    const fs::path drives = Snapshot() / "WINEPREFIX" / "dosdevices";
    EXPECT_EQ(fs::read_symlink(drives / "c:"), Disk());
    EXPECT_EQ(fs::read_symlink(drives / "d:"), Disk());
    EXPECT_TRUE(fs::equivalent(drives / "z:", "/usr"));
}

TEST_F(Environment, BadChoicesAreExplained) {
    host_.files().Write("packed.xml.gz", "\x1F\x8B\x08");
    host_.files().Write("words.txt", "no library");
    host_.files().Write("empty.xml", "");
    const auto expect = [this](std::vector<std::string> arguments, int code, const std::string &words) {
        arguments.emplace_back("ls");
        const HostResult result = host_.Run(arguments);
        EXPECT_EQ(result.exit_code, code) << testing::PrintToString(arguments);
        EXPECT_THAT(result.errors, HasSubstr(words));
        EXPECT_EQ(host_.LeftBehind(), 0U) << testing::PrintToString(arguments);
    };
    const std::string folder = host_.folder().string() + "/";
    expect({"--library", folder + "none.xml"}, 3, "does not exist");
    expect({"--library", folder + "packed.xml.gz"}, 3, "gunzip");
    expect({"--library", folder + "words.txt"}, 3, "no iTunes library");
    expect({"--library", folder + "empty.xml"}, 3, "no iTunes library");
    expect({"--library", folder + "old"}, 3, "old/Library.xml\"");
    expect({"--library", Library(), "--media", folder + "none"}, 2, "--media");
    expect({"--drive", "Music=" + Disk()}, 2, "--drive");
    expect({"--drive", "C:"}, 2, "--drive");
    expect({"--drive", "C:=" + folder + "none"}, 2, "none");
    expect({"--drive", "C:=" + Disk(), "--drive", "c:=" + Disk()}, 2, "twice");
}

TEST_F(Environment, FailedLoadTellsWhatWasLookedForAndWhatToDo) {
    host_.Set("FAKE_DRIVER_RESULT", "-999");
    const fs::path itl = host_.files().Write("old/iTunes Library.itl", "hdfm");
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{"ls"}, {"--library", itl.string(), "ls"}}) {
        const HostResult result = host_.Run(arguments);
        EXPECT_EQ(result.exit_code, 3);
        EXPECT_THAT(result.errors, HasSubstr("\"Share iTunes Library XML with other applications\""));
        EXPECT_THAT(result.errors, HasSubstr("iTunes Library.itl\""));
        EXPECT_EQ(result.errors.find("Music\\Library.xml\" and") != std::string::npos, arguments.size() == 1);
    }
}

TEST_F(Environment, FailedLoadOfALibraryFileNamesIt) {
    host_.Set("FAKE_DRIVER_RESULT", "-1");
    const HostResult result = host_.Run({"--library", Library(), "ls"});
    EXPECT_EQ(result.exit_code, 3);
    EXPECT_THAT(result.errors, HasSubstr("Library.xml\" could not be opened"));
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

}  // namespace
