// What stands in the files of a library: URLs, times and preferences.
#include "host/relocation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "fixtures/scoped_environment.h"
#include "host/file_url.h"
#include "host/modified_time.h"
#include "host/preference_file.h"

namespace velmarhost {
namespace {

TEST(FileUrl, EverySpellingGivesOnePath) {
    for (const char *url : {"file://localhost/C:/My%20Music/a&#38;b.mp3", "file:///C:/My%20Music/a&amp;b.mp3",
                            "file:////C:/My Music/a%26b.mp3", "file:///C:/My%20Music/a&#x26;b.mp3"})
        EXPECT_EQ(DecodeFileUrl(url), "C:/My Music/a&b.mp3") << url;
    EXPECT_EQ(DecodeFileUrl("file:///m/%C3%A9&lt;&gt;&quot;&apos;"), "m/é<>\"'");
    for (const char *text :
         {"", "http://host/a", "file:/a", "file://server/share/a", "file:///a%2", "file:///a%zz",
          "file:///a%00b", "file:///a&#38b", "file:///a&nbsp;b", "file:///a&#128;", "file:///a&#0;", "C:/a"})
        EXPECT_EQ(DecodeFileUrl(text), std::nullopt) << text;
    for (int byte = 1; byte < 256; ++byte) {
        const std::string path = std::string("/a/") + static_cast<char>(byte) + "b";
        const std::string url = EncodeFileUrl(path);
        EXPECT_EQ(url.find_first_of("<>&\"'"), std::string::npos) << byte;
        EXPECT_EQ(DecodeFileUrl(url), path.substr(1)) << byte;
    }
}

const Relocation kMoved = {"C:/Old Music", "/new", {"iTunes Extras"}, "/disk"};

TEST(Relocation, MusicFolderIsFoundInAnyLayout) {
    for (const auto &[text, folder] : std::vector<std::pair<std::string, std::optional<std::string>>>{
             {"<dict><key>Music Folder</key><string>file://localhost/C:/M%20x/</string>", "C:/M x"},
             {"<key>Music Folder</key>\n\t<string>file:////Music/</string>", "Music"},
             {"<key>Name</key><string>Music Folder</string><string>file:///x/</string>", {}},
             {"<key>Music Folder</key><integer>1</integer>", {}}}) {
        std::istringstream stream(text);
        EXPECT_EQ(FindMusicFolder(stream), folder) << text;
    }
}

TEST(Relocation, OnlyWhatLiesInTheOldFolderMoves) {
    const std::string old = "file:///C:/Old%20Music";
    for (const auto &[location, moved] : std::vector<std::pair<std::string, std::optional<std::string>>>{
             {old + "/a%20b.mp3", "file://localhost/new/a%20b.mp3"},
             {"file:///c:/old%20music/A.mp3", "file://localhost/new/A.mp3"},
             {old + "/iTunes%20Extras/a.mp3", "file://localhost/disk/iTunes%20Extras/a.mp3"},
             {old, {}},
             {old + "al/a.mp3", {}},
             {"file:///D:/Old%20Music/a.mp3", {}},
             {"http://radio/", {}},
             {old + "/bad%", {}}})
        EXPECT_EQ(RelocateLocation(kMoved, location), moved) << location;
}

TEST(Relocation, CopyKeepsEveryOtherByte) {
    const std::string before =
        "\xEF\xBB\xBF<?xml?>\r\n<key>Name</key><string>file:///C:/Old%20Music/no.mp3</string>\n"
        "<key>Location</key>\n <string>";
    const std::string after = "</string><data>AA\n==</data><!-- < -->\x01 tail";
    const std::string moved = before + "file://localhost/new/a.mp3" + after;
    for (const std::string &text :
         {before + "file:///C:/Old%20Music/a.mp3" + after, std::string("<"), std::string("a<<b<")}) {
        std::istringstream source(text);
        std::ostringstream copy;
        EXPECT_EQ(CopyRelocated(kMoved, source, copy), text.size() > 9 ? 1U : 0U);
        EXPECT_EQ(copy.str(), text.size() > 9 ? moved : text);
    }
}

TEST(ModifiedTime, NumbersSince1904InLocalTimeAreTold) {
    const ScopedEnvironment zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    constexpr int64_t kTo1970 = 2082844800;
    EXPECT_EQ(TimeOfNumber(1286553600 + kTo1970 + 7200), 1286553600) << "in summer";
    EXPECT_EQ(TimeOfNumber(1262304000 + kTo1970 + 3600), 1262304000) << "in winter";
    EXPECT_EQ(TimeOfNumber(int64_t{1} << 31), (int64_t{1} << 31) - kTo1970 - 3600);
    EXPECT_EQ(TimeOfNumber(7'999'999'999), 7'999'999'999 - kTo1970 - 7200);
    for (const int64_t number : {int64_t{1286553600}, (int64_t{1} << 31) - 1, int64_t{8'000'000'000}})
        EXPECT_EQ(TimeOfNumber(number), number);
}

TEST(PreferenceFile, LocationsAreUtf16DataWithBackslashes) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/a/b", "XABhAFwAYgA="}, {"/é🎵", "XADpADzYtd8="}, {"a", "YQA="},
        {"ab", "YQBiAA=="},       {"abc", "YQBiAGMA"},     {"\xff", "/f8="}};
    for (const auto &[path, data] : cases) {
        const std::string end = "</key>\n\t\t<data>" + data + "</data>";
        EXPECT_THAT(PreferenceFileText(path, ""),
                    testing::HasSubstr("<key>iTunes Library XML Location:1" + end));
        EXPECT_THAT(PreferenceFileText("", path),
                    testing::HasSubstr("<key>Music Folder Location:11345" + end));
    }
}

}  // namespace
}  // namespace velmarhost
