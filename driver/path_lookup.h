#ifndef DRIVER_PATH_LOOKUP_H
#define DRIVER_PATH_LOOKUP_H

#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "driver/driver_path.h"
#include "driver/number_index.h"
#include "driver/text_index.h"

// The first `children_indexed` children of a category root by their `location`.
struct LocationIndex {
    TextIndex positions;
    int32_t children_indexed = 0;
};

// Lookups that are defined by a walk over the tree or over the tracks, each at the cost of a hash lookup. The
// host's arrays stay the truth: these records tell where to look, and are kept or dropped with every change.
struct TreeIndex {
    // The last child of "library" with a category and a subcategory.
    std::unordered_map<uint64_t, DriverPath *> category_roots;

    // The first `tracks_indexed` tracks: by id where that is a number as iTunes writes it, and the positions
    // of the others by the text of their id.
    NumberIndex track_numbers;
    TextIndex track_ids;
    int32_t tracks_indexed = 0;

    // The node that a depth-first walk meets first for each persistent id; empty until one is asked for.
    TextIndex persistent_ids;
    std::vector<DriverPath *> persistent_nodes;
    bool persistent_ids_built = false;

    // Children of category roots by `location`, for the roots that were asked for one.
    std::unordered_map<const DriverPath *, LocationIndex> locations;
};

// Keeps the index right when a node has been hung under a parent; `moved` tells that it hung elsewhere before
// and now comes earlier in the walk.
void NoteAppendedChild(DriverPath *parent, DriverPath *child, bool moved);

// The same when a child has been taken out of a parent.
void NoteDroppedChild(DriverPath *parent);

// The first path of an array whose `id` equals the text, with ASCII case ignored, or null. Walks the array.
DriverPath *FindById(VelmarArray *array, std::string_view id);

// Takes the last one of `tracks`, which is new there, into the index, under its id. The lookups do so too; a
// track that is still at hand costs less.
void IndexNewTrack(LibraryDriver *driver, DriverPath *track, std::string_view id);

// The same among all tracks of the library, without a walk.
DriverPath *FindTrackById(LibraryDriver *driver, std::string_view id);

DriverPath *FindTrackByNumber(LibraryDriver *driver, int64_t id);

// The same for some numbers at once, which is faster in a large library: `tracks` has room for as many.
void FindTracksByNumber(LibraryDriver *driver, std::span<const int64_t> ids, DriverPath **tracks);

// The node with this persistent id, case counting, that a depth-first walk from the root meets first, or
// null.
DriverPath *FindPathByPersistentId(LibraryDriver *driver, std::string_view id);

// The last child of "library" with these numbers, or null.
DriverPath *FindCategoryRoot(const LibraryDriver *driver, int32_t category, int32_t subcategory);

// The last child of "library" with this subcategory, whatever its category, or null. A walk over the few
// roots.
DriverPath *FindCategoryPath(const LibraryDriver *driver, int32_t subcategory);

// True when a child of the category root has this path as its `location`. The backslashes of the path count
// as "/", those of locations do not: so it is the library's own tracks that are found, and not what a scan
// has added. Case and leading separators do not count: a file URL loses its first slash on the way to a
// `location`.
bool IsLocationKnown(DriverPath *category_root, std::string_view path);

#endif
