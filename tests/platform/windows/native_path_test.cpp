#include "platform/windows/native_path.h"

#include "fixtures/scoped_environment.h"
#include "tests/platform/windows/folder_test.h"

namespace {

class NativePathTest : public FolderTest {
  protected:
    void ExpectResolved(const std::string &windows_name, const std::string &native_name) const {
        EXPECT_EQ(NativePath(folder_.path().string() + "\\" + windows_name), Native(native_name));
    }
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
    folder_.Write("disk/Users/Ann/file", "");
    folder_.Write("prefix/dosdevices/keep", "");
    fs::create_directory_symlink(Native("disk"), Native("prefix/dosdevices/c:"));
    const std::string drive = Native("prefix/dosdevices/c:");
    {
        const ScopedEnvironment prefix("WINEPREFIX", Native("prefix"));
        EXPECT_EQ(NativePath("C:\\Users\\Ann\\file"), drive + "/Users/Ann/file");
        EXPECT_EQ(NativePath("c:/users/ANN/new"), drive + "/Users/Ann/new");
        EXPECT_EQ(NativePath("C:"), drive);
        EXPECT_EQ(NativePath("C:\\..\\Users\\.\\absent\\..\\Ann"), drive + "/Users/Ann");
        EXPECT_EQ(NativePath("Q:\\x"), Native("prefix/dosdevices/q:/x"));
    }
    const ScopedEnvironment prefix("WINEPREFIX", std::nullopt);
    const ScopedEnvironment home("HOME", Native("home"));
    EXPECT_EQ(NativePath("d:\\a"), Native("home/.wine/dosdevices/d:/a"));
}

TEST_F(NativePathTest, TheNearestNameInOtherLetterCaseAndNormalFormIsFound) {
    for (const char *name :
         {"Music/Caf\xC3\xA9/Song.mp3", "Music/Cafe\xCC\x81 au lait/x", "B", "both/cafe\xCC\x81",
          "both/CAF\xC3\x89", "three/NAME", "three/Name", "three/nAME", "Old \xE9\xFF", "File"})
        folder_.Write(name, "");
    fs::create_symlink("nowhere", Native("Link"));
    ExpectResolved("MUSIC\\CAF\xC3\x89\\song.MP3", "Music/Caf\xC3\xA9/Song.mp3");
    ExpectResolved("music\\cafe\xCC\x81\\song.mp3", "Music/Caf\xC3\xA9/Song.mp3");
    ExpectResolved("music\\caf\xC3\x89 AU LAIT\\X", "Music/Cafe\xCC\x81 au lait/x");
    ExpectResolved("music\\absent\\SONG.mp3", "Music/absent/SONG.mp3");
    ExpectResolved("MUSIC\\New.mp3", "Music/New.mp3");
    ExpectResolved("three\\Name", "three/Name");
    ExpectResolved("three\\name", "three/NAME");
    ExpectResolved("both\\caf\xC3\xA9", "both/CAF\xC3\x89");
    ExpectResolved("b", "B");
    ExpectResolved("old \xE9\xFF", "Old \xE9\xFF");
    ExpectResolved("old \xC9\xFF", "old \xC9\xFF");
    ExpectResolved("link", "Link");
    ExpectResolved("file\\below", "File/below");
}

TEST_F(NativePathTest, EndlessPathsAreKept) {
    ExpectResolved(std::string(9000, 'a'), std::string(9000, 'a'));
    std::string deep;
    for (int i = 0; i < 3000; ++i)
        deep += "\\d";
    EXPECT_EQ(NativePath(deep).size(), deep.size());
}

TEST(IsWindowsFileName, RefusesWhatWindowsCannotHold) {
    for (const char *name :
         {"", ".", "..", "a<", "a>", "a:b", "\"", "a|b", "a?", "*", "a\x1F", "\n", "a/b", "a\\b"})
        EXPECT_FALSE(IsWindowsFileName(name)) << name;
    for (const char *name : {"a", "...", ".a", "a b", "\xC3\xA9", "\xFF", "a;b,c=[d]", "\x7F"})
        EXPECT_TRUE(IsWindowsFileName(name)) << name;
}

}  // namespace
