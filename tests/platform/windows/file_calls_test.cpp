#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/windows/file_handle.h"
#include "platform/windows/windows_api.h"
#include "tests/platform/windows/folder_test.h"

namespace {

class FileCalls : public FolderTest {
  protected:
    // What a call reports, or 0 for success.
    static int ErrnoOf(int result) { return result == -1 ? errno : 0; }
    static DWORD ErrorOf(BOOL result) { return result == FALSE ? GetLastError() : 0; }
    BOOL Make(const char *name) const { return CreateDirectoryW(Wide(name).c_str(), nullptr); }
    bool Opens(const std::string &name, const wchar_t *mode) const {
        errno = 0;
        return static_cast<bool>(FileHandle(Wide(name), mode));
    }
    bool Appends(const std::string &name, const wchar_t *mode, const char *text) const {
        FileHandle file(Wide(name), mode);
        return file && std::fputs(text, file.get()) >= 0 && file.Close() && !file.Close();
    }
};

TEST_F(FileCalls, ModesReuseAFileOfAnotherSpelling) {
    folder_.Write("Music/Song", "old and long");
    EXPECT_TRUE(Appends("MUSIC\\song", L"wb", "new"));
    EXPECT_TRUE(Appends("music\\SONG", L"a+b", "er"));
    EXPECT_TRUE(Opens("music\\song", L"rb") && Appends("music\\song", L"r+b", "N"));
    EXPECT_TRUE(Opens("music\\fresh", L"wb") && Opens("music\\Other", L"wxb"));
    EXPECT_EQ(ErrnoOf(Opens("music\\song", L"wxb") ? 0 : -1), EEXIST);
    EXPECT_EQ(ErrnoOf(Opens("music\\song\\below", L"rb") ? 0 : -1), ENOENT);
    EXPECT_EQ(ErrnoOf(Opens("absent", L"rb") ? 0 : -1), ENOENT);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    for (const wchar_t *mode : {L"", L"b", L"rb,ccs=UTF-8"})
        EXPECT_FALSE(Opens("music\\song", mode));
    EXPECT_EQ(All(), "Music=/;Music/Other=;Music/Song=Newer;Music/fresh=;");
}

TEST_F(FileCalls, RefusesNamesThatWindowsCannotHold) {
    for (const char *name : {"a?", "a:b", "new\nline", "a\x01", "\"q\""})
        EXPECT_FALSE(Opens(name, L"wb") || Opens(name, L"ab") || Make(name)) << name;
    EXPECT_EQ(All(), "");
    folder_.Write("a?", "there all the same");
    folder_.Write("\xE9t\xE9", "no UTF-8");
    EXPECT_TRUE(Opens("a?", L"rb") && Opens("\xE9T\xE9", L"rb") && Opens("\xFE", L"wb"));
    EXPECT_TRUE(fs::exists(Native("\xFE")));
}

TEST_F(FileCalls, StatusAndAccessOfFilesAndOfWhatIsNone) {
    folder_.Write("Song", "12345");
    fs::create_directory(Native("dir"));
    fs::create_symlink("absent", Native("nowhere"));
    ASSERT_EQ(mkfifo(Native("pipe").c_str(), 0600), 0);
    for (const wchar_t *mode : {L"rb", L"wb", L"r+b"})
        EXPECT_FALSE(Opens("dir", mode) || Opens("pipe", mode)) << "no files";
    EXPECT_EQ(ErrnoOf(_wremove(Wide("dir").c_str())), EACCES);
    struct __stat64 status;
    ASSERT_EQ(_wstat64(Wide("song").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 5);
    EXPECT_EQ(status.st_mode & _S_IFMT, _S_IFREG);
    ASSERT_EQ(_wstat64(Wide("DIR").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & _S_IFMT, _S_IFDIR);
    EXPECT_EQ(_wstat64(Wide("nowhere").c_str(), &status), -1);
    EXPECT_EQ(ErrnoOf(_wstat64(Wide("song\\x").c_str(), &status)), ENOENT);
    EXPECT_TRUE(_waccess(Wide("SONG").c_str(), 6) == 0 && _waccess(Wide("NOWHERE").c_str(), 0) == 0);
    EXPECT_EQ(ErrnoOf(_waccess(Wide("absent").c_str(), 0)), ENOENT);
    EXPECT_EQ(ErrnoOf(_waccess(Wide(std::string(300, 'x')).c_str(), 0)), ENAMETOOLONG);
}

TEST_F(FileCalls, PositionsAndSizesBeyond32Bits) {
    constexpr int64_t kSize = (int64_t{3} << 32) + 1;
    struct _stat64i32 small;
    fs::resize_file(folder_.Write("big", ""), 0x7FFFFFFF);
    ASSERT_EQ(_wstat64i32(Wide("big").c_str(), &small), 0);
    EXPECT_EQ(small.st_size, 0x7FFFFFFF);
    fs::resize_file(Native("big"), kSize);
    EXPECT_EQ(ErrnoOf(_wstat64i32(Wide("big").c_str(), &small)), EOVERFLOW);
    const FileHandle file(Native("big"), L"rb");
    ASSERT_TRUE(file);
    EXPECT_EQ(_fseeki64(file.get(), -1, SEEK_END), 0);
    EXPECT_EQ(_ftelli64(file.get()), kSize - 1);
    EXPECT_NE(_fseeki64(file.get(), -1, SEEK_SET), 0);
}

TEST_F(FileCalls, MakingAndRemoving) {
    EXPECT_TRUE(Make("One") && Make("one\\Two") && !Make("absent\\Two"));
    EXPECT_EQ(ErrorOf(Make("ONE")), ERROR_ALREADY_EXISTS);
    folder_.Write("One/A", "");
    fs::create_symlink("A", Native("One/link"));
    EXPECT_EQ(All(), "One=/;One/A=;One/Two=/;One/link=-> A;");
    EXPECT_EQ(_wremove(Wide("one\\LINK").c_str()), 0);
    EXPECT_EQ(ErrorOf(RemoveDirectoryW(Wide("one").c_str())), ERROR_DIR_NOT_EMPTY);
    EXPECT_EQ(ErrorOf(DeleteFileW(Wide("one\\a").c_str())), 0U);
    EXPECT_EQ(ErrorOf(DeleteFileW(Wide("one\\a").c_str())), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf(RemoveDirectoryW(Wide("one\\two").c_str())), 0U);
    EXPECT_EQ(All(), "One=/;");
}

TEST_F(FileCalls, Moving) {
    folder_.Write("a", "a");
    folder_.Write("b", "b");
    fs::create_directory(Native("dir"));
    const auto move = [this](const char *from, const char *to, DWORD flags) {
        return ErrorOf(MoveFileExW(Wide(from).c_str(), Wide(to).c_str(), flags));
    };
    EXPECT_EQ(move("a", "B", 0), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(move("a", "B", MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH), 0U);
    EXPECT_EQ(All(), "b=a;dir=/;");
    EXPECT_EQ(move("b", "dir", MOVEFILE_REPLACE_EXISTING), ERROR_ACCESS_DENIED);
    EXPECT_EQ(move("b", "b?", 0), ERROR_INVALID_NAME);
    EXPECT_EQ(move("absent", "c", 0), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(move("b", "B", 0), 0U);
    EXPECT_EQ(All(), "B=a;dir=/;");
}

TEST(RuntimeText, ComparesWithoutCaseInAsciiAlone) {
    EXPECT_TRUE(_stricmp("TRUE", "true") == 0 && _stricmp("a", "B") < 0);
    EXPECT_NE(_stricmp("\xC3\x89", "\xC3\xA9"), 0);
}

}  // namespace
