#include "driver/book_copy.h"

#include <string_view>

#include "content/book_catalogue.h"
#include "content/environment.h"
#include "content/file_kinds.h"
#include "content/path_text.h"
#include "driver/text_index.h"

namespace {

// The category is called "book" or "Books".
bool NamesBookCategory(std::string_view path_text) {
    constexpr std::string_view kCategory = "library/book";
    return EqualFolded(path_text.substr(0, kCategory.size()), kCategory);
}

int32_t MediaTypeOf(const CopySourceInfo &source) {
    return source.source_path == nullptr ? itdb_get_media_type(std::nullopt)
                                         : itdb_get_media_type(source.source_path);
}

// An archive is unpacked from here into the catalogue.
std::string UnpackFolder() {
    for (const wchar_t *name : {L"TEMP", L"TMP", L"TMPDIR"}) {
        if (const auto folder = EnvironmentVariable(name)) return WideToUtf8(*folder);
    }
    return "/tmp";
}

}  // namespace

std::optional<std::string> BookCopyFolder(const char *path_text, const CopySourceInfo &source) {
    if (!IsBookCatalogueEnabled() || !NamesBookCategory(path_text)) return std::nullopt;
    return MediaTypeOf(source) == kMediaTypeEpub ? UnpackFolder() : GetBookCatalogueFolder();
}

void CatalogueCopy(const char *path_text, const CopySourceInfo &source, const std::string &file) {
    if (!IsBookCatalogueEnabled()) return;
    const int32_t media_type = MediaTypeOf(source);
    // The file of a copy that was stopped is gone, and nothing is entered.
    if (NamesBookCategory(path_text) || media_type == kMediaTypePdf || media_type == kMediaTypeEpub)
        AddToBookCatalogue(file, media_type);
}
