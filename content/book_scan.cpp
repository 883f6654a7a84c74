#include "content/book_scan.h"

#include <optional>

#include "content/book.h"
#include "content/file_kinds.h"
#include "content/folder_walk.h"
#include "content/media_folder.h"
#include "content/path_text.h"
#include "driver/scanned_entries.h"

int32_t ScanBooks(LibraryDriver *driver) {
    DriverPath *books = EnsureCategoryPath(driver, "Books", node_category::kBook, node_subcategory::kBook);
    if (books == nullptr) return -1;
    const std::optional<std::string> media_folder = MediaFolder(driver);
    if (media_folder) WalkBookFolder(books, *media_folder + "\\Books");
    return 0;
}

void WalkBookFolder(DriverPath *book_category, const std::string &folder) {
    const auto visit = [=](const std::wstring &in_folder, const WIN32_FIND_DATAW &file) {
        const std::string location = WideToUtf8(in_folder + L"\\" + file.cFileName);
        const std::optional<FileCategory> kind = GetFileCategory(location);
        // A book that cannot be added is left out of the tree.
        if (kind && kind->category == node_category::kBook) AddLocalBook(book_category, location);
    };
    WalkFolder(Utf8ToWide(folder), FolderDepth::kAllLevels, visit);
}
