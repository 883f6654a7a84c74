#include "library/distinguished_kinds.h"

#include <algorithm>
#include <iterator>

#include "driver/driver_path.h"

namespace {

namespace category = node_category;
namespace subcategory = node_subcategory;

// Special lists of iTunes that have no numbers of their own elsewhere.
constexpr int32_t kPartyShuffle = 13;
constexpr int32_t kPurchased = 11;
constexpr int32_t kCloudLists = 10;

constexpr DistinguishedKind DistinguishedKindTable[] = {
    {kMovies, ListParent::kLibrary, category::kVideo, subcategory::kMovie, "movie"},
    {3, ListParent::kLibrary, category::kVideo, subcategory::kTvShow, "tvshow"},
    {kMusic, ListParent::kLibrary, category::kAudio, subcategory::kMusic, "music"},
    {5, ListParent::kLibrary, category::kBook, subcategory::kBook, "book"},
    {6, ListParent::kNone, 0, 0, nullptr},
    {10, ListParent::kLibrary, category::kVideo, subcategory::kPodcast, "podcast"},
    {18, ListParent::kLibrary, category::kApplication, subcategory::kApplication, "app"},
    {19, ListParent::kLibrary, category::kList, kPurchased, nullptr},
    {22, ListParent::kPlaylists, category::kList, kPartyShuffle, nullptr},
    {26, ListParent::kGenius, category::kList, subcategory::kGenius, nullptr},
    {31, ListParent::kLibrary, category::kList, kCloudLists, nullptr},
    {kMovieRentals, ListParent::kLibrary, category::kVideo, subcategory::kMovie, "movie"},
    {57, ListParent::kNone, 0, 0, nullptr},
    {58, ListParent::kNone, 0, 0, nullptr},
    {59, ListParent::kNone, 0, 0, nullptr},
};

constexpr DistinguishedKind kOther = {kOrdinaryList, ListParent::kPlaylists, category::kList, 0, nullptr};

}  // namespace

const DistinguishedKind &FindDistinguishedKind(int32_t number) {
    const auto *row = std::find_if(std::begin(DistinguishedKindTable), std::end(DistinguishedKindTable),
                                   [number](const DistinguishedKind &kind) { return kind.number == number; });
    return row == std::end(DistinguishedKindTable) ? kOther : *row;
}
