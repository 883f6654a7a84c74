#include "host/node_words.h"

#include <algorithm>
#include <array>

namespace velmarhost {
namespace {

struct SubcategoryRow {
    int32_t category;
    int32_t subcategory;
    std::string_view word;
};

constexpr std::array kKindWords = {std::string_view("root"), std::string_view("folder"),
                                   std::string_view("application"), std::string_view("unknown"),
                                   std::string_view("file")};

constexpr std::array kCategoryWords = {std::string_view("none"),       std::string_view("list"),
                                       std::string_view("audio"),      std::string_view("video"),
                                       std::string_view("thumbnail"),  std::string_view("book"),
                                       std::string_view("application")};

constexpr std::array kSubcategoryRows = {
    SubcategoryRow{0, 0, "none"},          SubcategoryRow{1, 1, "library"},
    SubcategoryRow{1, 2, "playlists"},     SubcategoryRow{1, 3, "smart-playlist"},
    SubcategoryRow{1, 4, "playlist"},      SubcategoryRow{1, 5, "playlist-folder"},
    SubcategoryRow{1, 10, "special-list"}, SubcategoryRow{1, 11, "special-list"},
    SubcategoryRow{1, 12, "genius"},       SubcategoryRow{1, 13, "special-list"},
    SubcategoryRow{2, 20, "music"},        SubcategoryRow{2, 21, "ringtone"},
    SubcategoryRow{3, 9, "podcast"},       SubcategoryRow{3, 30, "movie"},
    SubcategoryRow{3, 31, "tv-show"},      SubcategoryRow{4, 43, "thumbnails"},
    SubcategoryRow{4, 44, "thumbnail"},    SubcategoryRow{5, 50, "book"},
    SubcategoryRow{6, 60, "application"}};

template <typename Words>
std::string_view WordAt(const Words &words, int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= words.size()) return "unknown";
    return words[static_cast<std::size_t>(index)];
}

}  // namespace

std::string_view KindWord(int32_t kind) {
    return WordAt(kKindWords, kind);
}

std::string_view CategoryWord(int32_t category) {
    return WordAt(kCategoryWords, category);
}

std::string_view SubcategoryWord(int32_t category, int32_t subcategory) {
    const auto *row =
        std::find_if(kSubcategoryRows.begin(), kSubcategoryRows.end(), [&](const SubcategoryRow &candidate) {
            return candidate.category == category && candidate.subcategory == subcategory;
        });
    return row != kSubcategoryRows.end() ? row->word : "unknown";
}

std::string_view TypeWord(const Node &node) {
    const bool untyped = node.category() == 0;
    return untyped ? KindWord(node.kind()) : SubcategoryWord(node.category(), node.subcategory());
}

}  // namespace velmarhost
