#include "host/added_kinds.h"

#include <algorithm>
#include <array>
#include <string>

#include "host/file_naming.h"
#include "host/text.h"

namespace velmarhost {
namespace {

struct KindRow {
    std::string_view extension;
    std::string_view path;
};

constexpr std::string_view kMusic = "library/music";
constexpr std::string_view kRingtone = "library/ringtone";
constexpr std::string_view kMovie = "library/movie";
constexpr std::string_view kBook = "library/book";
constexpr std::string_view kApp = "library/app";

// What the driver shows of the add folder. Kinds without a place in the tree are left out: nobody would see
// what became of such a file.
constexpr auto kKinds = std::to_array<KindRow>({
    {".mp3", kMusic},
    {".m4a", kMusic},
    {".aac", kMusic},
    {".wav", kMusic},
    {".m4r", kRingtone},
    {".mp4", kMovie},
    {".m4v", kMovie},
    {".mp4v", kMovie},
    {".mov", kMovie},
    {".mpg", kMovie},
    {".mpeg", kMovie},
    {".mpeg4", kMovie},
    {".pdf", kBook},
    {".epub", kBook},
    {".ipa", kApp},
});

}  // namespace

std::optional<std::string_view> TreePathOfKind(std::string_view file_name) {
    const std::string extension = FoldCase(ExtensionOfPath(file_name));
    const auto *row = std::find_if(kKinds.begin(), kKinds.end(), [&](const KindRow &candidate) {
        return candidate.extension == extension;
    });
    if (row == kKinds.end()) return std::nullopt;
    return row->path;
}

}  // namespace velmarhost
