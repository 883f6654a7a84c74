#include "host/file_naming.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

#include "host/suggestion.h"
#include "host/text.h"

namespace velmarhost {
namespace {

TEST(FileNaming, NamesBecomeOnesThatEverySystemHolds) {
    using Case = std::array<std::string, 3>;
    const std::vector<Case> cases = {{"a<b>c:d\"e/f\\g|h?i*j", ".mp3", "a_b_c_d_e_f_g_h_i_j.mp3"},
                                     {"line\nbreak\x1b\x7f\xff", "", "line_break___"},
                                     {"turn\xE2\x80\xAEgpj\xE2\x80\xAC", "", "turn_gpj_"},
                                     {"../../etc/passwd", "", "_._.._etc_passwd"},
                                     {" Title... ", ".mp3", "Title.mp3"},
                                     {"", "", "_"},
                                     {".", "", "_"},
                                     {"..", "", "_"},
                                     {".ssh", "", "_ssh"},
                                     {"a", ".m/p3", "a.m_p3"},
                                     {"a.", ".", "a"}};
    for (const auto &[stem, extension, safe] : cases)
        EXPECT_EQ(MakeSafe({stem, extension}).Whole(), safe);
    for (const char *name : {"CON", "nul", "Com1", "LPT9", "aux.b", "COM²", "conin$", "con "})
        EXPECT_EQ(MakeSafe({name, ".mp3"}).stem[0], '_') << name;
    for (const char *name : {"CONSOLE", "COM", "COM10", "Auxiliary", "nulle"})
        EXPECT_EQ(MakeSafe({name, ""}).Whole(), name);
    std::string title;
    for (int i = 0; i < 200; ++i)
        title += "é";
    EXPECT_EQ(MakeSafe({title, ".flac"}).Whole(), title.substr(0, kLongestFileName - 5) + ".flac")
        << "whole letters";
    EXPECT_EQ(MakeSafe({"1", ". Vol"}).extension, "");
}

TEST(FileNaming, ExtensionComesFromTheLastComponent) {
    EXPECT_EQ(ExtensionOfPath("C:/Music/a.b/song.FLAC"), ".FLAC");
    EXPECT_EQ(ExtensionOfPath("song.abcdefghijk"), ".abcdefghijk");
    for (const char *path : {"C:\\Vol. 2\\song", "/a/Dr. Who", "song.", "", "a.abcdefghijkl"})
        EXPECT_EQ(ExtensionOfPath(path), "") << path;
}

TEST(FileNaming, NamesOfOneFolderDifferInMoreThanCase) {
    FolderNames names;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"Song.mp3", "Song.mp3"},     {"SONG.mp3", "SONG (2).mp3"}, {"song (2).mp3", "song (2) (2).mp3"},
        {"song.mp3", "song (3).mp3"}, {"Song.m4a", "Song.m4a"},     {"Überall", "Überall"},
        {"überall", "überall (2)"}};
    for (const auto &[wanted, taken] : cases)
        EXPECT_EQ(names.Take(TreeFileName(wanted)), taken);
    std::set<std::string> taken;
    for (int i = 0; i < 2000; ++i) {
        const std::string name = names.Take({std::string(400, 'x'), ".mp3"});
        EXPECT_TRUE(name.size() <= kLongestFileName && taken.insert(FoldCase(name)).second) << name;
    }
}

TEST(FileNaming, StemStaysFreeForEachExtension) {
    constexpr std::array<std::string_view, 2> kExtensions = {".jpg", ".png"};
    FolderNames names;
    names.Take({"Song (2)", ".JPG"});
    EXPECT_EQ(names.TakeStem("Song", kExtensions), "Song");
    EXPECT_EQ(names.TakeStem("song", kExtensions), "song (3)") << "one of the names of (2) is taken";
    EXPECT_EQ(names.Take({"Song", ".png"}), "Song (2).png") << "that one is free";
    EXPECT_EQ(names.TakeStem(std::string(255, 'x'), kExtensions).size() + 4, kLongestFileName);
}

TEST(Suggestion, ClosestNameForgivesSlips) {
    const std::string longest(100, 'x');
    const std::vector<std::string_view> names = {"music", "movie", "podcast", "Favourites", longest};
    const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
        {"musik", "music"},          {"Music", "music"},      {"movies", "movie"},
        {"favorites", "Favourites"}, {"books", std::nullopt}, {"", std::nullopt},
        {"musABC", "music"},         {"musAB", std::nullopt}, {longest + "x", std::nullopt},
        {longest.substr(1), longest}};
    for (const auto &[wanted, closest] : cases)
        EXPECT_EQ(ClosestName(wanted, names), closest) << wanted;
    EXPECT_EQ(ClosestName("x", {}), std::nullopt);
}

}  // namespace
}  // namespace velmarhost
