#include "host/relocation.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velmarhost {
namespace {

const Relocation kMoved = {"C:/Old Music", "/new", {"iTunes Extras"}, "/disk"};

std::optional<std::string> FolderIn(const std::string &text) {
    std::istringstream stream(text);
    return FindMusicFolder(stream);
}

std::string Copied(const std::string &text) {
    std::istringstream source(text);
    std::ostringstream copy;
    CopyRelocated(kMoved, source, copy);
    return copy.str();
}

TEST(Relocation, MusicFolderIsFoundInAnyLayout) {
    EXPECT_EQ(FolderIn("<dict><key>Music Folder</key><string>file://localhost/C:/M%20x/</string>"), "C:/M x");
    EXPECT_EQ(FolderIn("<key>Music Folder</key>\n\t<string>file:////Music/</string>"), "Music");
    EXPECT_EQ(FolderIn("<key>Name</key><string>Music Folder</string><string>file:///x/</string>"),
              std::nullopt);
    EXPECT_EQ(FolderIn("<key>Music Folder</key><integer>1</integer>"), std::nullopt);
    EXPECT_EQ(FolderIn(""), std::nullopt);
}

TEST(Relocation, OnlyWhatLiesInTheOldFolderMoves) {
    EXPECT_EQ(RelocateLocation(kMoved, "file://localhost/C:/Old%20Music/a%20b.mp3"),
              "file://localhost/new/a%20b.mp3");
    EXPECT_EQ(RelocateLocation(kMoved, "file:///c:/old%20music/A.mp3"), "file://localhost/new/A.mp3");
    EXPECT_EQ(RelocateLocation(kMoved, "file:///C:/Old%20Music/iTunes%20Extras/a.mp3"),
              "file://localhost/disk/iTunes%20Extras/a.mp3");
    for (const char *other :
         {"file:///C:/Old%20Music", "file:///C:/Old%20Musical/a.mp3", "file:///D:/Old%20Music/a.mp3",
          "http://radio/", "file:///C:/Old%20Music/bad%"}) {
        EXPECT_EQ(RelocateLocation(kMoved, other), std::nullopt) << other;
    }
}

TEST(Relocation, CopyKeepsEveryOtherByte) {
    const std::string before =
        "\xEF\xBB\xBF<?xml?>\r\n<key>Name</key><string>file:///C:/Old%20Music/no.mp3</string>\n"
        "<key>Location</key>\n <string>";
    const std::string after = "</string><data>AA\n==</data><!-- < -->\x01 tail";
    EXPECT_EQ(Copied(before + "file:///C:/Old%20Music/a.mp3" + after),
              before + "file://localhost/new/a.mp3" + after);
    for (const std::string text : {"", "<", "no tag", "<<", "a<b<"})
        EXPECT_EQ(Copied(text), text);
}

}  // namespace
}  // namespace velmarhost
