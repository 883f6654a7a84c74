// What --library, --media and --drive make of the environment of the driver.
#include "tests/host/host_test.h"
#include "tests/support/itl_file.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A library that was moved: none that is the user's own is left, and its media folder is "disk".
class Environment : public HostTest {
  protected:
    Environment() {
        Rename("iTunes%20Media/Podcasts/", "iTunes%20Media/iTunes%20Extras/");
        Rename("C:/Music/iTunes/iTunes%20Media/Movies/", "Z:/Movies/");
        fs::rename(place_.library_xml.parent_path(), path_ + "old");
        fs::rename(path_ + "old/iTunes Media", path_ + "disk");
        fs::rename(path_ + "disk/Podcasts", path_ + "disk/iTunes Extras");
        fs::rename(path_ + "old/iTunes Music Library.xml", path_ + "old/Library.xml");
        fs::remove_all(place_.home);
    }
    std::string Output(const std::string &arguments) {
        const HostResult result = Run(arguments);
        EXPECT_EQ(result.exit_code, 0) << result.errors;
        return result.output;
    }
};

TEST_F(Environment, LibraryFileStandsAlone) {
    EXPECT_THAT(Output("--library old/Library.xml ls library/music"), StartsWith("101.mp3\n102.mp3\n"));
    EXPECT_THAT(Output("--library old/Library.xml stat library/music/101.mp3/thumb"),
                HasSubstr("  location          " + path_ + "old/Album Artwork/Cache/"));
    ItlFile file(ItlForm12());
    file.AddTrack({.id = 77, .texts = {{.text = "Song"}, {kItlLocation, "C:\\Song.mp3"}}});
    file.AddPlaylist({.name = "Music", .kind = 4, .id = 2, .items = {77}});
    folder_.Write("old/a.itl", file.Bytes());
    EXPECT_EQ(Output("--library old/a.itl ls library/music"), "77.mp3\n");
    EXPECT_THAT(Run("--library old/a.itl --media disk ls").errors, HasSubstr("keep their old places"));
}

TEST_F(Environment, MediaFolderIsLinkedAndLocationsMove) {
    const std::string moved = "--library old/Library.xml --media disk ";
    EXPECT_THAT(Output(moved + "cat library/music/105.wav"), StartsWith("RIFF"));
    EXPECT_THAT(Output(moved + "cat library/podcast/113.mp3"), StartsWith("ID3"))
        << "not merged with the add folder";
    EXPECT_THAT(Output(moved + "stat library/music/105.wav"),
                HasSubstr("  location          " + path_ + "disk/Music/Test"));
    EXPECT_THAT(Output(moved + "stat library/movie/111.m4v"),
                HasSubstr("  location          Z:/Movies/Holiday"));
    EXPECT_THAT(Output(moved + "ls library/book"), HasSubstr("Tide Tables.pdf"))
        << "found in the media folder";
    EXPECT_THAT(Output(moved + "ls library/music"), Not(HasSubstr("500000")))
        << "the add folder is not shown";
    EXPECT_TRUE(fs::exists(path_ + "disk/Automatically Add to iTunes/Waiting Room.mp3"));
    EXPECT_EQ(ReadWholeFile(path_ + "old/Library.xml"), library_xml_);
    folder_.Write("old/Library.xml", library_xml_.replace(library_xml_.find("Music Folder"), 12, "Folder"));
    EXPECT_THAT(Run(moved + "ls").errors, HasSubstr("does not say where its media folder was"));
}

TEST_F(Environment, AddReachesTheRealAddFolderByAnyOfItsNames) {
    const std::string add = "--library old/Library.xml --media disk add --json song.mp3";
    folder_.Write("song.mp3", "bytes");
    std::string folder = path_ + "disk/Automatically Add to iTunes";
    for (const char *name : {"Automatically Add to iTunes", "Automatically Add to Music.localized",
                             "Automatisch zu iTunes hinzufügen"}) {
        fs::rename(folder, path_ + "disk/" + name);
        folder = path_ + "disk/" + name;
        EXPECT_THAT(Output(add), HasSubstr("\"location\":\"" + folder + "/song.mp3\""));
        EXPECT_EQ(ReadWholeFile(folder + "/song.mp3"), "bytes");
        fs::remove(folder + "/song.mp3");
        fs::remove_all(path_ + "disk/iTunes Extras");  // would do for the last one, too
    }
    fs::remove_all(folder);
    Expect({{add, 2, path_ + "disk\" holds no folder \"Automatically Add to iTunes\""}});
}

TEST_F(Environment, DrivesAreMappedBesideTheUsersOwn) {
    fs::create_directories(path_ + "drive/Music/iTunes");
    fs::create_directory_symlink(path_ + "disk", path_ + "drive/Music/iTunes/iTunes Media");
    fs::create_directory_symlink(path_ + "disk", path_ + "wine/dosdevices/z:");
    const std::string library = "--library old/Library.xml ";
    EXPECT_THAT(Output(library + "--drive C:=drive cat library/music/105.wav"), StartsWith("RIFF"));
    EXPECT_NE(Output(library + "--drive c=drive --drive D=disk cat library/movie/111.m4v"), "");
    fs::create_directories(place_.home);
    fs::rename(path_ + "wine", place_.home / ".wine");
    Set("WINEPREFIX", "");
    EXPECT_NE(Output(library + "--drive D:=drive cat library/movie/111.m4v"), "");
}

TEST_F(Environment, BadChoicesAreExplained) {
    const std::string tick = "\"Share iTunes Library XML with other applications\"";
    for (const auto &[name, bytes] :
         std::vector<std::pair<const char *, const char *>>{{"a.gz", "\x1F\x8B\x08"},
                                                            {"a.zip", "PK"},
                                                            {"words.txt", "no library"},
                                                            {"empty.xml", ""},
                                                            {"a.xml", "\xEF\xBB\xBF\n<?xml>"},
                                                            {"a.itl", "hdfm"}})
        folder_.Write(name, bytes);
    Expect(
        {{"--library none.xml ls", 3, "does not exist"},
         {"--library a.gz ls", 3, "gunzip"},
         {"--library a.zip ls", 3, "is a zip archive"},
         {"--library words.txt ls", 3, "is no iTunes library"},
         {"--library empty.xml ls", 3, "is no iTunes library"},
         {"--library a.xml ls", 3, "\"a.xml\" could not be opened as an iTunes library"},
         {"--library a.itl ls", 3, "\"a.itl\" could not be read: it is damaged"},
         {"--library a.itl ls", 3, tick},
         {"--library old ls", 3, "--library \"old/Library.xml\""},
         {"--library disk ls", 3, "is a folder without a library file"},
         {"--library old/Library.xml --media none ls", 2, "--media: \"none\" is no folder"},
         {"--drive Music=disk ls", 2, "--drive wants a letter"},
         {"--drive C: ls", 2, "--drive wants a letter"},
         {"--drive C:=none ls", 2, "--drive: \"none\" is no folder"},
         {"--drive C:=disk --drive c:=disk ls", 2, "the drive \"c:\" twice"},
         {"ls", 3,
          "Looked for the XML file \"" + place_.home.string() +
              "/Music\\iTunes\\iTunes Music Library.xml\" and"},
         {"ls", 3, tick},
         {"ls", 3, "(The driver gave -999: [iTunes] Open iTunes Library file error!; [iTunes] Open iTunes"}});
}

}  // namespace
