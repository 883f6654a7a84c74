#include "content/file_kinds.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

TEST(FileKinds, ExtensionDecidesWhateverItsCase) {
    const std::vector<std::tuple<std::string, FileCategory, int32_t>> cases = {
        {"a.mp3", {2, 20}, 0},      {"a.Aac", {2, 20}, -1},        {"a.m4a", {2, 20}, 0},
        {"a.WAV", {2, 20}, -1},     {"a.m4r", {2, 21}, 2},         {"a.mp4", {3, 30}, 1},
        {"a.mpg", {3, 30}, -1},     {"a.mpeg", {3, 30}, 1},        {"a.MPEG4", {3, 30}, 1},
        {"a.m4v", {3, 30}, 1},      {"a.mp4v", {3, 30}, -1},       {"a.mov", {3, 30}, 1},
        {"a.audible", {2, 22}, -1}, {"a.book", {2, 22}, -1},       {"a.jpg", {4, 40}, -1},
        {"a.jpeg", {4, 40}, -1},    {"a.png", {4, 40}, -1},        {"a.gif", {4, 40}, -1},
        {"a.pdf", {5, 50}, 6},      {"C:\\b\\x.EPUB", {5, 50}, 7}, {"a.ipa", {6, 60}, 8},
        {"a.mp3.ipa", {6, 60}, 8},
    };
    for (const auto &[path, category, media_type] : cases) {
        EXPECT_EQ(GetFileCategory(path), category) << path;
        EXPECT_EQ(itdb_get_media_type(path), media_type) << path;
    }
}

TEST(FileKinds, OtherTextBehindTheLastDotHasNoKind) {
    for (const char *path : {"a.", ".", "a.mp", "a.mp33", "a.txt", "folder.mp3/name", "a.mp3 "}) {
        EXPECT_EQ(GetFileCategory(path), std::nullopt) << path;
        EXPECT_EQ(itdb_get_media_type(path), kNoMediaType) << path;
    }
    EXPECT_EQ(itdb_get_ext_pos("folder.d/name"), "d/name");
    EXPECT_EQ(itdb_get_ext_pos(".epub"), "epub");
    EXPECT_EQ(itdb_get_ext_pos("a."), "");
}

std::string *g_warning = nullptr;

void KeepWarning(const gchar *, GLogLevelFlags, const gchar *message, gpointer) {
    *g_warning = message;
}

TEST(FileKinds, MissingPathOrExtensionGivesAWarning) {
    std::string warning;
    g_warning = &warning;
    const GLogFunc old = g_log_set_default_handler(KeepWarning, nullptr);
    EXPECT_EQ(itdb_get_media_type(std::nullopt), kNoMediaType);
    EXPECT_EQ(warning, "itdb_get_media_type: assertion 'path' failed");
    EXPECT_EQ(itdb_get_media_type("no extension"), kNoMediaType);
    EXPECT_EQ(warning, "itdb_get_media_type: assertion 'ext' failed");
    EXPECT_EQ(itdb_get_ext_pos(std::nullopt), std::nullopt);
    EXPECT_EQ(warning, "itdb_get_ext_pos: assertion 'path' failed");
    warning.clear();
    EXPECT_EQ(itdb_get_ext_pos(""), std::nullopt);
    EXPECT_EQ(GetFileCategory(""), std::nullopt);
    EXPECT_EQ(warning, "");
    g_log_set_default_handler(old, nullptr);
}

}  // namespace
