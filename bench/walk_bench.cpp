// What a host waits for beside the load of a large library: a walk over the whole tree, and the load of a
// library of one track, which is mostly the preferences and the folders.

#include <exception>
#include <filesystem>
#include <iostream>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "fixtures/generated_library.h"
#include "fixtures/temp_folder.h"

namespace {

constexpr int kRounds = 9;

void MeasureWalk(const std::filesystem::path &library_xml) {
    const TempFolder home;
    const LoadedLibrary library(MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml));
    Series walk;
    std::size_t nodes = 0;
    for (int round = -1; round < kRounds; ++round) {
        const double seconds = Seconds([&] { nodes = library.WalkAll(); });
        if (round >= 0) walk.Add(seconds / static_cast<double>(nodes));
    }
    std::cout << "walk over " << nodes << " nodes: " << walk.Text(1e5, "s for each 100000") << "\n";
}

void MeasureSmallLoad() {
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    GenerateLibrary(place.library_xml, {.tracks = 1});
    Series load;
    for (int round = -1; round < kRounds; ++round) {
        const Cost cost = MeasureInChild([&] { const LoadedLibrary library(place); });
        if (round >= 0) load.Add(cost.seconds);
    }
    std::cout << "load and unload of a library of one track, with its preferences: " << load.Text(1e3, "ms")
              << "\n";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: walk-bench LIBRARY_XML\n";
        return 2;
    }
    try {
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
        MeasureWalk(std::filesystem::absolute(argv[1]));
        MeasureSmallLoad();
    } catch (const std::exception &error) {
        std::cerr << "walk-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
