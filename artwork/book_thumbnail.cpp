#include "artwork/book_thumbnail.h"

#include <optional>
#include <string>
#include <string_view>

#include "artwork/file_attributes.h"
#include "artwork/temporary_path.h"
#include "artwork/thumb_node.h"
#include "content/file_stamp.h"
#include "content/glib_owner.h"
#include "content/path_text.h"
#include "content/zip_extract.h"
#include "driver/attributes.h"
#include "driver/limit_log.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

// Older books carry their cover for iTunes under this name.
constexpr const char *kFallbackEntry = "iTunesArtwork";

bool IsEpubFile(std::string_view location) {
    const std::string_view extension = ExtensionOfPath(location);
    return !extension.empty() && _stricmp(extension.data(), ".epub") == 0;
}

void AddCover(DriverPath *thumb, const std::string &cover, const std::string &file, int64_t size) {
    AddThumbnail(thumb, "small", {std::string(ExtensionOfPath(cover)), file, static_cast<int32_t>(size), 0});
}

// 0 for a file that is not there.
int64_t SizeOfUnpacked(const std::string &path) {
    const GObjectOwner<GFile> file(g_file_new_for_path(NativePath(path).c_str()));
    const GObjectOwner<GFileInfo> info(g_file_query_info(file.get(), "standard::type,standard::size",
                                                         G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    return info ? g_file_info_get_size(info.get()) : 0;
}

bool IsReadable(const std::string &path) {
    constexpr int kReadable = 4;
    return IsPlainFile(path) && _waccess(Utf8ToWide(path).c_str(), kReadable) == 0;
}

// The unpacked cover, there or not. Empty if the archive gives none or if there is no place for it.
std::optional<std::string> UnpackCover(const std::string &book, const std::string &cover) {
    const LimitLog limit_log(book);
    const auto folder = BookTempFolder(book);
    const auto file = BookTempFile(book, cover);
    if (!folder || !file || ExtractEntry(book, cover, *folder) != 0) return std::nullopt;
    // The entry's name may differ from the reference, which counts as a pattern.
    if (IsReadable(*file)) return file;
    ExtractEntry(book, kFallbackEntry, *folder);
    return *folder + "/" + kFallbackEntry;
}

int32_t AddPackedCover(DriverPath *thumb, const std::string &book, const std::string &cover) {
    const auto file = UnpackCover(book, cover);
    if (!file) return 0;
    const auto size = SizeOfFile(*file);
    if (size == 0) return -1;
    AddCover(thumb, cover, *file, size.value_or(0));
    return 0;
}

}  // namespace

int32_t LoadBookThumbnail(LibraryDriver * /*driver*/, DriverPath *thumb) {
    if (!IsThumbNode(thumb)) return -1;
    if (ChildCount(thumb) > 0) return 1;
    const auto location = FindAttribute(thumb, "location");
    const auto reference = FindAttribute(thumb, "cover-image-path");
    if (!location || !reference) return 0;
    const std::string book(*location);
    const std::string cover(*reference);
    if (!IsEpubFile(book) || book.find('\\') == std::string::npos) return -1;
    if (!IsAttributeTrue(thumb, "is_directory")) return AddPackedCover(thumb, book, cover);
    AddCover(thumb, cover, cover, SizeOfUnpacked(cover));
    return 0;
}
