#include "artwork/artwork_scan.h"

#include <optional>
#include <string_view>

#include "artwork/thumb_node.h"
#include "artwork/tracks_by_key.h"
#include "content/folder_walk.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/limit_log.h"

namespace {

// A name: key of the library, any one byte, key of the track, "." and the extension.
constexpr size_t kTrackKeyStart = kTrackKeySize + 1;
constexpr size_t kShortestName = 37;
constexpr size_t kLongestName = 38;

bool IsCacheFileName(std::wstring_view name) {
    if (name.size() != kShortestName && name.size() != kLongestName) return false;
    const size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos) return false;
    const std::wstring_view extension = name.substr(dot + 1);
    return extension == L"itc" || extension == L"itc2";
}

class ArtworkScan {
  public:
    explicit ArtworkScan(LibraryDriver *driver)
        : driver_(driver),
          library_key_(FindAttribute(driver->root, "persistent_id").value_or("").substr(0, kTrackKeySize)) {}

    void Visit(const std::wstring &folder, const wchar_t *wide_name) {
        if (library_key_.size() != kTrackKeySize || !IsCacheFileName(wide_name)) return;
        const std::string name = WideToUtf8(wide_name);
        if (!name.starts_with(library_key_)) return;
        // Only now is it sure that the tracks are wanted.
        if (!tracks_) tracks_.emplace(driver_->tracks);
        std::string location;
        const std::string_view key = std::string_view(name).substr(kTrackKeyStart, kTrackKeySize);
        tracks_->ForEach(key, [&](DriverPath *track) {
            if (location.empty()) location = PathOf(folder).append("\\").append(name);
            AddThumb(track, location);
        });
    }

  private:
    // A folder holds several files, which come in a row.
    std::string PathOf(const std::wstring &folder) {
        if (folder != folder_) {
            folder_ = folder;
            folder_path_ = WideToUtf8(folder);
        }
        return folder_path_;
    }

    void AddThumb(DriverPath *track, const std::string &location) {
        SetAttribute(track, "media_has_thumb", "true");
        AddThumbNode(track, node_subcategory::kThumbOfTrack, location.c_str());
    }

    LibraryDriver *driver_;
    std::string_view library_key_;
    std::wstring folder_;
    std::string folder_path_;
    std::optional<TracksByKey> tracks_;
};

}  // namespace

int32_t EnsureAlbumArtworkScan(LibraryDriver *driver) {
    if (driver->artwork_scan != nullptr) return 0;
    AllocVelmarArray(&driver->artwork_scan);
    // Without a mark, for want of memory, the nodes would be added at every call.
    if (driver->artwork_scan == nullptr || driver->library_folder.empty()) return 0;
    return ScanAlbumArtworkFolder(driver, Utf8ToWide(driver->library_folder) + L"\\Album Artwork");
}

int32_t ScanAlbumArtworkFolder(LibraryDriver *driver, const std::wstring &folder) {
    const LimitLog limit_log(WideToUtf8(folder));
    ArtworkScan scan(driver);
    WalkFolder(folder, FolderDepth::kAllLevels,
               [&](const std::wstring &parent, const WIN32_FIND_DATAW &file) {
                   scan.Visit(parent, file.cFileName);
               });
    return 0;
}

void FreeAlbumArtworkScan(LibraryDriver *driver) {
    if (driver->artwork_scan != nullptr) FreeVelmarArray(driver->artwork_scan);
    driver->artwork_scan = nullptr;
}
