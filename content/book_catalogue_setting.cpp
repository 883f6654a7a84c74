#include "content/book_catalogue_setting.h"

#include <string_view>

namespace {

// A library of its own holds this file, so that a program of tests can have the catalogue switched on.
constexpr std::string_view kFolder = BOOK_CATALOGUE_FOLDER;

}  // namespace

bool IsBookCatalogueEnabled() {
    return !kFolder.empty();
}

std::string GetBookCatalogueFolder() {
    return std::string(kFolder);
}
