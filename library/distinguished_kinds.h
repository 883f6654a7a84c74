#ifndef LIBRARY_DISTINGUISHED_KINDS_H
#define LIBRARY_DISTINGUISHED_KINDS_H

#include <cstdint>

// Where lists of one kind go: which fixed child of the root holds them, their numbers and their name.
enum class ListParent { kNone, kLibrary, kGenius, kPlaylists };

struct DistinguishedKind {
    int32_t number;
    ListParent parent;
    int32_t category;
    int32_t subcategory;
    const char *name;  // null: the list's own
};

constexpr int32_t kOrdinaryList = 0;
constexpr int32_t kMovies = 2;
constexpr int32_t kMusic = 4;
constexpr int32_t kMovieRentals = 48;

// Every number gives a row. The row of a list of the user has subcategory 0: it depends on the list itself.
const DistinguishedKind &FindDistinguishedKind(int32_t number);

#endif
