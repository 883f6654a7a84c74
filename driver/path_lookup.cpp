#include "driver/path_lookup.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

#include "driver/attributes.h"
#include "driver/library_driver.h"

namespace {

uint64_t NumbersKey(int32_t category, int32_t subcategory) {
    return (uint64_t{static_cast<uint32_t>(category)} << 32) | static_cast<uint32_t>(subcategory);
}

DriverPath *PathAt(VelmarArray *array, int32_t index) {
    void *item = nullptr;
    if (GetVelmarArrayItem(array, index, &item) != 0) return nullptr;
    return static_cast<DriverPath *>(item);
}

bool HasId(const DriverPath *path, std::string_view id) {
    const auto own = path == nullptr ? std::nullopt : FindAttribute(path, "id");
    return own && EqualFolded(*own, id);
}

// The number that an id spells, if no other text spells it too: without sign of plus and without leading
// zeros.
std::optional<int64_t> NumberOf(std::string_view id) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    if (error != std::errc() || end != id.data() + id.size()) return std::nullopt;
    const std::string_view digits = id.substr(id[0] == '-' ? 1 : 0);
    const bool padded = digits[0] == '0' && id != "0";
    return padded ? std::nullopt : std::optional(number);
}

void IndexTrack(LibraryDriver *driver, int32_t position, DriverPath *track, std::string_view id) {
    TreeIndex &index = driver->index;
    if (const auto number = NumberOf(id)) {
        index.track_numbers.Add(*number, track);
        return;
    }
    const auto same = [&](uint32_t at) {
        return HasId(PathAt(driver->tracks, static_cast<int32_t>(at)), id);
    };
    index.track_ids.Add(HashOfFolded(id), static_cast<uint32_t>(position), same);
}

void IndexNewTracks(LibraryDriver *driver) {
    int32_t &indexed = driver->index.tracks_indexed;
    const int32_t count = GetVelmarArraySize(driver->tracks);
    for (; indexed < count; ++indexed) {
        DriverPath *track = PathAt(driver->tracks, indexed);
        const auto id = track == nullptr ? std::nullopt : FindAttribute(track, "id");
        if (id) IndexTrack(driver, indexed, track, *id);
    }
}

auto SamePersistentId(const TreeIndex &index, std::string_view id) {
    return [&index, id](uint32_t at) {
        return FindAttribute(index.persistent_nodes[at], "persistent_id") == id;
    };
}

// Enters a node under its persistent id, unless a node that the walk meets earlier stands there.
void EnterPersistentId(TreeIndex &index, DriverPath *path) {
    const auto id = FindAttribute(path, "persistent_id");
    if (!id) return;
    const auto same = SamePersistentId(index, *id);
    const uint32_t hash = HashOf(*id);
    if (const auto found = index.persistent_ids.Find(hash, same)) {
        DriverPath *&winner = index.persistent_nodes[*found];
        if (winner != path && ComesBefore(path, winner)) winner = path;
        return;
    }
    index.persistent_nodes.push_back(path);
    index.persistent_ids.Add(hash, static_cast<uint32_t>(index.persistent_nodes.size() - 1), same);
}

void BuildPersistentIds(TreeIndex &index, DriverPath *root) {
    index.persistent_ids = {};
    index.persistent_nodes.clear();
    std::vector<DriverPath *> pending{root};
    while (!pending.empty()) {
        DriverPath *path = pending.back();
        pending.pop_back();
        EnterPersistentId(index, path);
        for (int32_t i = ChildCount(path) - 1; i >= 0; --i) {
            DriverPath *child = ChildAt(path, i);
            // A track is entered where the walk meets it first.
            if (child != nullptr && child->parent == path) pending.push_back(child);
        }
    }
    index.persistent_ids_built = true;
}

std::string_view WithoutLeadingSeparators(std::string_view path) {
    const size_t start = path.find_first_not_of("/\\");
    return start == std::string_view::npos ? std::string_view() : path.substr(start);
}

std::optional<std::string_view> LocationAt(const DriverPath *parent, int32_t position) {
    const DriverPath *child = ChildAt(parent, position);
    const auto location = child == nullptr ? std::nullopt : FindAttribute(child, "location");
    return location ? std::optional(WithoutLeadingSeparators(*location)) : std::nullopt;
}

auto SameLocation(const DriverPath *parent, std::string_view location) {
    return [=](uint32_t position) {
        const auto own = LocationAt(parent, static_cast<int32_t>(position));
        return own && EqualFolded(*own, location);
    };
}

void IndexNewLocations(LocationIndex &index, const DriverPath *parent) {
    const int32_t count = ChildCount(parent);
    for (; index.children_indexed < count; ++index.children_indexed) {
        const auto location = LocationAt(parent, index.children_indexed);
        if (!location) continue;
        index.positions.Add(HashOfFolded(*location), static_cast<uint32_t>(index.children_indexed),
                            SameLocation(parent, *location));
    }
}

}  // namespace

void NoteAppendedChild(DriverPath *parent, DriverPath *child, bool moved) {
    LibraryDriver *driver = child->owner;
    TreeIndex &index = driver->index;
    // What hangs below a node that moves comes earlier now, too.
    const bool stays_built = index.persistent_ids_built && (ChildCount(child) == 0 || !moved);
    index.persistent_ids_built = false;  // for good, if memory runs out here
    if (stays_built) EnterPersistentId(index, child);
    if (parent == GetLibraryRoot(driver)) {
        index.category_roots[NumbersKey(child->category, child->subcategory)] = child;
    }
    index.persistent_ids_built = stays_built;
}

void NoteDroppedChild(DriverPath *parent) {
    parent->owner->index.locations.erase(parent);
}

DriverPath *FindById(VelmarArray *array, std::string_view id) {
    const int32_t count = GetVelmarArraySize(array);
    for (int32_t i = 0; i < count; ++i) {
        DriverPath *path = PathAt(array, i);
        if (HasId(path, id)) return path;
    }
    return nullptr;
}

void IndexNewTrack(LibraryDriver *driver, DriverPath *track, std::string_view id) {
    int32_t &indexed = driver->index.tracks_indexed;
    if (indexed != GetVelmarArraySize(driver->tracks) - 1) return;
    IndexTrack(driver, indexed, track, id);
    ++indexed;
}

DriverPath *FindTrackByNumber(LibraryDriver *driver, int64_t id) {
    IndexNewTracks(driver);
    return driver->index.track_numbers.Find(id);
}

void FindTracksByNumber(LibraryDriver *driver, std::span<const int64_t> ids, DriverPath **tracks) {
    IndexNewTracks(driver);
    const NumberIndex &numbers = driver->index.track_numbers;
    for (const int64_t id : ids)
        numbers.PrefetchPlace(id);
    for (size_t i = 0; i < ids.size(); ++i) {
        tracks[i] = numbers.Find(ids[i]);
        PrefetchPath(tracks[i]);
    }
}

DriverPath *FindTrackById(LibraryDriver *driver, std::string_view id) {
    if (const auto number = NumberOf(id)) return FindTrackByNumber(driver, *number);
    IndexNewTracks(driver);
    const auto same = [=](uint32_t at) {
        return HasId(PathAt(driver->tracks, static_cast<int32_t>(at)), id);
    };
    const auto found = driver->index.track_ids.Find(HashOfFolded(id), same);
    return found ? PathAt(driver->tracks, static_cast<int32_t>(*found)) : nullptr;
}

DriverPath *FindPathByPersistentId(LibraryDriver *driver, std::string_view id) {
    TreeIndex &index = driver->index;
    if (!index.persistent_ids_built) BuildPersistentIds(index, driver->root);
    const auto found = index.persistent_ids.Find(HashOf(id), SamePersistentId(index, id));
    return found ? index.persistent_nodes[*found] : nullptr;
}

DriverPath *FindCategoryRoot(const LibraryDriver *driver, int32_t category, int32_t subcategory) {
    const auto found = driver->index.category_roots.find(NumbersKey(category, subcategory));
    return found == driver->index.category_roots.end() ? nullptr : found->second;
}

DriverPath *FindCategoryPath(const LibraryDriver *driver, int32_t subcategory) {
    const DriverPath *library = GetLibraryRoot(driver);
    if (library == nullptr) return nullptr;
    for (int32_t i = ChildCount(library) - 1; i >= 0; --i) {
        DriverPath *root = ChildAt(library, i);
        if (root != nullptr && root->subcategory == subcategory) return root;
    }
    return nullptr;
}

bool IsLocationKnown(DriverPath *category_root, std::string_view path) {
    LocationIndex &index = category_root->owner->index.locations[category_root];
    IndexNewLocations(index, category_root);
    std::string location(WithoutLeadingSeparators(path));
    std::replace(location.begin(), location.end(), '\\', '/');
    return index.positions.Find(HashOfFolded(location), SameLocation(category_root, location)).has_value();
}
