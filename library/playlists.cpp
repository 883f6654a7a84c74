#include "library/playlists.h"

#include <cstdlib>
#include <utility>

#include "content/plist_values.h"
#include "driver/attributes.h"
#include "driver/limit_log.h"
#include "library/distinguished_kinds.h"
#include "library/movie_pass.h"
#include "platform/limits.h"

namespace {

// A list of this name is one that iTunes hides.
constexpr char kHiddenList[] = "####!####";

bool IsHidden(const PlaylistRecord &record) {
    return record.name == kHiddenList;
}

DriverPath *ParentOf(const LibraryDriver *driver, ListParent parent) {
    switch (parent) {
        case ListParent::kLibrary:
            return GetLibraryRoot(driver);
        case ListParent::kGenius:
            return GetGeniusRoot(driver);
        case ListParent::kPlaylists:
            return GetPlaylistRoot(driver);
        case ListParent::kNone:
            break;
    }
    return nullptr;
}

int32_t SubcategoryOf(const DistinguishedKind &kind, const PlaylistRecord &record) {
    if (kind.subcategory != 0) return kind.subcategory;
    if (record.is_smart) return node_subcategory::kSmartPlaylist;
    return record.is_folder ? node_subcategory::kPlaylistFolder : node_subcategory::kPlaylist;
}

bool HasRoomForLists(const DriverPath *parent) {
    uint64_t levels = 1;
    while ((parent = parent->parent) != nullptr)
        ++levels;
    return !limits::kListNesting.IsPassedBy(levels);
}

// A list whose parent is not there (yet), or lies too deep, hangs where its kind belongs.
DriverPath *HolderOf(LibraryDriver *driver, const PlaylistRecord &record, DriverPath *usual) {
    if (!record.parent_persistent_id) return usual;
    DriverPath *parent = FindPathByPersistentId(driver, *record.parent_persistent_id);
    return parent != nullptr && HasRoomForLists(parent) ? parent : usual;
}

void LoadParserPlaylists(LibraryDriver *driver) {
    for (const Playlist *playlist : driver->parser->playlists()) {
        PlaylistRecord record;
        record.distinguished_kind = playlist->kind;
        record.is_smart = true;  // this source has the text for every list, if only an empty one
        record.name.emplace(playlist->name);
        record.persistent_id = std::to_string(playlist->id);
        if (IsHidden(record)) continue;
        DriverPath *path = CreatePlaylistPath(driver, record);
        if (path != nullptr) AddParserPlaylistItems(driver, path, playlist->items);
    }
}

PlaylistRecord ReadRecord(CFTypeRef dictionary) {
    PlaylistRecord record;
    const auto number = PlistValueText(dictionary, "Distinguished Kind", 0);
    record.distinguished_kind = number ? std::atoi(number->c_str()) : kOrdinaryList;
    record.name = PlistValueText(dictionary, "Name", 0);
    // That the key is there is what counts, even if its value is false.
    record.is_folder = PlistValueText(dictionary, "Folder", 0).has_value();
    record.is_smart = PlistValueText(dictionary, "Smart Info", 0).has_value();
    record.persistent_id = PlistValueText(dictionary, "Playlist Persistent ID", 0);
    record.parent_persistent_id = PlistValueText(dictionary, "Parent Persistent ID", 0);
    return record;
}

void LoadXmlPlaylist(LibraryDriver *driver, CFTypeRef dictionary) {
    const PlaylistRecord record = ReadRecord(dictionary);
    if (IsHidden(record)) return;
    DriverPath *path = CreatePlaylistPath(driver, record);
    // A list inside a folder stays empty.
    if (path == nullptr || record.parent_persistent_id) return;
    AddPlaylistItems(driver, path, dictionary);
    if (record.distinguished_kind == kOrdinaryList && PlistValueText(dictionary, "Master", 0) == "true") {
        driver->master_playlist = path;
    }
}

void LoadXmlPlaylists(LibraryDriver *driver) {
    if (!IsDictionary(driver->library_plist.get())) return;
    const auto library = static_cast<CFDictionaryRef>(driver->library_plist.get());
    const void *value = CFDictionaryGetValue(library, CFSTR("Playlists"));
    if (!IsArray(value)) return;
    const auto playlists = static_cast<CFArrayRef>(value);
    const LimitLog limit_log(driver->xml_path);
    const CFIndex count = CFArrayGetCount(playlists);
    for (CFIndex i = 0; i < count; ++i) {
        const void *playlist = CFArrayGetValueAtIndex(playlists, i);
        if (IsDictionary(playlist)) LoadXmlPlaylist(driver, playlist);
    }
    AddMasterMovies(driver);
}

}  // namespace

int32_t LoadPlaylists(LibraryDriver *driver) {
    if (driver->parser) {
        LoadParserPlaylists(driver);
    } else {
        LoadXmlPlaylists(driver);
    }
    return 0;
}

DriverPath *CreatePlaylistPath(LibraryDriver *driver, const PlaylistRecord &record) {
    const DistinguishedKind &kind = FindDistinguishedKind(record.distinguished_kind);
    DriverPath *parent = ParentOf(driver, kind.parent);
    if (parent == nullptr) return nullptr;
    if (kind.number == kMovies || kind.number == kMovieRentals) {
        DriverPath *shared = FindCategoryRoot(driver, kind.category, kind.subcategory);
        if (shared != nullptr) return shared;
    }
    LoosePath path = CreateDriverPath(driver, parent->kind, kind.category, SubcategoryOf(kind, record));
    if (kind.name == nullptr && !record.name) {
        driver->unnamed_lists.push_back(path.get());
        return path.release();
    }
    if (record.persistent_id) AddAttribute(path.get(), "persistent_id", record.persistent_id->c_str());
    return AppendChild(HolderOf(driver, record, parent),
                       kind.name != nullptr ? kind.name : record.name->c_str(), std::move(path));
}

int32_t AddPlaylistItems(LibraryDriver *driver, DriverPath *path, CFTypeRef dictionary) {
    static const CFStringRef kItems = CFSTR("Playlist Items");
    static const CFStringRef kTrackId = CFSTR("Track ID");
    if (!IsDictionary(dictionary)) return -1;
    const void *value = CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), kItems);
    if (!IsArray(value)) return 0;
    const auto items = static_cast<CFArrayRef>(value);
    const CFIndex count = CFArrayGetCount(items);
    std::vector<int64_t> ids;
    ids.reserve(static_cast<size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        const void *item = CFArrayGetValueAtIndex(items, i);
        if (!IsDictionary(item)) continue;
        const void *number = CFDictionaryGetValue(static_cast<CFDictionaryRef>(item), kTrackId);
        int64_t id = 0;
        if (IsNumber(number) &&
            CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberSInt64Type, &id)) {
            ids.push_back(id);
        }
    }
    AddTracksToPlaylist(driver, path, ids);
    return 0;
}

int32_t AddParserPlaylistItems(LibraryDriver *driver, DriverPath *path, const std::vector<int32_t> &items) {
    AddTracksToPlaylist(driver, path, std::vector<int64_t>(items.begin(), items.end()));
    return 0;
}
