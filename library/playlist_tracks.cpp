// A track under a list: its name there, and what a list of books or applications adds to it.
#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

#include "content/path_text.h"
#include "driver/attributes.h"
#include "library/playlists.h"
#include "platform/windows/windows_api.h"

namespace {

bool HasNumbers(const DriverPath *path, int32_t category, int32_t subcategory) {
    return path->category == category && path->subcategory == subcategory;
}

void TakeNumbers(DriverPath *track, const DriverPath *list) {
    track->category = list->category;
    track->subcategory = list->subcategory;
}

bool IsBookList(const DriverPath *list) {
    return HasNumbers(list, node_category::kBook, node_subcategory::kBook);
}

bool IsRingtoneList(const DriverPath *list) {
    return HasNumbers(list, node_category::kAudio, node_subcategory::kRingtone);
}

bool IsApplicationList(const DriverPath *list) {
    return HasNumbers(list, node_category::kApplication, node_subcategory::kApplication);
}

const char *BookFormat(std::string_view extension) {
    if (_stricmp(extension.data(), ".epub") == 0) return "EPUB";
    if (_stricmp(extension.data(), ".pdf") == 0) return "PDF";
    return "Unknown";
}

void AddBookThumb(DriverPath *track, std::string location) {
    SetAttribute(track, "media_has_thumb", "true");
    const std::string_view extension = ExtensionOfPath(location);
    if (!extension.empty()) SetAttribute(track, "format", BookFormat(extension));
    ReplaceChar(location, '/', '\\');
    DriverPath *thumb = CreateDriverPath(track->owner, node_kind::kFolder, node_category::kThumbnail,
                                         node_subcategory::kThumbOfTrack);
    AddAttribute(thumb, "location", location.c_str());
    AppendChild(track, "thumb", thumb);
}

// What a list of books or applications adds to a track that has a file.
void AddToMediaList(DriverPath *track, const DriverPath *list) {
    if (IsBookList(list) || IsRingtoneList(list)) TakeNumbers(track, list);
    if (!IsBookList(list) && !IsApplicationList(list)) return;
    const auto location = FindAttribute(track, "location");
    if (!location || location->empty()) return;
    if (IsApplicationList(list)) TakeNumbers(track, list);
    if (IsBookList(list)) AddBookThumb(track, std::string(*location));
}

}  // namespace

void AddTrackToPlaylist(LibraryDriver *driver, DriverPath *list, int64_t id) {
    DriverPath *track = FindTrackByNumber(driver, id);
    if (track == nullptr) return;
    constexpr size_t kMostDigits = 24;
    char name[kMostDigits + kLongestListExtension + 1] = {};
    char *end = std::to_chars(name, name + kMostDigits, id).ptr;
    std::copy(std::begin(track->list_extension), std::end(track->list_extension), end);
    AppendChild(list, name, track);
    ++track->share_count;
    AddToMediaList(track, list);
}
