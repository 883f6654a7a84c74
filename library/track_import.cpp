#include "library/track_import.h"

#include <array>
#include <cstring>

#include "content/path_text.h"
#include "content/plist_values.h"
#include "driver/attributes.h"
#include "library/add_folder.h"
#include "library/track_keys.h"
#include "platform/windows/windows_api.h"

namespace {

// What makes a track a video, in the order of the tests.
struct VideoTest {
    size_t row;
    int32_t subcategory;
};

constexpr size_t kLocationRow = RowOfAttribute("location");
constexpr VideoTest kVideoTests[] = {
    {RowOfAttribute("is_podcast"), node_subcategory::kPodcast},
    {RowOfAttribute("is_tvshow"), node_subcategory::kTvShow},
    {RowOfAttribute("is_movie"), node_subcategory::kMovie},
    {RowOfAttribute("has_video"), node_subcategory::kMovie},
};

// The value of each row of TrackKeyTable, or null.
using TrackRows = std::array<CFTypeRef, kTrackKeyCount>;

bool IsTrue(CFTypeRef value, TrackImportRoom &room) {
    const auto text = value == nullptr ? std::nullopt : PlistText(value, 0, room.text);
    return text && _stricmp(text->data(), "true") == 0;
}

void Classify(DriverPath *path, const TrackRows &rows, TrackImportRoom &room) {
    path->category = node_category::kAudio;
    path->subcategory = node_subcategory::kMusic;
    for (const VideoTest &test : kVideoTests) {
        if (!IsTrue(rows[test.row], room)) continue;
        path->category = node_category::kVideo;
        path->subcategory = test.subcategory;
        return;
    }
}

// Here, where the text is at hand, and not at each of the lists that will hold the track.
void AddTrackAttribute(DriverPath *path, size_t row, std::string_view text) {
    AddAttribute(path, TrackKeyTable[row].attribute, text.data());
    if (row == kLocationRow) ExtensionOfPath(text).copy(path->list_extension, kLongestListExtension);
}

std::optional<size_t> RowOf(const void *key, TrackImportRoom &room) {
    const uintptr_t place = reinterpret_cast<uintptr_t>(key) / 16;
    TrackImportRoom::KnownKey &known = room.known_keys[(place ^ (place >> 8)) % room.known_keys.size()];
    if (known.key != key) {
        const auto text = PlistText(key, 0, room.text);
        known = {key, text ? FindTrackKey(*text) : std::nullopt};
    }
    return known.row;
}

void ImportDictionary(DriverPath *path, TrackImportRoom &room) {
    // One pass over the entries finds the value of each row; a lookup of each row would be a pass for each.
    TrackRows rows = {};
    ReadEntries(path->track_dictionary, room);
    for (size_t i = 0; i < room.keys.size(); ++i) {
        if (const auto row = RowOf(room.keys[i], room)) rows[*row] = room.values[i];
    }
    for (size_t row = 0; row < kTrackKeyCount; ++row) {
        if (rows[row] == nullptr) continue;
        const auto text = PlistText(rows[row], TrackKeyTable[row].flags, room.text);
        if (text) AddTrackAttribute(path, row, *text);
    }
    Classify(path, rows, room);
}

void ImportParserTrack(DriverPath *path, TrackImportRoom &room) {
    for (const size_t row : kParserTrackRows) {
        const auto text = TrackFieldText(*path->parser_track, row, TrackKeyTable[row].flags, room.text);
        if (text) AddTrackAttribute(path, row, *text);
    }
}

DriverPath *CreateTrackPath(LibraryDriver *driver, const char *id) {
    LoosePath path =
        CreateDriverPath(driver, node_kind::kFile, node_category::kNone, node_subcategory::kNone);
    AddAttribute(path.get(), "id", id);
    AppendItem(driver->tracks, path.get());
    DriverPath *track = path.release();
    IndexNewTrack(driver, track, id);
    return track;
}

void LoadParserTracks(LibraryDriver *driver, TrackImportRoom &room) {
    driver->index.track_numbers.Reserve(driver->parser->tracks().size());
    for (const Track *track : driver->parser->tracks()) {
        DriverPath *path = CreateTrackPath(driver, std::to_string(track->id).c_str());
        path->parser_track = track;
        ImportTrackAttributes(path, room);
    }
}

void LoadXmlTracks(LibraryDriver *driver, TrackImportRoom &room) {
    const auto library = static_cast<CFDictionaryRef>(driver->library_plist.get());
    const void *tracks = CFDictionaryGetValue(library, CFSTR("Tracks"));
    if (!IsDictionary(tracks)) return;
    TrackImportRoom entries;
    ReadEntries(static_cast<CFDictionaryRef>(tracks), entries);
    driver->index.track_numbers.Reserve(entries.keys.size());
    for (size_t i = 0; i < entries.keys.size(); ++i) {
        const auto id = PlistText(entries.keys[i], 0, entries.text);
        if (id && entries.values[i] != nullptr) CreateTrack(driver, id->data(), entries.values[i], room);
    }
}

void ImportTracks(LibraryDriver *driver) {
    AllocVelmarArray(&driver->tracks);
    TrackImportRoom room;
    if (driver->parser) {
        LoadParserTracks(driver, room);
    } else {
        LoadXmlTracks(driver, room);
    }
}

}  // namespace

void ReadEntries(CFDictionaryRef dictionary, TrackImportRoom &room) {
    const auto count = static_cast<size_t>(CFDictionaryGetCount(dictionary));
    room.keys.resize(count);
    room.values.resize(count);
    CFDictionaryGetKeysAndValues(dictionary, room.keys.data(), room.values.data());
}

int32_t LoadTracks(LibraryDriver *driver) {
    if (driver == nullptr || (!IsDictionary(driver->library_plist.get()) && !driver->parser)) return -1;
    if (driver->tracks == nullptr) ImportTracks(driver);
    return FindAddFolder(driver);
}

void ReleaseLooseTracks(LibraryDriver *driver) {
    const int32_t count = GetVelmarArraySize(driver->tracks);
    for (int32_t i = 0; i < count; ++i) {
        void *item = nullptr;
        GetVelmarArrayItem(driver->tracks, i, &item);
        auto *track = static_cast<DriverPath *>(item);
        if (track != nullptr && track->parent == nullptr && track->share_count == 0) ReleaseDriverPath(track);
    }
}

DriverPath *CreateTrack(LibraryDriver *driver, const char *id, CFTypeRef entry, TrackImportRoom &room) {
    DriverPath *path = CreateTrackPath(driver, id);
    path->track_dictionary = static_cast<CFDictionaryRef>(entry);
    // A track whose entry is no dictionary keeps its id alone, and nothing of a list that may soon be
    // released.
    if (ImportTrackAttributes(path, room) != 0) path->track_dictionary = nullptr;
    return path;
}

int32_t ImportTrackAttributes(DriverPath *path, TrackImportRoom &room) {
    if (path->parser_track != nullptr) {
        ImportParserTrack(path, room);
    } else {
        if (!IsDictionary(path->track_dictionary)) return -1;
        ImportDictionary(path, room);
        path->track_dictionary = nullptr;
    }
    return 0;
}
