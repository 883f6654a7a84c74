#include "content/epub_folder.h"

#include <string_view>

#include "content/epub_document.h"
#include "content/file_stamp.h"
#include "content/path_text.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr std::string_view kSeparators = "\\/";

// One backslash between the two, however many separators there are.
std::string JoinPath(std::string_view folder, std::string_view name) {
    const size_t folder_end = folder.find_last_not_of(kSeparators);
    const size_t name_start = name.find_first_not_of(kSeparators);
    std::string path(folder.substr(0, folder_end == std::string_view::npos ? 0 : folder_end + 1));
    path += '\\';
    if (name_start != std::string_view::npos) path += name.substr(name_start);
    return path;
}

// A path inside the book leads upwards no more often than it has led downwards: what a book shows is its own.
bool StaysInside(std::string_view path) {
    int depth = 0;
    while (!path.empty() && depth >= 0) {
        const size_t end = path.find_first_of(kSeparators);
        const std::string_view component = path.substr(0, end);
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
        if (component == "..")
            --depth;
        else if (!component.empty() && component != ".")
            ++depth;
    }
    return depth >= 0;
}

// A reference of the package document, or of a cover page, as a full path; empty if it leads out of the book.
std::optional<std::string> FullPath(const std::string &location, const std::string &package,
                                    std::string reference) {
    ReplaceChar(reference, '/', '\\');
    const std::string inside = JoinPath(DirectoryOfPath(package).value_or(""), reference);
    return StaysInside(inside) ? std::optional(JoinPath(location, inside)) : std::nullopt;
}

std::optional<std::string> CoverOfPackage(const std::string &location, const std::string &package) {
    const std::optional<CoverItem> item = FindCoverItem(JoinPath(location, package));
    if (!item) return std::nullopt;
    const std::optional<std::string> cover = FullPath(location, package, item->href);
    if (!cover || !IsCoverPage(*item) || !PathExists(*cover)) return cover;
    const std::optional<std::string> image = ReadCoverPageImage(*cover);
    return image ? FullPath(location, package, *image) : std::nullopt;
}

// The path of the package document below the book, where there is such a file.
std::optional<std::string> FindPackage(const std::string &location) {
    const std::string container = JoinPath(JoinPath(location, "META-INF"), "container.xml");
    std::optional<std::string> package = PathExists(container) ? ReadRootFilePath(container) : std::nullopt;
    if (!package || !StaysInside(*package)) return std::nullopt;
    ReplaceChar(*package, '/', '\\');
    return PathExists(JoinPath(location, *package)) ? package : std::nullopt;
}

}  // namespace

std::optional<std::string> ReadEpubFolder(const std::string &location, VelmarAttribute *attributes) {
    std::optional<std::string> cover = JoinPath(location, "iTunesArtwork");
    if (!PathExists(*cover)) cover.reset();
    const std::optional<std::string> package = FindPackage(location);
    if (!package) return cover;
    if (attributes != nullptr) ReadPackageMetadata(attributes, JoinPath(location, *package));
    return cover ? cover : CoverOfPackage(location, *package);
}
