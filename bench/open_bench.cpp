// Opening and closing `library/music/N` in a small and in a large library, in turns. N is drawn at random
// over the whole library, so that the large one also pays for what its nodes cost the processor's caches; a
// third row opens as many different tracks of the large library as the small one has, which leaves the caches
// out of the comparison, and a fourth looks the texts of the large library up in a hash table of the standard
// library.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "driver/itunes_driver.h"
#include "fixtures/library_place.h"
#include "fixtures/temp_folder.h"

namespace {

constexpr int kRounds = 9;
constexpr std::size_t kOpensPerRound = 50000;

// A generated library with the paths of its music.
struct Music {
    explicit Music(const std::filesystem::path &library_xml)
        : library(MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml)),
          paths(library.MusicPaths()) {}

    TempFolder home;
    LoadedLibrary library;
    std::vector<std::string> paths;
};

// The texts of one round stand in a row, so that fetching them costs the same whichever library they name.
std::vector<std::string> DrawPaths(const Music &music, std::size_t different, std::mt19937_64 &engine) {
    std::vector<std::string> pool = music.paths;
    std::shuffle(pool.begin(), pool.end(), engine);
    pool.resize(std::min(different, pool.size()));
    std::vector<std::string> drawn;
    drawn.reserve(kOpensPerRound);
    for (std::size_t i = 0; i < kOpensPerRound; ++i)
        drawn.push_back(pool[engine() % pool.size()]);
    return drawn;
}

double SecondsPerOpen(const Music &music, std::size_t different, std::mt19937_64 &engine) {
    const std::vector<std::string> paths = DrawPaths(music, different, engine);
    const double seconds = Seconds([&] {
        for (const std::string &path : paths)
            music.library.Open(path);
    });
    return seconds / static_cast<double>(kOpensPerRound);
}

double SecondsPerLookup(const Music &music, const std::unordered_map<std::string, std::size_t> &table,
                        std::mt19937_64 &engine) {
    const std::vector<std::string> paths = DrawPaths(music, music.paths.size(), engine);
    std::size_t found = 0;
    const double seconds = Seconds([&] {
        for (const std::string &path : paths)
            found += table.count(path);
    });
    Require(found == paths.size(), "a path is missing in the table");
    return seconds / static_cast<double>(kOpensPerRound);
}

void PrintFirstOpen(const char *what, const Music &music) {
    const double seconds = Seconds([&] { music.library.Open(music.paths.back()); });
    std::printf("first open after the load, %s library: %.1f us\n", what, seconds * 1e6);
}

void Run(const std::filesystem::path &small_xml, const std::filesystem::path &large_xml) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const Music small(small_xml);
    const Music large(large_xml);
    PrintFirstOpen("small", small);
    PrintFirstOpen("large", large);

    std::unordered_map<std::string, std::size_t> table;
    for (const std::string &path : large.paths)
        table.emplace(path, table.size());
    std::mt19937_64 engine(1);
    Series small_series;
    Series large_series;
    Series part_series;
    Series lookup_series;
    for (int round = -1; round < kRounds; ++round) {
        const double small_time = SecondsPerOpen(small, small.paths.size(), engine);
        const double large_time = SecondsPerOpen(large, large.paths.size(), engine);
        const double part_time = SecondsPerOpen(large, small.paths.size(), engine);
        const double lookup_time = SecondsPerLookup(large, table, engine);
        if (round < 0) continue;
        lookup_series.Add(lookup_time);
        small_series.Add(small_time);
        large_series.Add(large_time);
        part_series.Add(part_time);
    }
    std::cout << "open and close, " << small.paths.size() << " tracks:  " << small_series.Text(1e9, "ns")
              << "\n"
              << "open and close, " << large.paths.size() << " tracks:  " << large_series.Text(1e9, "ns")
              << "\n"
              << "open and close, " << small.paths.size() << " of " << large.paths.size()
              << " tracks:  " << part_series.Text(1e9, "ns") << "\n"
              << "lookup of a path of " << large.paths.size()
              << " in a hash table:  " << lookup_series.Text(1e9, "ns") << "\n"
              << "open: large / small = " << Ratio(large_series, small_series)
              << ", with equally many different tracks = " << Ratio(part_series, small_series) << "\n";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: open-bench SMALL_LIBRARY_XML LARGE_LIBRARY_XML\n";
        return 2;
    }
    try {
        Run(std::filesystem::absolute(argv[1]), std::filesystem::absolute(argv[2]));
    } catch (const std::exception &error) {
        std::cerr << "open-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
