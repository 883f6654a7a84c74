// What is read of a file, and what is still to be put together while it is read.
#ifndef PLATFORM_ITL_PARSER_LIBRARY_CONTENT_H
#define PLATFORM_ITL_PARSER_LIBRARY_CONTENT_H

#include <cstdint>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "platform/itl_parser/itl_parser.h"
#include "platform/itl_parser/kept_memory.h"

namespace itl_parser {

struct LibraryContent {
    std::string persistent_id;
    std::string version;
    KeptMemory memory;
    std::vector<Track *> tracks;
    std::vector<Playlist *> playlists;
    std::deque<Playlist> playlist_records;
};

// The sections may come in any order, so what needs two of them waits for the last.
struct OpenEnds {
    // Tracks without a rating of their own, with the number of their album.
    std::vector<std::pair<Track *, uint32_t>> unrated_tracks;
    // Ratings of albums, by number.
    std::vector<std::pair<uint32_t, uint8_t>> album_ratings;
    // Lists to which the file gives no id.
    std::vector<Playlist *> unnumbered_playlists;
};

}  // namespace itl_parser

#endif
