// A track under a list: its name there, and what a list of books or applications adds to it.
#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

#include "content/app_info.h"
#include "content/app_thumb.h"
#include "content/book_thumb.h"
#include "content/epub_archive.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "library/playlists.h"

namespace {

bool HasNumbers(const DriverPath *path, int32_t category, int32_t subcategory) {
    return path->category == category && path->subcategory == subcategory;
}

void TakeNumbers(DriverPath *track, const DriverPath *list) {
    track->category = list->category;
    track->subcategory = list->subcategory;
}

// The numbers of a list and of the tracks under it.
bool IsBook(const DriverPath *path) {
    return HasNumbers(path, node_category::kBook, node_subcategory::kBook);
}

bool IsRingtone(const DriverPath *path) {
    return HasNumbers(path, node_category::kAudio, node_subcategory::kRingtone);
}

bool IsApplication(const DriverPath *path) {
    return HasNumbers(path, node_category::kApplication, node_subcategory::kApplication);
}

// `location` has "\" as separator, as all locations below.
void AddApplication(DriverPath *track, const std::string &location) {
    AppInfo info;
    if (ReadAppInfo(location, info) == 0) AddAppThumb(track, info, location);
}

void AddBook(DriverPath *track, const std::string &location) {
    SetAttribute(track, "media_has_thumb", "true");
    const std::string extension(ExtensionOfPath(location));
    if (!extension.empty()) SetAttribute(track, "format", BookFormat(extension));
    AddBookThumb(track, BookForm::kFile, location, ReadEpubArchive(location, nullptr));
}

// What a list of books or applications adds to a track that has a file.
void AddToMediaList(DriverPath *track, const DriverPath *list) {
    if (IsBook(list) || IsRingtone(list)) TakeNumbers(track, list);
    if (!IsBook(list) && !IsApplication(list)) return;
    const auto found = FindAttribute(track, "location");
    if (!found || found->empty()) return;
    // A track is read once, however often lists name it.
    const bool read_before =
        IsApplication(list) ? IsApplication(track) : FindChild(track, "thumb") != nullptr;
    if (IsApplication(list)) TakeNumbers(track, list);
    if (read_before) return;
    std::string location(*found);
    ReplaceChar(location, '/', '\\');
    if (IsBook(list)) {
        AddBook(track, location);
    } else {
        AddApplication(track, location);
    }
}

void HangTrack(DriverPath *list, DriverPath *track, int64_t id) {
    if (track == nullptr) return;
    constexpr size_t kMostDigits = 24;
    char name[kMostDigits + kLongestListExtension + 1] = {};
    char *end = std::to_chars(name, name + kMostDigits, id).ptr;
    std::copy(std::begin(track->list_extension), std::end(track->list_extension), end);
    AppendTrack(list, name, track);
    ++track->share_count;
    AddToMediaList(track, list);
}

}  // namespace

void AddTrackToPlaylist(LibraryDriver *driver, DriverPath *list, int64_t id) {
    HangTrack(list, FindTrackByNumber(driver, id), id);
}

void AddTracksToPlaylist(LibraryDriver *driver, DriverPath *list, std::span<const int64_t> ids) {
    std::array<DriverPath *, kPrefetchedPlaces> tracks;
    while (!ids.empty()) {
        const auto some = ids.first(std::min(ids.size(), tracks.size()));
        FindTracksByNumber(driver, some, tracks.data());
        for (size_t i = 0; i < some.size(); ++i)
            HangTrack(list, tracks[i], some[i]);
        ids = ids.subspan(some.size());
    }
}
