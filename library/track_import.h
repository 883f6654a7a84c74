#ifndef LIBRARY_TRACK_IMPORT_H
#define LIBRARY_TRACK_IMPORT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "driver/library_driver.h"

// Room that the import of one track after another of one property list uses again.
struct TrackImportRoom {
    // Keys are shared by the tracks of a list as a rule, so the row of one is known by its reference.
    struct KnownKey {
        const void *key = nullptr;
        std::optional<size_t> row;
    };
    std::array<KnownKey, 256> known_keys;
    std::vector<const void *> keys;
    std::vector<const void *> values;
    std::string text;
};

// The keys and values of a dictionary.
void ReadEntries(CFDictionaryRef dictionary, TrackImportRoom &room);

// Makes a path for every track of the library's source and puts it into `tracks`, unless that was done while
// the source was read, then finds the add folder, whose result it gives. -1 when there is no usable source.
int32_t LoadTracks(LibraryDriver *driver);

// Releases the tracks that no list and no root holds: the end of the tree does not meet them.
void ReleaseLooseTracks(LibraryDriver *driver);

// Makes a track of the XML file: `id` and the attributes of its entry, which may be of any type.
DriverPath *CreateTrack(LibraryDriver *driver, const char *id, CFTypeRef entry, TrackImportRoom &room);

// Turns the source record of a new track path into attributes. 0, or -1 when it has none.
int32_t ImportTrackAttributes(DriverPath *path, TrackImportRoom &room);

// The rows of TrackKeyTable that a track of the .itl file has.
constexpr std::array<size_t, 14> kParserTrackRows = {0, 1, 2, 5, 6, 7, 8, 11, 12, 16, 17, 20, 21, 22};

// The text of one row for a track of the .itl file; empty for a row that such a track does not have. It lies
// in the track or in `room`, which is used again, and is followed by a NUL.
std::optional<std::string_view> TrackFieldText(const Track &track, size_t index, int32_t flags,
                                               std::string &room);

#endif
