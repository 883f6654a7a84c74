#ifndef LIBRARY_PLAYLISTS_H
#define LIBRARY_PLAYLISTS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "driver/library_driver.h"

// What the library says of one list.
struct PlaylistRecord {
    int32_t distinguished_kind = 0;
    bool is_folder = false;
    bool is_smart = false;
    std::optional<std::string> name;
    std::optional<std::string> persistent_id;
    std::optional<std::string> parent_persistent_id;
};

// Makes the category roots and lists of the library's source, and hangs the tracks under them. Always 0.
int32_t LoadPlaylists(LibraryDriver *driver);

// Makes the path of a list, or gives the one that it shares. Null for a list that has no place in the tree.
DriverPath *CreatePlaylistPath(LibraryDriver *driver, const PlaylistRecord &record);

// Hangs the tracks of a list's dictionary under its path. 0, or -1 for a value that is no dictionary.
int32_t AddPlaylistItems(LibraryDriver *driver, DriverPath *path, CFTypeRef dictionary);

int32_t AddParserPlaylistItems(LibraryDriver *driver, DriverPath *path, const std::vector<int32_t> &items);

// Hangs the track with this id under a list; an id without a track is passed over.
void AddTrackToPlaylist(LibraryDriver *driver, DriverPath *list, int64_t id);

// The same for each id in turn.
void AddTracksToPlaylist(LibraryDriver *driver, DriverPath *list, std::span<const int64_t> ids);

#endif
