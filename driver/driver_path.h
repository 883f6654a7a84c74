#ifndef DRIVER_DRIVER_PATH_H
#define DRIVER_DRIVER_PATH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "driver/child_index.h"
#include "driver/itunes_driver.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/itl_parser/itl_parser.h"
#include "platform/memory/pool.h"
#include "platform/memory/prefetch.h"

// The numbers that type a node.
namespace node_kind {
constexpr int32_t kRoot = 0;
constexpr int32_t kFolder = 1;  // a category root, a list or a "thumb" node
constexpr int32_t kApplicationFile = 2;
constexpr int32_t kFile = 4;
}  // namespace node_kind

namespace node_category {
constexpr int32_t kNone = 0;
constexpr int32_t kList = 1;
constexpr int32_t kAudio = 2;
constexpr int32_t kVideo = 3;
constexpr int32_t kThumbnail = 4;
constexpr int32_t kBook = 5;
constexpr int32_t kApplication = 6;
}  // namespace node_category

namespace node_subcategory {
constexpr int32_t kNone = 0;
constexpr int32_t kLibrary = 1;
constexpr int32_t kPlaylists = 2;
constexpr int32_t kSmartPlaylist = 3;
constexpr int32_t kPlaylist = 4;
constexpr int32_t kPlaylistFolder = 5;
constexpr int32_t kPodcast = 9;
constexpr int32_t kGenius = 12;
constexpr int32_t kMusic = 20;
constexpr int32_t kRingtone = 21;
constexpr int32_t kMovie = 30;
constexpr int32_t kTvShow = 31;
constexpr int32_t kThumbOfTrack = 43;
constexpr int32_t kThumbnail = 44;
constexpr int32_t kThumbOfScannedFile = 44;
constexpr int32_t kBook = 50;
constexpr int32_t kApplication = 60;
}  // namespace node_subcategory

// A longer extension is cut in the names of tracks in lists.
constexpr size_t kLongestListExtension = 5;

// A node of the tree. `children` and `names` are parallel, and change through AppendChild and DetachChild
// alone.
struct DriverPath : Pooled {
    // What opening and closing touches stands together.
    char *open_path = nullptr;  // text of the first open, while open_count is not 0
    int32_t open_count = 0;
    int32_t kind = 0;
    int32_t category = 0;
    int32_t subcategory = 0;
    bool dropped = false;  // taken out of the tree while a host had it open; goes with its last close
    int32_t from_folder_scan = 0;

    LibraryDriver *owner = nullptr;
    CFDictionaryRef track_dictionary = nullptr;  // borrowed, set while a track of the XML file is imported
    const Track *parser_track = nullptr;         // borrowed
    VelmarArray *children = nullptr;
    VelmarArray *names = nullptr;  // texts from the pool
    VelmarAttribute *attributes = nullptr;
    int64_t thumb_offset = 0;  // where an image starts inside the file of `location`; 0 for a whole file
    int32_t share_count = 0;   // how many lists hold this track

    // Of the nodes that hold this one, the one that a depth-first walk from the root meets first; null where
    // no such walk comes.
    DriverPath *parent = nullptr;
    // Grows with each AppendChild, so that it orders the children of one parent.
    uint32_t sequence = 0;
    // Of a track: the extension of `location` as it goes into the track's names in lists, dot included.
    char list_extension[kLongestListExtension + 1] = {};
    // Children by name; only where there are many.
    std::unique_ptr<ChildIndex> child_index;
};

// Adds an item to an array of the host's library, whose result does not tell whether there was memory. Throws
// std::bad_alloc where there was none.
void AppendItem(VelmarArray *array, void *item);

// Sends for the memory of a node. Null is passed over.
inline void PrefetchPath(const DriverPath *path) {
    if (path == nullptr) return;
    Prefetch(path);
    Prefetch(&path->sequence);
}

struct ReleasePath {
    void operator()(DriverPath *path) const;
};
// A node that hangs nowhere, with its subtree.
using LoosePath = std::unique_ptr<DriverPath, ReleasePath>;

// Throws std::bad_alloc.
LoosePath CreateDriverPath(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory);

// Hangs a node under a parent, behind its other children, with a copy of the name; null for a child that no
// path reaches. Throws std::bad_alloc, with the tree as it was.
DriverPath *AppendChild(DriverPath *parent, const char *name, LoosePath child);

// The same with a track, which stays the library's, so that several lists can hold it.
void AppendTrack(DriverPath *list, const char *name, DriverPath *track);

int32_t ChildCount(const DriverPath *path);
// Null when there is no such child.
DriverPath *ChildAt(const DriverPath *path, int32_t index);
// Null when the child has no name.
const char *ChildNameAt(const DriverPath *path, int32_t index);

// The first child with exactly this name, or null. The first search among many children indexes their names.
DriverPath *FindChild(DriverPath *path, std::string_view name);

// Indexes the names of many children now, where a search is sure to come.
void IndexChildNames(DriverPath *path);

// Releases a node with its subtree; a node that other lists hold too only loses one holder. Null is passed
// over.
void ReleaseDriverPath(DriverPath *path);

// Takes the child at a position out of the tree, with its name, and hands it over with its subtree.
LoosePath DetachChild(DriverPath *parent, int32_t index);

// Takes the child at a position out of the tree, with its name, and releases its subtree. What the host has
// open of it stays until the last close.
void DropChild(DriverPath *parent, int32_t index);

// True when a host has a node of the subtree open.
bool IsOpenBelow(const DriverPath *path);

// Frees a dropped node that no host has open any longer.
void ReleaseDroppedPath(DriverPath *path);

// True when a depth-first walk from the root meets `first` before `second`; both hang in one tree.
bool ComesBefore(const DriverPath *first, const DriverPath *second);

// The fixed children of the root; null before they exist.
DriverPath *GetLibraryRoot(const LibraryDriver *driver);
DriverPath *GetGeniusRoot(const LibraryDriver *driver);
DriverPath *GetPlaylistRoot(const LibraryDriver *driver);

// Makes a category root under "library"; null when there is no "library".
DriverPath *CreateCategoryPath(LibraryDriver *driver, const char *name, int32_t kind, int32_t category,
                               int32_t subcategory);

#endif
