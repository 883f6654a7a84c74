#include "content/path_text.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <tuple>

#include "content/file_kinds.h"
#include "fixtures/scoped_environment.h"

namespace {

TEST(PathText, SeparatorsAndTheLastDotCutAPath) {
    const std::tuple<std::string, std::optional<std::string>, std::string, std::string> rows[] = {
        {"a\\b/c", "a\\b", "b/c", ""}, {"a/b\\c.d.ipa", "a/b", "c.d.ipa", ".ipa"},
        {"/c.", "", "/c.", "."},       {"a.d\\", "a.d", "", ".d\\"},
        {"c", std::nullopt, "c", ""},  {"", std::nullopt, "", ""}};
    for (const auto &[path, directory, name, extension] : rows) {
        EXPECT_EQ(DirectoryOfPath(path), directory) << path;
        EXPECT_EQ(FileNameOfPath(path), name) << path;
        EXPECT_EQ(ExtensionOfPath(path), extension) << path;
    }
    std::string text = "a\\\xC3\xA9\\";
    ReplaceChar(text, '\\', '/');
    EXPECT_EQ(text, "a/\xC3\xA9/");
}

TEST(TempPath, IsOfAnyLengthAndHasOneFolderOrNone) {
    for (const size_t size : {5U, 258U, 259U, 260U, 261U, 5000U}) {
        const std::string folder = "/t\xC3\xA9" + std::string(size - 3, 'f');
        const ScopedEnvironment temp("TEMP", folder);
        EXPECT_EQ(BuildTempPath(std::nullopt, "n.jpg"), folder + "\\n.jpg");
        EXPECT_EQ(BuildTempPath(folder, "n"), folder + "\\" + folder + "\\n");
        EXPECT_EQ(BuildTempPath("", "n"), folder + "\\\\n");
        const std::wstring wide = Utf8ToWide(folder);
        EXPECT_EQ(BuildTempPathW(std::nullopt, L"n"), wide + L"\\n");
        EXPECT_EQ(BuildTempPathW(L"b", L"n"), wide + L"\\b\\n");
        EXPECT_EQ(BuildTempPathW(L"", L"n"), wide + L"\\n");
    }
    const ScopedEnvironment temp("TEMP", std::nullopt);
    const ScopedEnvironment system("TMPDIR", "/system/temporary");
    EXPECT_EQ(BuildTempPath(std::nullopt, "n"), "/system/temporary\\n");
}

// The numbers of a kind and its media type.
std::string KindOf(const std::string &path) {
    const auto category = GetFileCategory(path);
    const std::string numbers =
        category ? std::to_string(category->category) + " " + std::to_string(category->subcategory) : "none";
    return numbers + " " + std::to_string(itdb_get_media_type(path));
}

TEST(FileKinds, ExtensionDecidesWhateverItsCase) {
    const std::pair<std::string, std::string> rows[] = {
        {"mp3 m4a", "2 20 0"},       {"Aac WAV", "2 20 -1"},          {"m4r", "2 21 2"},
        {"audible book", "2 22 -1"}, {"mp4 mpeg MPEG4", "3 30 1"},    {"m4v mov", "3 30 1"},
        {"mpg mp4v", "3 30 -1"},     {"jpg jpeg png gif", "4 40 -1"}, {"pdf", "5 50 6"},
        {"EPUB", "5 50 7"},          {"ipa mp3.ipa", "6 60 8"},       {"mp mp33 mp3/name mp3.", "none -1"}};
    for (const auto &[text, kind] : rows) {
        std::istringstream extensions(text);
        for (std::string extension; extensions >> extension;)
            EXPECT_EQ(KindOf("C:\\a.b\\c." + extension), kind) << extension;
    }
    EXPECT_EQ(GetFileCategory("mp3"), std::nullopt);
    EXPECT_EQ(itdb_get_ext_pos("folder.d/name"), "d/name");
    const char *const warning = "itdb_get_media_type: assertion 'path' failed";
    g_test_expect_message(nullptr, G_LOG_LEVEL_CRITICAL, warning);
    EXPECT_EQ(itdb_get_media_type(std::nullopt), kNoMediaType);
    g_test_assert_expected_messages();
}

}  // namespace
