#ifndef LIBRARY_TRACK_KEYS_H
#define LIBRARY_TRACK_KEYS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "content/plist_values.h"

// How a track's entry in the library becomes attributes: one row for each key, in the order of the
// attributes.
struct TrackKey {
    const char *xml_key;
    const char *attribute;
    int32_t flags;  // of PlistText
};

constexpr size_t kTrackKeyCount = 27;

constexpr std::array<TrackKey, kTrackKeyCount> TrackKeyTable = {{
    {"Name", "name", 0},
    {"Artist", "artist", 0},
    {"Album", "album", 0},
    {"Album Artist", "album_artist", 0},
    {"Composer", "composer", 0},
    {"Genre", "genre", 0},
    {"Kind", "kind", 0},
    {"Size", "st_size", 0},
    {"Total Time", "duration", 0},
    {"Track Number", "track_num", 0},
    {"Year", "year", 0},
    {"Bit Rate", "bit_rate", 0},
    {"Sample Rate", "sample_rate", 0},
    {"Comments", "comment", 0},
    {"Video Width", "width", 0},
    {"Video Height", "height", 0},
    {"Play Count", "plays", 0},
    {"Rating", "rating", 0},
    {"Movie", "is_movie", 0},
    {"Purchased", "purchased", 0},
    {"Persistent ID", "persistent_id", 0},
    {"Location", "location", kTextIsLocation},
    {"Date Modified", "st_mtime", 0},
    {"Date Added", "st_addtime", 0},
    {"Has Video", "has_video", 0},
    {"TV Show", "is_tvshow", 0},
    {"Podcast", "is_podcast", 0},
}};

constexpr size_t RowOfAttribute(std::string_view attribute) {
    size_t row = 0;
    while (TrackKeyTable[row].attribute != attribute)
        ++row;
    return row;
}

// The row of an XML key, or empty for a key that gives no attribute.
std::optional<size_t> FindTrackKey(std::string_view xml_key);

#endif
