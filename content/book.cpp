#include "content/book.h"

#include <optional>
#include <utility>

#include "content/book_thumb.h"
#include "content/epub_archive.h"
#include "content/epub_folder.h"
#include "content/file_kinds.h"
#include "content/file_stamp.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/limit_log.h"
#include "driver/path_lookup.h"
#include "driver/scanned_entries.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr int32_t kKnownAlready = -1;
constexpr int32_t kNoBook = -2;
constexpr int32_t kNoStatus = -3;

void AddFileAttributes(DriverPath *book, BookForm form, int32_t size, const std::string &location) {
    if (form == BookForm::kFolder) {
        AddAttribute(book, "is_directory", "true");
    } else {
        AddAttribute(book, "st_size", std::to_string(size).c_str());
    }
    AddAttribute(book, "location", location.c_str());
    AddAttribute(book, "media_has_thumb", "true");
    AddAttribute(book, "format", BookFormat(std::string(ExtensionOfPath(location))));
}

// What the book says of itself; gives the reference of its cover.
std::optional<std::string> ReadBook(DriverPath *book, BookForm form, const std::string &location) {
    const LimitLog limit_log(location);
    return form == BookForm::kFolder ? ReadEpubFolder(location, book->attributes)
                                     : ReadEpubArchive(location, book->attributes);
}

LoosePath CreateBook(LibraryDriver *driver, const FileCategory &kind, BookForm form, int32_t size,
                     const std::string &location) {
    LoosePath book = CreateScannedEntry(driver, node_kind::kFile, kind.category, kind.subcategory);
    AddFileAttributes(book.get(), form, size, location);
    AddBookThumb(book.get(), form, location, ReadBook(book.get(), form, location));
    if (!FindAttribute(book.get(), "name")) {
        const std::string_view name = FileNameOfPath(location);
        AddAttribute(book.get(), "name", std::string(name.substr(0, name.rfind('.'))).c_str());
    }
    return book;
}

}  // namespace

int32_t AddLocalBook(DriverPath *book_category, const std::string &location, DriverPath **book) {
    if (IsLocationKnown(book_category, location)) return kKnownAlready;
    const std::optional<FileCategory> kind = GetFileCategory(location);
    if (!kind || kind->subcategory != node_subcategory::kBook) return kNoBook;
    struct _stat64i32 status;
    if (_wstat64i32(Utf8ToWide(location).c_str(), &status) != 0) return kNoStatus;
    const BookForm form = (status.st_mode & _S_IFMT) == _S_IFDIR ? BookForm::kFolder : BookForm::kFile;
    // The stamp of a folder says nothing of the files in it, and whoever asks for the node may add to it.
    const auto stamp = form == BookForm::kFile && book == nullptr ? StampOfFile(location) : std::nullopt;
    LoosePath entry = stamp ? TakeKeptEntry(book_category->owner, location, *stamp) : nullptr;
    if (entry == nullptr) entry = CreateBook(book_category->owner, *kind, form, status.st_size, location);
    DriverPath *added =
        AppendChild(book_category, std::string(FileNameOfPath(location)).c_str(), std::move(entry));
    if (stamp) KeepEntry(added, location, *stamp);
    if (book != nullptr) *book = added;
    return 0;
}
