#include "library/movie_pass.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <unordered_set>

#include "driver/attributes.h"
#include "library/category_root.h"
#include "library/distinguished_kinds.h"
#include "library/playlists.h"

namespace {

bool IsMovie(const DriverPath *path) {
    return path->category == node_category::kVideo && path->subcategory == node_subcategory::kMovie;
}

// Ids in one letter case, as ids are compared.
std::string FoldedId(std::string_view id) {
    std::string folded(id);
    for (char &letter : folded)
        letter = FoldLetter(letter);
    return folded;
}

std::unordered_set<std::string> IdsUnder(const DriverPath *root) {
    std::unordered_set<std::string> ids;
    const int32_t count = ChildCount(root);
    for (int32_t i = 0; i < count; ++i) {
        if (const auto id = FindAttribute(ChildAt(root, i), "id")) ids.insert(FoldedId(*id));
    }
    return ids;
}

}  // namespace

void AddMasterMovies(LibraryDriver *driver) {
    if (driver->master_playlist == nullptr) return;
    DriverPath *root = nullptr;
    std::unordered_set<std::string> held;
    const int32_t count = ChildCount(driver->master_playlist);
    for (int32_t i = 0; i < count; ++i) {
        Prefetch(ChildAt(driver->master_playlist, std::min(i + kPrefetchedPlaces, count - 1)));
        const DriverPath *track = ChildAt(driver->master_playlist, i);
        if (!IsMovie(track)) continue;
        const auto id = FindAttribute(track, "id");
        if (!id) continue;
        if (root == nullptr) {
            root = EnsureCategoryRoot(driver, kMovies);
            held = IdsUnder(root);
        }
        if (held.contains(FoldedId(*id))) continue;
        // The root then holds the track of this number, whose id may be spelled in another way.
        const int number = std::atoi(id->data());
        AddTrackToPlaylist(driver, root, number);
        held.insert(std::to_string(number));
    }
}
