#include "platform/windows/native_path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/windows/text.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class NativePathTest : public testing::Test {
  protected:
    std::string InFolder(const std::string &name) const { return folder_.path().string() + "/" + name; }
    std::string Resolve(const std::string &name) const {
        return NativePath(folder_.path().string() + "\\" + name);
    }

    TempFolder folder_;
};

TEST_F(NativePathTest, SeparatorsAndStart) {
    EXPECT_EQ(NativePath("\\absent\\\\b//c\\"), "/absent/b/c");
    EXPECT_EQ(NativePath("absent/b"), "/absent/b");
    EXPECT_EQ(NativePath("\\"), "/");
    EXPECT_EQ(NativePath(""), "");
    EXPECT_EQ(NativePath(std::string_view("/absent/a\0b", 11)), "/absent/a");
    EXPECT_EQ(NativePath(L"\\absent\\\x00E9"), "/absent/\xC3\xA9");
    EXPECT_EQ(NativePath(Utf8ToWide("/absent/\xFF\xC3")), "/absent/\xFF\xC3");
}

TEST_F(NativePathTest, Drives) {
    const ScopedEnvironment prefix("WINEPREFIX", InFolder("prefix"));
    folder_.Write("disk/Users/Ann/file", "");
    folder_.Write("prefix/dosdevices/keep", "");
    fs::create_directory_symlink(InFolder("disk"), InFolder("prefix/dosdevices/c:"));
    const std::string drive = InFolder("prefix/dosdevices/c:");
    EXPECT_EQ(NativePath("C:\\Users\\Ann\\file"), drive + "/Users/Ann/file");
    EXPECT_EQ(NativePath("c:/users/ANN/new"), drive + "/Users/Ann/new");
    EXPECT_EQ(NativePath("C:"), drive);
    EXPECT_EQ(NativePath("C:\\..\\Users\\.\\absent\\..\\Ann"), drive + "/Users/Ann");
    EXPECT_EQ(NativePath("Q:\\x"), InFolder("prefix/dosdevices/q:/x"));
    EXPECT_FALSE(fs::exists(NativePath("Q:\\")));
}

TEST_F(NativePathTest, DrivesAreInTheHomeFolderByDefault) {
    const ScopedEnvironment prefix("WINEPREFIX", std::nullopt);
    const ScopedEnvironment home("HOME", InFolder("home"));
    EXPECT_EQ(NativePath("d:\\a"), InFolder("home/.wine/dosdevices/d:/a"));
}

TEST_F(NativePathTest, OtherLetterCaseAndNormalForm) {
    folder_.Write("Music/Caf\xC3\xA9/Song.mp3", "");    // composed
    folder_.Write("Music/Cafe\xCC\x81 au lait/x", "");  // decomposed
    EXPECT_EQ(Resolve("MUSIC\\CAF\xC3\x89\\song.MP3"), InFolder("Music/Caf\xC3\xA9/Song.mp3"));
    EXPECT_EQ(Resolve("music\\cafe\xCC\x81\\song.mp3"), InFolder("Music/Caf\xC3\xA9/Song.mp3"));
    EXPECT_EQ(Resolve("music\\caf\xC3\x89 AU LAIT\\X"), InFolder("Music/Cafe\xCC\x81 au lait/x"));
    EXPECT_EQ(Resolve("music\\absent\\SONG.mp3"), InFolder("Music/absent/SONG.mp3"));
    EXPECT_EQ(Resolve("MUSIC\\New.mp3"), InFolder("Music/New.mp3"));
}

TEST_F(NativePathTest, TheNearestNameWins) {
    folder_.Write("B", "");
    folder_.Write("both/cafe\xCC\x81", "");
    folder_.Write("both/CAF\xC3\x89", "");
    folder_.Write("three/NAME", "");
    folder_.Write("three/Name", "");
    folder_.Write("three/nAME", "");
    EXPECT_EQ(Resolve("three\\Name"), InFolder("three/Name"));
    EXPECT_EQ(Resolve("three\\name"), InFolder("three/NAME"));
    EXPECT_EQ(Resolve("both\\caf\xC3\xA9"), InFolder("both/CAF\xC3\x89"));
    EXPECT_EQ(Resolve("b"), InFolder("B"));
}

TEST_F(NativePathTest, NamesThatAreNotUtf8) {
    folder_.Write("Old \xE9\xFF", "");
    EXPECT_EQ(Resolve("old \xE9\xFF"), InFolder("Old \xE9\xFF"));
    EXPECT_EQ(Resolve("old \xC9\xFF"), InFolder("old \xC9\xFF"));
}

TEST_F(NativePathTest, LinksThatLeadNowhereAndFilesOnTheWayAreKept) {
    fs::create_symlink("nowhere", folder_.path() / "Link");
    folder_.Write("File", "");
    EXPECT_EQ(Resolve("link"), InFolder("Link"));
    EXPECT_EQ(Resolve("file\\below"), InFolder("File/below"));
    const std::string endless(9000, 'a');
    EXPECT_EQ(Resolve(endless), InFolder(endless));
    std::string deep;
    for (int i = 0; i < 3000; ++i)
        deep += "\\d";
    EXPECT_EQ(NativePath(deep).size(), deep.size());
}

TEST(IsWindowsFileName, RefusesWhatWindowsCannotHold) {
    for (const char *name :
         {"", ".", "..", "a<", "a>", "a:b", "\"", "a|b", "a?", "*", "a\x1F", "\n", "a/b", "a\\b"}) {
        EXPECT_FALSE(IsWindowsFileName(name)) << name;
    }
    for (const char *name : {"a", "...", ".a", "a b", "\xC3\xA9", "\xFF", "a;b,c=[d]", "\x7F"}) {
        EXPECT_TRUE(IsWindowsFileName(name)) << name;
    }
}

}  // namespace
