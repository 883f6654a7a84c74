// What --library, --media and --drive make of the environment of the driver.
#include "fixtures/itl_file.h"
#include "tests/host/host_test.h"

namespace {

namespace fs = std::filesystem;

// A library that was moved: none that is the user's own is left, and its media folder is "disk".
class MovedLibrary : public HostTest {
  protected:
    MovedLibrary() {
        Rename("iTunes%20Media/Podcasts/", "iTunes%20Media/iTunes%20Extras/");
        Rename("C:/Music/iTunes/iTunes%20Media/Movies/", "Z:/Movies/");
        fs::rename(place_.library_xml.parent_path(), path_ + "old");
        fs::rename(path_ + "old/iTunes Media", path_ + "disk");
        fs::rename(path_ + "disk/Podcasts", path_ + "disk/iTunes Extras");
        fs::rename(path_ + "old/iTunes Music Library.xml", path_ + "old/a.xml");
        fs::remove_all(place_.home);
    }
};

TEST_F(MovedLibrary, FileStandsAlone) {
    ItlFile file(ItlForm12());
    file.AddTrack({.id = 77, .texts = {{.text = "Song"}, {kItlLocation, "C:\\Song.mp3"}}});
    file.AddPlaylist({.name = "Music", .kind = 4, .id = 2, .items = {77}});
    folder_.Write("old/a.itl", file.Bytes());
    Expect({{"--library old/a.xml ls library/music", 0, "101.mp3\n102.mp3\n"},
            {"--library old/a.xml stat library/music/101.mp3/thumb", 0,
             " " + path_ + "old/Album Artwork/Cache/"},
            {"--library old/a.itl ls library/music", 0, "77.mp3\n"},
            {"--library old/a.itl --media disk ls", 0, "keep their old places"}});
}

TEST_F(MovedLibrary, MediaFolderIsLinkedAndLocationsMove) {
    const std::string moved = "--library old/a.xml --media disk ";
    Expect({{moved + "cat library/music/105.wav", 0, "RIFF"},
            {moved + "cat library/podcast/113.mp3", 0, "ID3"},  // not merged with the add folder
            {moved + "stat library/music/105.wav", 0, "  location          " + path_ + "disk/Music/Test"},
            {moved + "stat library/movie/111.m4v", 0, "  location          Z:/Movies/Holiday"},
            {moved + "ls library/book", 0, "\nTide Tables.pdf"}});  // found by a scan
    EXPECT_EQ(Run(moved + "ls library/music").output.find("500000"), std::string::npos)
        << "of the add folder";
    EXPECT_TRUE(fs::exists(path_ + "disk/Automatically Add to iTunes/Waiting Room.mp3"));
    EXPECT_EQ(ReadWholeFile(path_ + "old/a.xml"), library_xml_);
    folder_.Write("old/a.xml", library_xml_.replace(library_xml_.find("Music Folder"), 12, "Folder"));
    Expect({{moved + "ls", 0, "does not say where its media folder was"}});
}

TEST_F(MovedLibrary, AddReachesTheRealAddFolderByAnyOfItsNames) {
    const std::string add = "--library old/a.xml --media disk add --json song.mp3";
    folder_.Write("song.mp3", "bytes");
    std::string folder = path_ + "disk/Automatically Add to iTunes";
    for (const char *name :
         {"Automatically Add to iTunes", "Automatically Add to Music.localized", "In iTunes legen"}) {
        fs::rename(folder, path_ + "disk/" + name);
        folder = path_ + "disk/" + name;
        Expect({{add, 0, "\"location\":\"" + folder + "/song.mp3\""}});
        EXPECT_EQ(ReadWholeFile(folder + "/song.mp3"), "bytes");
        fs::remove(folder + "/song.mp3");
        fs::remove_all(path_ + "disk/iTunes Extras");  // would do for the last one, too
    }
    fs::remove_all(folder);
    Expect({{add, 2, path_ + "disk\" holds no folder \"Automatically Add to iTunes\""}});
}

TEST_F(MovedLibrary, DrivesAreMappedBesideTheUsersOwn) {
    fs::create_directories(path_ + "drive/Music/iTunes");
    fs::create_directory_symlink(path_ + "disk", path_ + "drive/Music/iTunes/iTunes Media");
    fs::create_directory_symlink(path_ + "disk", path_ + "wine/dosdevices/z:");
    Expect({{"--library old/a.xml --drive C:=drive cat library/music/105.wav", 0, "RIFF"},
            {"--library old/a.xml --drive c=drive --drive D=disk cat library/movie/111.m4v", 0, "ftyp"}});
    fs::create_directories(place_.home);
    fs::rename(path_ + "wine", place_.home / ".wine");
    Set("WINEPREFIX", "");
    Expect({{"--library old/a.xml --drive D:=drive cat library/movie/111.m4v", 0, "ftyp"}});
}

TEST_F(MovedLibrary, BadChoicesAreExplained) {
    const std::string tick = "\"Share iTunes Library XML with other applications\"";
    const std::string wanted = place_.home.string() + "/Music\\iTunes\\iTunes Music Library.xml\" and for";
    for (const std::string bytes : {"\x1F\x8B\x08", "PK", "words", "", "\xEF\xBB\xBF\n<?xml>", "hdfm"})
        folder_.Write("bad" + std::to_string(bytes.size()), bytes);
    Expect(
        {{"--library none.xml ls", 3, "does not exist"},
         {"--library bad3 ls", 3, "gunzip"},
         {"--library bad2 ls", 3, "is a zip archive"},
         {"--library bad5 ls", 3, "is no iTunes library"},
         {"--library bad0 ls", 3, "is no iTunes library"},
         {"--library bad10 ls", 3, "\"bad10\" could not be opened as an iTunes library"},
         {"--library bad4 ls", 3, "\"bad4\" could not be read: it is damaged"},
         {"--library bad4 ls", 3, tick},
         {"--library old ls", 3, "is a folder without a library file"},
         {"--library old/a.xml --media none ls", 2, "--media: \"none\" is no folder"},
         {"--drive Music=disk ls", 2, "--drive wants a letter"},
         {"--drive C: ls", 2, "--drive wants a letter"},
         {"--drive C:=none ls", 2, "--drive: \"none\" is no folder"},
         {"--drive C:=disk --drive c:=disk ls", 2, "the drive \"c:\" twice"},
         {"ls", 3, "Looked for the XML file \"" + wanted},
         {"ls", 3, tick},
         {"ls", 3, "(The driver gave -999: [iTunes] Open iTunes Library file error!; [iTunes] Open iTunes"}});
    fs::rename(path_ + "old/a.xml", path_ + "old/Library.xml");
    Expect({{"--library old ls", 3, "--library \"old/Library.xml\""}});
}

}  // namespace
