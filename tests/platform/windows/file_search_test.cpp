#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include "platform/windows/file_names.h"
#include "platform/windows/folder_identity.h"
#include "platform/windows/folder_search.h"
#include "platform/windows/text.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

std::wstring Pattern(const TempFolder &folder, const std::string &pattern) {
    return Utf8ToWide(folder.path().string() + "\\" + pattern);
}

std::multiset<std::string> Names(const TempFolder &folder, const std::string &pattern) {
    std::multiset<std::string> names;
    for (const WIN32_FIND_DATAW &entry : FolderSearch(Pattern(folder, pattern)))
        names.insert(WideToUtf8(entry.cFileName));
    return names;
}

WIN32_FIND_DATAW FindOne(const TempFolder &folder, const std::string &name) {
    WIN32_FIND_DATAW found = {};
    for (const WIN32_FIND_DATAW &entry : FolderSearch(Pattern(folder, name)))
        found = entry;
    return found;
}

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(FolderSearch, Patterns) {
    const TempFolder folder;
    for (const char *name : {"Tones/a.m4r", "Tones/B.M4R", "Tones/.m4r", "Tones/c.m4ra", "Tones/noext"})
        folder.Write(name, "");
    folder.Write("Tones/sub.m4r/inner.m4r", "");
    const auto all = UnorderedElementsAre(".", "..", "a.m4r", "B.M4R", ".m4r", "c.m4ra", "noext", "sub.m4r");
    EXPECT_THAT(Names(folder, "tones\\*"), all);
    EXPECT_THAT(Names(folder, "Tones/*.*"), all);
    EXPECT_THAT(Names(folder, "TONES\\\\*.m4r"), UnorderedElementsAre("a.m4r", "B.M4R", ".m4r", "sub.m4r"));
    EXPECT_THAT(Names(folder, "Tones\\?.M4?"), UnorderedElementsAre("a.m4r", "B.M4R"));
    EXPECT_THAT(Names(folder, "Tones\\NOEXT"), ElementsAre("noext"));
    EXPECT_THAT(Names(folder, "Tones\\*.zip"), IsEmpty());
    EXPECT_THAT(Names(folder, "absent\\*"), IsEmpty());
    EXPECT_THAT(Names(folder, "Tones\\noext\\*"), IsEmpty());
    EXPECT_THAT(Names(folder, ""), ElementsAre(folder.path().filename().string()));
}

TEST(FolderSearch, ErrorsTellWhatIsMissing) {
    const TempFolder folder;
    WIN32_FIND_DATAW entry;
    EXPECT_EQ(FindFirstFileW(Pattern(folder, "absent\\*").c_str(), &entry), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(Pattern(folder, "*.zip").c_str(), &entry), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    HANDLE search = FindFirstFileW(Pattern(folder, "*").c_str(), &entry);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindNextFileW(search, &entry), TRUE);
    EXPECT_EQ(FindNextFileW(search, &entry), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_EQ(FindClose(search), TRUE);
    EXPECT_EQ(FindClose(INVALID_HANDLE_VALUE), FALSE);
}

TEST(FolderSearch, SizesTimesAndKinds) {
    const TempFolder folder;
    fs::resize_file(folder.Write("big", ""), (uint64_t{5} << 32) + 7);
    fs::create_directory(folder.path() / "real");
    fs::create_directory_symlink("real", folder.path() / "to folder");
    fs::create_symlink("big", folder.path() / "to file");
    fs::create_symlink("absent", folder.path() / "to nothing");
    const WIN32_FIND_DATAW big = FindOne(folder, "big");
    EXPECT_EQ(big.nFileSizeHigh, 5U);
    EXPECT_EQ(big.nFileSizeLow, 7U);
    EXPECT_EQ(big.dwFileAttributes, FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(FindOne(folder, "real").dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(FindOne(folder, "to folder").dwFileAttributes,
              FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(FindOne(folder, "to file").dwFileAttributes, FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(FindOne(folder, "to file").nFileSizeHigh, 5U);
    EXPECT_EQ(FindOne(folder, "to nothing").dwFileAttributes, FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(GetFileAttributesW(Pattern(folder, "TO FOLDER").c_str()),
              FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(GetFileAttributesW(Pattern(folder, "absent").c_str()), INVALID_FILE_ATTRIBUTES);
}

uint64_t Ticks(const FILETIME &time) {
    return (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

TEST(FolderSearch, TheCreationTimeIsNotThatOfTheLastWrite) {
    const TempFolder folder;
    const fs::path file = folder.Write("file", "");
    struct statx status;
    ASSERT_EQ(statx(AT_FDCWD, file.c_str(), 0, STATX_BTIME, &status), 0);
    if ((status.stx_mask & STATX_BTIME) == 0) GTEST_SKIP() << "this file system keeps no birth time";
    const timespec times[] = {{1000, 0}, {1'000'000'000, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const WIN32_FIND_DATAW entry = FindOne(folder, "file");
    EXPECT_EQ(Ticks(entry.ftLastWriteTime), 126444736001234567U);  // 2001-09-09 01:46:40.1234567
    const auto birth = static_cast<uint64_t>(status.stx_btime.tv_sec + 11644473600) * 10'000'000U;
    EXPECT_EQ(Ticks(entry.ftCreationTime), birth + status.stx_btime.tv_nsec / 100);
}

TEST(FolderSearch, NamesThatAreNotUtf8AndLongNames) {
    const TempFolder folder;
    const std::string longest(255, 'x');
    folder.Write("\xFF\xC3(", "");
    folder.Write(longest, "");
    EXPECT_THAT(Names(folder, "*"), UnorderedElementsAre(".", "..", "\xFF\xC3(", longest));
}

// Whether a pattern fits, told by its definition alone.
bool Fits(std::wstring_view pattern, std::wstring_view name) {
    if (pattern.empty()) return name.empty();
    if (pattern[0] == L'*') {
        return Fits(pattern.substr(1), name) || (!name.empty() && Fits(pattern, name.substr(1)));
    }
    const bool first = !name.empty() && (pattern[0] == L'?' || pattern[0] == name[0]);
    return first && Fits(pattern.substr(1), name.substr(1));
}

// The texts of up to `size` characters of an alphabet.
std::vector<std::wstring> Texts(size_t size, std::wstring_view alphabet) {
    std::vector<std::wstring> texts = {L""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < size; ++i) {
        for (const wchar_t c : alphabet)
            texts.emplace_back(texts[i]).push_back(c);
    }
    return texts;
}

TEST(MatchesPattern, AgreesWithItsDefinition) {
    const std::vector<std::wstring> names = Texts(5, L"ab.");
    for (const std::wstring &pattern : Texts(4, L"a*?.")) {
        for (const std::wstring &name : names) {
            ASSERT_EQ(MatchesPattern(pattern, name), Fits(pattern, name))
                << WideToUtf8(pattern) << " on " << WideToUtf8(name);
        }
    }
}

TEST(MatchesPattern, ManyStarsTakeNoTime) {
    std::wstring pattern;
    for (int i = 0; i < 100; ++i)
        pattern += L"*a";
    EXPECT_FALSE(MatchesPattern(pattern + L"b", std::wstring(250, L'a')));
}

TEST(FolderIdentity, IsThatOfTheFolderAndNotOfThePath) {
    const TempFolder folder;
    fs::create_directories(folder.path() / "a" / "b");
    fs::create_directory_symlink("..", folder.path() / "a" / "up");
    folder.Write("file", "");
    const auto identity = [&folder](const std::string &name) {
        return IdentifyFolder(Pattern(folder, name));
    };
    ASSERT_TRUE(identity("a"));
    EXPECT_EQ(identity("a\\up\\A"), identity("a"));
    EXPECT_NE(identity("a\\b"), identity("a"));
    EXPECT_FALSE(identity("file"));
    EXPECT_FALSE(identity("absent"));
    EXPECT_EQ(FolderSearch(Pattern(folder, "a\\up\\A\\*")).Identity(L""), identity("a"));
    EXPECT_FALSE(FolderSearch(Pattern(folder, "absent\\*")).Identity(L""));
}

TEST(FolderSearch, ABasicOneTellsTheSameNamesAndAttributes) {
    const TempFolder folder;
    folder.Write("folder/file", "12345");
    fs::create_directory_symlink("folder", folder.path() / "to folder");
    fs::create_symlink("folder/file", folder.path() / "to file");
    fs::create_symlink("absent", folder.path() / "to nothing");
    ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    const auto entries = [&](FINDEX_INFO_LEVELS level) {
        std::set<std::pair<std::wstring, DWORD>> found;
        for (const WIN32_FIND_DATAW &entry : FolderSearch(Pattern(folder, "*"), level))
            found.insert({entry.cFileName, entry.dwFileAttributes});
        return found;
    };
    EXPECT_EQ(entries(FindExInfoBasic), entries(FindExInfoStandard));
    EXPECT_EQ(entries(FindExInfoBasic).size(), 7U);
}

}  // namespace
