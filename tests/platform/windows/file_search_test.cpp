#include <fcntl.h>
#include <sys/stat.h>

#include <set>

#include "platform/windows/file_names.h"
#include "platform/windows/folder_identity.h"
#include "platform/windows/folder_search.h"
#include "tests/platform/windows/folder_test.h"

namespace {

using Names = std::multiset<std::string>;

class FolderSearchTest : public FolderTest {
  protected:
    Names Find(const std::string &pattern) const {
        Names names;
        for (const WIN32_FIND_DATAW &entry : FolderSearch(Wide(pattern)))
            names.insert(WideToUtf8(entry.cFileName));
        return names;
    }
    WIN32_FIND_DATAW FindOne(const std::string &name) const { return *FolderSearch(Wide(name)).begin(); }
};

TEST_F(FolderSearchTest, Patterns) {
    Names all = {"a.m4r", "B.M4R", ".m4r", "noext", "\xFF\xC3(", std::string(255, 'x')};
    for (const std::string &name : all)
        folder_.Write("Tones/" + name, "");
    folder_.Write("Tones/sub.m4r/inner.m4r", "");
    all.insert({".", "..", "sub.m4r"});
    EXPECT_EQ(Find("tones\\*"), all);
    EXPECT_EQ(Find("Tones/*.*"), all);
    EXPECT_EQ(Find("TONES\\\\*.m4r"), (Names{"a.m4r", "B.M4R", ".m4r", "sub.m4r"}));
    EXPECT_EQ(Find("Tones\\?.M4?"), (Names{"a.m4r", "B.M4R"}));
    EXPECT_EQ(Find("Tones\\NOEXT"), Names{"noext"});
    for (const char *nothing : {"Tones\\*.zip", "absent\\*", "Tones\\noext\\*"})
        EXPECT_EQ(Find(nothing), Names());
    EXPECT_EQ(Find(""), Names{folder_.path().filename().string()});
}

TEST_F(FolderSearchTest, ErrorsTellWhatIsMissing) {
    WIN32_FIND_DATAW entry;
    EXPECT_EQ(FindFirstFileW(Wide("absent\\*").c_str(), &entry), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(Wide("*.zip").c_str(), &entry), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    HANDLE search = FindFirstFileW(Wide("*").c_str(), &entry);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindNextFileW(search, &entry), TRUE);
    EXPECT_EQ(FindNextFileW(search, &entry), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_EQ(FindClose(search), TRUE);
    EXPECT_EQ(FindClose(INVALID_HANDLE_VALUE), FALSE);
}

TEST_F(FolderSearchTest, SizesAndKindsAreTheSameInABasicSearch) {
    fs::resize_file(folder_.Write("big", ""), (uint64_t{5} << 32) + 7);
    fs::create_directory(Native("real"));
    fs::create_directory_symlink("real", Native("to folder"));
    fs::create_symlink("big", Native("to file"));
    fs::create_symlink("absent", Native("to nothing"));
    ASSERT_EQ(mkfifo(Native("pipe").c_str(), 0600), 0);
    const auto attributes = [this](FINDEX_INFO_LEVELS level) {
        std::map<std::wstring, DWORD> found;
        for (const WIN32_FIND_DATAW &entry : FolderSearch(Wide("*"), level))
            found[entry.cFileName] = entry.dwFileAttributes;
        return found;
    };
    auto found = attributes(FindExInfoStandard);
    EXPECT_EQ(attributes(FindExInfoBasic), found);
    EXPECT_EQ(found.size(), 8U);
    EXPECT_EQ(found[L"big"], FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(found[L"real"], FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(found[L"to folder"], FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
    for (const wchar_t *link : {L"to file", L"to nothing"})
        EXPECT_EQ(found[link], FILE_ATTRIBUTE_REPARSE_POINT);
    for (const char *name : {"big", "to file"})
        EXPECT_EQ(std::pair(FindOne(name).nFileSizeHigh, FindOne(name).nFileSizeLow), std::pair(5U, 7U));
    EXPECT_EQ(GetFileAttributesW(Wide("TO FOLDER").c_str()), found[L"to folder"]);
    EXPECT_EQ(GetFileAttributesW(Wide("absent").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(FolderSearchTest, TheCreationTimeIsNotThatOfTheLastWrite) {
    const fs::path file = folder_.Write("file", "");
    struct statx status;
    ASSERT_EQ(statx(AT_FDCWD, file.c_str(), 0, STATX_BTIME, &status), 0);
    if ((status.stx_mask & STATX_BTIME) == 0) GTEST_SKIP() << "this file system keeps no birth time";
    const timespec times[] = {{1000, 0}, {1'000'000'000, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const WIN32_FIND_DATAW entry = FindOne("file");
    const auto ticks = [](FILETIME time) { return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
    EXPECT_EQ(ticks(entry.ftLastWriteTime), 126444736001234567U);  // 2001-09-09 01:46:40.1234567
    const auto birth = static_cast<uint64_t>(status.stx_btime.tv_sec + 11644473600) * 10'000'000U;
    EXPECT_EQ(ticks(entry.ftCreationTime), birth + status.stx_btime.tv_nsec / 100);
}

// Whether a pattern fits, told by its definition alone.
bool Fits(std::wstring_view pattern, std::wstring_view name) {
    if (pattern.empty()) return name.empty();
    if (pattern[0] == L'*')
        return Fits(pattern.substr(1), name) || (!name.empty() && Fits(pattern, name.substr(1)));
    const bool first = !name.empty() && (pattern[0] == L'?' || pattern[0] == name[0]);
    return first && Fits(pattern.substr(1), name.substr(1));
}

// The texts of up to `size` characters of an alphabet.
std::vector<std::wstring> Texts(size_t size, std::wstring_view alphabet) {
    std::vector<std::wstring> texts = {L""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < size; ++i) {
        for (const wchar_t c : alphabet)
            texts.push_back(texts[i] + c);
    }
    return texts;
}

TEST(MatchesPattern, AgreesWithItsDefinitionAndTakesNoTimeForManyStars) {
    const std::vector<std::wstring> names = Texts(5, L"ab.");
    for (const std::wstring &pattern : Texts(4, L"a*?.")) {
        for (const std::wstring &name : names)
            ASSERT_EQ(MatchesPattern(pattern, name), Fits(pattern, name))
                << WideToUtf8(pattern) << " on " << WideToUtf8(name);
    }
    std::wstring stars;
    for (int i = 0; i < 100; ++i)
        stars += L"*a";
    EXPECT_FALSE(MatchesPattern(stars + L"b", std::wstring(250, L'a')));
}

TEST_F(FolderSearchTest, AnIdentityIsThatOfTheFolderAndNotOfThePath) {
    fs::create_directories(Native("a/b"));
    fs::create_directory_symlink("..", Native("a/up"));
    folder_.Write("file", "");
    const auto identity = [this](const std::string &name) { return IdentifyFolder(Wide(name)); };
    ASSERT_TRUE(identity("a"));
    EXPECT_EQ(identity("a\\up\\A"), identity("a"));
    EXPECT_NE(identity("a\\b"), identity("a"));
    EXPECT_FALSE(identity("file") || identity("absent"));
    EXPECT_EQ(FolderSearch(Wide("a\\up\\A\\*")).Identity(L""), identity("a"));
    EXPECT_FALSE(FolderSearch(Wide("absent\\*")).Identity(L""));
}

}  // namespace
