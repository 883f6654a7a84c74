#include "content/path_text.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/scoped_environment.h"

namespace {

TEST(PathText, FolderEndsAtTheLaterSeparator) {
    EXPECT_EQ(DirectoryOfPath("a\\b/c"), "a\\b");
    EXPECT_EQ(DirectoryOfPath("a/b\\c"), "a/b");
    EXPECT_EQ(DirectoryOfPath("/c"), "");
    EXPECT_EQ(DirectoryOfPath("a\\"), "a");
    EXPECT_EQ(DirectoryOfPath("c"), std::nullopt);
    EXPECT_EQ(DirectoryOfPath(""), std::nullopt);
}

TEST(PathText, OnlyABackslashEndsTheFolderOfAName) {
    EXPECT_EQ(FileNameOfPath("C:\\a\\b.ipa"), "b.ipa");
    EXPECT_EQ(FileNameOfPath("C:\\a/b.ipa"), "a/b.ipa");
    EXPECT_EQ(FileNameOfPath("/a/b.ipa"), "/a/b.ipa");
    EXPECT_EQ(FileNameOfPath("a\\"), "");
    EXPECT_EQ(FileNameOfPath(""), "");
}

TEST(PathText, ExtensionIsLookedForInTheWholeText) {
    EXPECT_EQ(ExtensionOfPath("a.b.ipa"), ".ipa");
    EXPECT_EQ(ExtensionOfPath("a.d\\b"), ".d\\b");
    EXPECT_EQ(ExtensionOfPath("a."), ".");
    EXPECT_EQ(ExtensionOfPath("a"), "");
}

TEST(PathText, ReplacingASeparatorKeepsUtf8) {
    std::string text = "a\\\xC3\xA9\\";
    ReplaceChar(text, '\\', '/');
    EXPECT_EQ(text, "a/\xC3\xA9/");
}

TEST(PathText, WideTextRoundTrip) {
    EXPECT_EQ(Utf8ToWide("\xC3\xA9\xE2\x82\xAC"), L"\u00E9\u20AC");
    for (const char *text : {"", "plain", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5", "not UTF-8: \xFF\xC3"}) {
        EXPECT_EQ(WideToUtf8(Utf8ToWide(text)), text);
    }
}

TEST(TempPath, EmptyFolderIsAFolderInUtf8Only) {
    const ScopedEnvironment temp("TEMP", "/t\xC3\xA9");
    EXPECT_EQ(BuildTempPath(std::nullopt, "n.jpg"), "/t\xC3\xA9\\n.jpg");
    EXPECT_EQ(BuildTempPath("book", "n"), "/t\xC3\xA9\\book\\n");
    EXPECT_EQ(BuildTempPath("", "n"), "/t\xC3\xA9\\\\n");
    EXPECT_EQ(BuildTempPathW(std::nullopt, L"n"), L"/t\u00E9\\n");
    EXPECT_EQ(BuildTempPathW(L"book", L"n"), L"/t\u00E9\\book\\n");
    EXPECT_EQ(BuildTempPathW(L"", L"n"), L"/t\u00E9\\n");
}

TEST(TempPath, NoLengthIsTooLong) {
    for (const size_t size : {258U, 259U, 260U, 261U, 5000U}) {
        std::string folder(size, 'f');
        folder.front() = '/';
        const ScopedEnvironment temp("TEMP", folder);
        std::string expected = folder;
        expected.append("\\").append(folder).append("\\").append(folder);
        EXPECT_EQ(BuildTempPath(folder, folder), expected) << size;
        EXPECT_EQ(BuildTempPathW(std::nullopt, L"n"), Utf8ToWide(folder) + L"\\n") << size;
    }
}

TEST(TempPath, UnsetVariableMeansTheSystemsFolder) {
    const ScopedEnvironment temp("TEMP", std::nullopt);
    const ScopedEnvironment system("TMPDIR", "/system/temporary");
    EXPECT_EQ(BuildTempPath(std::nullopt, "n"), "/system/temporary\\n");
}

}  // namespace
