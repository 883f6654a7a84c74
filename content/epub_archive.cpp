#include "content/epub_archive.h"

#include <string_view>
#include <utility>

#include "content/epub_document.h"
#include "content/path_text.h"
#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_entry_path.h"
#include "content/zip_extract.h"
#include "platform/limits.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr const char *kArtworkEntry = "iTunesArtwork";
constexpr const char *kContainerEntry = "META-INF\\container.xml";

// A book of another system may have a name that Windows could not give to a folder.
std::string TempFolderName(const std::string &location) {
    const std::string name(FileNameOfPath(location));
    return IsWindowsFileName(name) ? name : "book";
}

// False for an entry that would lie outside of its folder, or behind a link that someone has put there. The
// book itself says which entries are read.
bool HasTempPlace(const std::string &folder_name, const std::string &entry) {
    const std::string temp = NativePath(BuildTempPath(std::nullopt, ""));
    return ZipEntryTarget(temp, folder_name + "\\" + entry).has_value();
}

// A document of the book, as a file in the temporary folder for the length of a scope. The folders stay
// there.
class TempDocument {
  public:
    TempDocument(const std::string &location, const std::string &entry) {
        const std::string folder_name = TempFolderName(location);
        if (entry.empty() || !HasTempPlace(folder_name, entry)) return;
        path_ = BuildTempPath(folder_name, entry);
        extracted_ = ExtractEntry(location, entry, BuildTempPath(std::nullopt, folder_name)) == 0;
    }
    // The outcome is not looked at: the next book of this name replaces what is left.
    ~TempDocument() {
        if (extracted_) RemoveFileQuietly(path_);
    }
    TempDocument(const TempDocument &) = delete;
    TempDocument &operator=(const TempDocument &) = delete;

    explicit operator bool() const { return extracted_; }
    const std::string &path() const { return path_; }

  private:
    std::string path_;
    bool extracted_ = false;
};

// A reference of the package document or of a cover page, from the top of the archive.
std::string BesidePackage(const std::string &package_entry, const std::string &reference) {
    const std::optional<std::string> folder = DirectoryOfPath(package_entry);
    return folder ? *folder + "\\" + reference : reference;
}

// The image on a page of the book, from the top of the archive.
std::optional<std::string> ImageOnPage(const std::string &location, const std::string &package_entry,
                                       const std::string &page_entry) {
    const TempDocument page(location, page_entry);
    std::optional<std::string> image = page ? ReadCoverPageImage(page.path()) : std::nullopt;
    if (!image) return std::nullopt;
    ReplaceChar(*image, '/', '\\');
    return BesidePackage(package_entry, *image);
}

std::optional<std::string> CoverOfPackage(const std::string &location, const std::string &package_entry,
                                          const std::string &package_path) {
    const std::optional<CoverItem> item = FindCoverItem(package_path);
    if (!item) return std::nullopt;
    std::optional<std::string> cover = BesidePackage(package_entry, item->href);
    if (IsCoverPage(*item)) cover = ImageOnPage(location, package_entry, *cover);
    return cover && !limits::kEntryPathBytes.IsPassedBy(cover->size()) ? std::move(cover) : std::nullopt;
}

// Reads the documents of the book. The cover is looked for unless it is known.
std::optional<std::string> ReadDocuments(const std::string &location, std::optional<std::string> cover,
                                         VelmarAttribute *attributes) {
    const TempDocument container(location, kContainerEntry);
    const auto package_entry = container ? ReadRootFilePath(container.path()) : std::nullopt;
    if (!package_entry) return cover;
    const TempDocument package(location, *package_entry);
    if (!package) return cover;
    if (attributes != nullptr) ReadPackageMetadata(attributes, package.path());
    return cover ? std::move(cover) : CoverOfPackage(location, *package_entry, package.path());
}

}  // namespace

std::optional<std::string> ReadEpubArchive(const std::string &location, VelmarAttribute *attributes) {
    ZipReadHandle zip = OpenZipForRead(location);
    if (!zip) return std::nullopt;
    std::optional<std::string> cover;
    if (LocateZipEntry(zip.get(), kArtworkEntry)) cover = kArtworkEntry;
    // Each document opens the archive anew.
    zip.reset();
    return ReadDocuments(location, std::move(cover), attributes);
}
