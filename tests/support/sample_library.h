#ifndef TESTS_SUPPORT_SAMPLE_LIBRARY_H
#define TESTS_SUPPORT_SAMPLE_LIBRARY_H

#include <filesystem>

#include "tests/support/library_place.h"

// A small library with a case of everything: playable music, a film, a TV show, a podcast, books, a bought
// track, one whose file is gone, one that lies in the cloud; artwork; the lists of iTunes, smart and plain
// lists, lists inside folders; and beside the library what it does not name: ringtones, books, applications,
// a film, and a file that waits in the folder "Automatically Add to iTunes". The same call gives the same
// files, byte for byte, apart from the folder's name in them.
LibraryPlace MakeSampleLibrary(const std::filesystem::path &folder, PathStyle style = PathStyle::kNative);

// Track ids of the library, for tests that want one of them.
namespace sample_track {
inline constexpr int kMusic = 101;         // with "&" in name, album and file name; artwork in three sizes
inline constexpr int kSameAlbum = 102;     // artwork in three sizes
inline constexpr int kUnicode = 103;       // no Latin letter in its name; artwork in one size
inline constexpr int kRawArtwork = 104;    // artwork of raw pixels in two sizes
inline constexpr int kFileGone = 107;      // has a Location where no file is
inline constexpr int kCloud = 108;         // has no Location
inline constexpr int kFilm = 110;          // in the list of films
inline constexpr int kUnlistedFilm = 111;  // in the master list only
inline constexpr int kTvShow = 112;
inline constexpr int kPodcast = 113;
inline constexpr int kBook = 114;      // a PDF
inline constexpr int kEpubBook = 115;  // with a cover
}  // namespace sample_track

#endif
