#include "library/refresh.h"

#include <string>

#include "content/path_text.h"
#include "content/plist_values.h"
#include "driver/attributes.h"
#include "driver/driver_log.h"
#include "library/category_root.h"
#include "library/distinguished_kinds.h"
#include "library/track_import.h"

namespace {

// Its number and the whole extension of its file; in lists of the load the extension is cut.
std::string NameOf(const DriverPath *track, std::string_view id) {
    const auto location = FindAttribute(track, "location");
    return std::string(id).append(location ? ExtensionOfPath(*location) : "");
}

// The root is looked for only here: one that is missing is made for the sake of a track, and not before.
void HangUnderRoot(LibraryDriver *driver, DriverPath *track, std::string_view id) {
    const bool is_video = track->category == node_category::kVideo;
    DriverPath *root = EnsureCategoryRoot(driver, is_video ? kMovies : kMusic);
    if (root != nullptr) AppendTrack(root, NameOf(track, id).c_str(), track);
}

void MergeTracks(LibraryDriver *driver, CFDictionaryRef tracks) {
    const auto count = static_cast<size_t>(CFDictionaryGetCount(tracks));
    std::vector<const void *> keys(count);
    std::vector<const void *> values(count);
    CFDictionaryGetKeysAndValues(tracks, keys.data(), values.data());
    TrackImportRoom room;
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        const auto id = PlistText(keys[i], 0, text);
        if (!id || values[i] == nullptr || FindTrackById(driver, *id) != nullptr) continue;
        HangUnderRoot(driver, CreateTrack(driver, id->data(), values[i], room), *id);
    }
}

}  // namespace

int32_t RefreshLibrary(LibraryDriver *driver) {
    const CFOwner library = ReadPropertyListFile(driver->xml_path);
    if (!library) {
        WriteDriverLog("Open iTunes Preferences file error!");
        return -1;
    }
    const void *tracks = PlistValue(library.get(), "Tracks");
    if (IsDictionary(tracks)) MergeTracks(driver, static_cast<CFDictionaryRef>(tracks));
    return 0;
}
