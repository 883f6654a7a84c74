#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/windows/file_handle.h"
#include "platform/windows/native_path.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

class FileCalls : public testing::Test {
  protected:
    std::wstring Path(const std::string &name) const {
        return Utf8ToWide(folder_.path().string() + "\\" + name);
    }
    bool Opens(const std::string &name, const wchar_t *mode) const {
        errno = 0;
        return static_cast<bool>(FileHandle(Path(name), mode));
    }
    std::string Bytes(const std::string &name) const { return ReadWholeFile(folder_.path() / name); }

    TempFolder folder_;
};

TEST_F(FileCalls, WritingReusesAFileOfAnotherSpelling) {
    folder_.Write("Music/Song.mp3", "old and long");
    FileHandle file(Path("MUSIC\\song.mp3"), L"wb");
    ASSERT_TRUE(file);
    EXPECT_EQ(std::fputs("new", file.get()), 1);
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(Bytes("Music/Song.mp3"), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path() / "Music"), {}), 1);
    EXPECT_TRUE(Opens("music\\new.mp3", L"wb"));
    EXPECT_TRUE(fs::exists(folder_.path() / "Music" / "new.mp3"));
}

TEST_F(FileCalls, Modes) {
    folder_.Write("file", "abc");
    EXPECT_TRUE(Opens("file", L"rb"));
    EXPECT_TRUE(Opens("file", L"r+b"));
    {
        const FileHandle file(Path("FILE"), L"a+b");
        ASSERT_TRUE(file);
        EXPECT_EQ(std::fputs("d", file.get()), 1);
    }
    EXPECT_EQ(Bytes("file"), "abcd");
    EXPECT_FALSE(Opens("File", L"wxb"));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(Opens("fresh", L"wxb"));
    EXPECT_FALSE(Opens("absent", L"rb"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(Opens("file\\below", L"rb"));
    EXPECT_EQ(errno, ENOENT);
    for (const wchar_t *mode : {L"", L"b", L"rb,ccs=UTF-8"})
        EXPECT_FALSE(Opens("file", mode));
}

TEST_F(FileCalls, RefusesNamesThatWindowsCannotHold) {
    for (const char *name : {"a?", "a:b", "new\nline", "a\x01", "\"q\""}) {
        EXPECT_FALSE(Opens(name, L"wb")) << name;
        EXPECT_FALSE(Opens(name, L"ab")) << name;
        EXPECT_EQ(CreateDirectoryW(Path(name).c_str(), nullptr), FALSE) << name;
    }
    EXPECT_TRUE(fs::is_empty(folder_.path()));
    folder_.Write("a?", "there all the same");
    EXPECT_TRUE(Opens("a?", L"rb"));
}

TEST_F(FileCalls, FoldersAndPipesAreNoFiles) {
    fs::create_directory(folder_.path() / "folder");
    ASSERT_EQ(mkfifo((folder_.path() / "pipe").c_str(), 0600), 0);
    for (const wchar_t *mode : {L"rb", L"wb", L"r+b"}) {
        EXPECT_FALSE(Opens("folder", mode));
        EXPECT_FALSE(Opens("pipe", mode));
    }
    EXPECT_EQ(_wremove(Path("folder").c_str()), -1);
    EXPECT_EQ(errno, EACCES);
}

TEST_F(FileCalls, StatusAndAccess) {
    folder_.Write("Song", "12345");
    fs::create_directory(folder_.path() / "dir");
    fs::create_symlink("absent", folder_.path() / "nowhere");
    struct __stat64 status;
    ASSERT_EQ(_wstat64(Path("song").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 5);
    EXPECT_EQ(status.st_mode & _S_IFMT, _S_IFREG);
    ASSERT_EQ(_wstat64(Path("DIR").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & _S_IFMT, _S_IFDIR);
    EXPECT_EQ(_wstat64(Path("nowhere").c_str(), &status), -1);
    EXPECT_EQ(_wstat64(Path("song\\x").c_str(), &status), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(_waccess(Path("SONG").c_str(), 0), 0);
    EXPECT_EQ(_waccess(Path("SONG").c_str(), 6), 0);
    EXPECT_EQ(_waccess(Path("NOWHERE").c_str(), 0), 0);
    EXPECT_EQ(_waccess(Path("absent").c_str(), 0), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(_waccess(Path(std::string(300, 'x')).c_str(), 0), -1);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(FileCalls, PositionsAndSizesBeyond32Bits) {
    constexpr int64_t kSize = (int64_t{3} << 32) + 1;
    fs::resize_file(folder_.Write("big", ""), kSize);
    struct _stat64i32 small;
    EXPECT_EQ(_wstat64i32(Path("big").c_str(), &small), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    fs::resize_file(folder_.path() / "big", 0x7FFFFFFF);
    ASSERT_EQ(_wstat64i32(Path("big").c_str(), &small), 0);
    EXPECT_EQ(small.st_size, 0x7FFFFFFF);
    fs::resize_file(folder_.path() / "big", kSize);
    const FileHandle file((folder_.path() / "big").string(), L"rb");
    ASSERT_TRUE(file);
    EXPECT_EQ(_fseeki64(file.get(), -1, SEEK_END), 0);
    EXPECT_EQ(_ftelli64(file.get()), kSize - 1);
    EXPECT_NE(_fseeki64(file.get(), -1, SEEK_SET), 0);
}

TEST_F(FileCalls, Removing) {
    folder_.Write("Music/A", "");
    folder_.Write("Music/B", "");
    fs::create_symlink("A", folder_.path() / "Music" / "link");
    EXPECT_EQ(_wremove(Path("music\\LINK").c_str()), 0);
    EXPECT_EQ(RemoveDirectoryW(Path("music").c_str()), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_DIR_NOT_EMPTY);
    EXPECT_EQ(_wremove(Path("music\\a").c_str()), 0);
    EXPECT_EQ(DeleteFileW(Path("music\\b").c_str()), TRUE);
    EXPECT_EQ(DeleteFileW(Path("music\\b").c_str()), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RemoveDirectoryW(Path("music").c_str()), TRUE);
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(FileCalls, MakingFolders) {
    EXPECT_EQ(CreateDirectoryW(Path("One").c_str(), nullptr), TRUE);
    EXPECT_EQ(CreateDirectoryW(Path("ONE").c_str(), nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(CreateDirectoryW(Path("one\\Two").c_str(), nullptr), TRUE);
    EXPECT_EQ(CreateDirectoryW(Path("absent\\Two").c_str(), nullptr), FALSE);
    EXPECT_TRUE(fs::is_directory(folder_.path() / "One" / "Two"));
}

TEST_F(FileCalls, Moving) {
    folder_.Write("a", "a");
    folder_.Write("b", "b");
    fs::create_directory(folder_.path() / "dir");
    const auto move = [this](const char *from, const char *to, DWORD flags) {
        return MoveFileExW(Path(from).c_str(), Path(to).c_str(), flags);
    };
    EXPECT_EQ(move("a", "B", 0), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(move("a", "B", MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH), TRUE);
    EXPECT_EQ(Bytes("b"), "a");
    EXPECT_EQ(move("b", "dir", MOVEFILE_REPLACE_EXISTING), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(move("b", "b?", 0), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
    EXPECT_EQ(move("absent", "c", 0), FALSE);
    EXPECT_EQ(move("b", "B", 0), TRUE);
    EXPECT_EQ(Bytes("B"), "a");
    EXPECT_FALSE(fs::exists(folder_.path() / "b"));
}

TEST_F(FileCalls, NamesThatAreNotUtf8) {
    folder_.Write("\xE9t\xE9", "summer");
    EXPECT_TRUE(Opens("\xE9T\xE9", L"rb"));
    EXPECT_TRUE(Opens("\xFE", L"wb"));
    EXPECT_TRUE(fs::exists(folder_.path() / "\xFE"));
}

TEST(RuntimeText, ComparesWithoutCaseInAsciiAlone) {
    EXPECT_EQ(_stricmp("TRUE", "true"), 0);
    EXPECT_LT(_stricmp("a", "B"), 0);
    EXPECT_NE(_stricmp("\xC3\x89", "\xC3\xA9"), 0);
    char *copy = _strdup("text");
    EXPECT_STREQ(copy, "text");
    std::free(copy);
}

}  // namespace
