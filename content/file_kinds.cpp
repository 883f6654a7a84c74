#include "content/file_kinds.h"

#include <glib.h>

#include <algorithm>
#include <array>

namespace {

struct CategoryRow {
    std::string_view extension;
    FileCategory category;
};

constexpr FileCategory kMusic = {2, 20};
constexpr FileCategory kRingtone = {2, 21};
constexpr FileCategory kAudiobook = {2, 22};
constexpr FileCategory kMovie = {3, 30};
constexpr FileCategory kPicture = {4, 40};
constexpr FileCategory kBook = {5, 50};
constexpr FileCategory kApp = {6, 60};

constexpr auto kCategories = std::to_array<CategoryRow>({
    {"mp3", kMusic},    {"aac", kMusic},   {"m4a", kMusic},         {"wav", kMusic},      {"m4r", kRingtone},
    {"mp4", kMovie},    {"mpg", kMovie},   {"mpeg", kMovie},        {"mpeg4", kMovie},    {"m4v", kMovie},
    {"mp4v", kMovie},   {"mov", kMovie},   {"audible", kAudiobook}, {"book", kAudiobook}, {"jpg", kPicture},
    {"jpeg", kPicture}, {"png", kPicture}, {"gif", kPicture},       {"pdf", kBook},       {"epub", kBook},
    {"ipa", kApp},
});

struct MediaTypeRow {
    std::string_view extension;
    int32_t code;
};

constexpr int32_t kMediaTypeAudio = 0;
constexpr int32_t kMediaTypeVideo = 1;
constexpr int32_t kMediaTypeRingtone = 2;
constexpr int32_t kMediaTypeApp = 8;

// The first row of an extension counts: "m4a" is audio, though a film may come under that name too.
constexpr auto kMediaTypes = std::to_array<MediaTypeRow>({
    {"mp3", kMediaTypeAudio},
    {"m4a", kMediaTypeAudio},
    {"m4r", kMediaTypeRingtone},
    {"mp4", kMediaTypeVideo},
    {"mov", kMediaTypeVideo},
    {"m4a", kMediaTypeVideo},
    {"mpeg", kMediaTypeVideo},
    {"mpeg4", kMediaTypeVideo},
    {"m4v", kMediaTypeVideo},
    {"pdf", kMediaTypePdf},
    {"epub", kMediaTypeEpub},
    {"ipa", kMediaTypeApp},
});

bool SameText(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return g_ascii_tolower(a) == g_ascii_tolower(b); });
}

// The first row of a table for an extension; null if there is none.
template <typename Table>
auto FindRow(const Table &table, std::string_view extension) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const auto &entry) { return SameText(entry.extension, extension); });
    return row == table.end() ? nullptr : &*row;
}

std::optional<std::string_view> TextBehindLastDot(std::string_view path) {
    const size_t dot = path.rfind('.');
    if (dot == std::string_view::npos) return std::nullopt;
    return path.substr(dot + 1);
}

}  // namespace

std::optional<FileCategory> GetFileCategory(std::string_view path) {
    const std::optional<std::string_view> extension = TextBehindLastDot(path);
    const CategoryRow *row = extension ? FindRow(kCategories, *extension) : nullptr;
    if (row == nullptr) return std::nullopt;
    return row->category;
}

std::optional<std::string_view> itdb_get_ext_pos(std::optional<std::string_view> path) {
    if (!path) {
        g_return_if_fail_warning(nullptr, "itdb_get_ext_pos", "path");
        return std::nullopt;
    }
    return TextBehindLastDot(*path);
}

int32_t itdb_get_media_type(std::optional<std::string_view> path) {
    if (!path) {
        g_return_if_fail_warning(nullptr, "itdb_get_media_type", "path");
        return kNoMediaType;
    }
    const std::optional<std::string_view> extension = itdb_get_ext_pos(path);
    if (!extension) {
        g_return_if_fail_warning(nullptr, "itdb_get_media_type", "ext");
        return kNoMediaType;
    }
    const MediaTypeRow *row = FindRow(kMediaTypes, *extension);
    return row == nullptr ? kNoMediaType : row->code;
}
