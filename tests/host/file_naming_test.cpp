#include "host/file_naming.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string_view>

#include "host/text.h"

namespace velmarhost {
namespace {

std::string Safe(const std::string &stem, const std::string &extension = "") {
    return MakeSafe({stem, extension}).Whole();
}

TEST(FileNaming, ForbiddenCharactersAreReplaced) {
    EXPECT_EQ(Safe("a<b>c:d\"e/f\\g|h?i*j", ".mp3"), "a_b_c_d_e_f_g_h_i_j.mp3");
    EXPECT_EQ(Safe("line\nbreak\x1b\x7f\xff"), "line_break___");
    EXPECT_EQ(Safe("turn\xE2\x80\xAEgpj\xE2\x80\xAC"), "turn_gpj_");
}

TEST(FileNaming, NamesThatMeanSomethingElseAreChanged) {
    EXPECT_EQ(Safe(""), "_");
    EXPECT_EQ(Safe("."), "_");
    EXPECT_EQ(Safe(".."), "_");
    EXPECT_EQ(Safe("../../etc/passwd"), "_._.._etc_passwd");
    EXPECT_EQ(Safe(".ssh"), "_ssh") << "no hidden file from a library's title";
    EXPECT_EQ(Safe(" Title... ", ".mp3"), "Title.mp3");
    for (const char *name : {"CON", "nul", "Com1", "LPT9", "aux.b", "COM²", "conin$", "con "}) {
        EXPECT_EQ(Safe(name, ".mp3")[0], '_') << name;
    }
    for (const char *name : {"CONSOLE", "COM", "COM10", "Auxiliary", "nulle"})
        EXPECT_EQ(Safe(name), name);
}

TEST(FileNaming, OddExtensionsBecomePartOfTheStem) {
    EXPECT_EQ(Safe("a", ".m/p3"), "a.m_p3");
    EXPECT_EQ(MakeSafe({"1", ". Vol"}).extension, "");
}

TEST(FileNaming, LongNamesEndBetweenCharacters) {
    std::string title;
    for (int i = 0; i < 200; ++i)
        title += "é";
    const std::string name = Safe(title, ".flac");
    EXPECT_LE(name.size(), kLongestFileName);
    EXPECT_GT(name.size(), kLongestFileName - 2);
    EXPECT_TRUE(name.ends_with("é.flac"));
}

TEST(FileNaming, ExtensionComesFromTheLastComponent) {
    EXPECT_EQ(ExtensionOfPath("C:/Music/a.b/song.FLAC"), ".FLAC");
    EXPECT_EQ(ExtensionOfPath("C:\\Vol. 2\\song"), "");
    EXPECT_EQ(ExtensionOfPath("/a/Dr. Who"), "");
    EXPECT_EQ(ExtensionOfPath("song."), "");
    EXPECT_EQ(ExtensionOfPath(""), "");
}

TEST(FileNaming, NamesOfOneFolderDifferInMoreThanCase) {
    FolderNames names;
    EXPECT_EQ(names.Take({"Song", ".mp3"}), "Song.mp3");
    EXPECT_EQ(names.Take({"SONG", ".mp3"}), "SONG (2).mp3");
    EXPECT_EQ(names.Take({"song (2)", ".mp3"}), "song (2) (2).mp3");
    EXPECT_EQ(names.Take({"song", ".mp3"}), "song (3).mp3");
    EXPECT_EQ(names.Take({"Song", ".m4a"}), "Song.m4a");
    EXPECT_EQ(names.Take({"Überall", ""}), "Überall");
    EXPECT_EQ(names.Take({"überall", ""}), "überall (2)");
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

TEST(FileNaming, ManyEqualLongNamesStayApartAndShort) {
    FolderNames names;
    std::set<std::string> taken;
    for (int i = 0; i < 2000; ++i) {
        const std::string name = names.Take({std::string(400, 'x'), ".mp3"});
        EXPECT_LE(name.size(), kLongestFileName);
        EXPECT_TRUE(taken.insert(FoldCase(name)).second);
    }
}

}  // namespace
}  // namespace velmarhost
