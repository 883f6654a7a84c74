#ifndef TESTS_SUPPORT_GENERATED_LIBRARY_H
#define TESTS_SUPPORT_GENERATED_LIBRARY_H

#include <cstdint>
#include <filesystem>

// A library of any size with tracks like those of real ones, about 1.5 KB and two dozen keys each: a master
// list and a list "Music" with all tracks, and plain lists with tracks drawn at random. No media file stands
// behind it.
struct GeneratedLibraryOptions {
    int tracks = 1000;
    int lists = 0;
    int items = 0;  // in each list
    std::uint64_t seed = 1;
};

// Writes an .itl file of the latest form if the name ends so, else XML. The same options give the same bytes,
// and both forms the same tracks and lists, with the dates of an .itl file in UTC. Throws std::runtime_error
// when the file cannot be written.
void GenerateLibrary(const std::filesystem::path &file, const GeneratedLibraryOptions &options);

// The id of the track at a position from 0 on; ids have gaps, as in real libraries.
constexpr std::int64_t GeneratedTrackId(int position) {
    return 60 + 2 * std::int64_t{position};
}

#endif
