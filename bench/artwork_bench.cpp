// The scan of the artwork cache, which the first open of a track runs, against a plain listing of the cache's
// folder. In turns, each time on a library that is loaded anew.

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "fixtures/artwork_file.h"
#include "fixtures/temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 7;
constexpr std::size_t kCacheFiles = 20000;

// A file for every fifth track. What is in it does not matter: the scan does not look.
void WriteCache(const LibraryPlace &place, const fs::path &library_folder) {
    const LoadedLibrary library(place);
    const std::string library_id = library.Attribute("", "persistent_id");
    const std::vector<std::string> paths = library.MusicPaths();
    const std::size_t step = std::max<std::size_t>(1, paths.size() / kCacheFiles);
    for (std::size_t i = 0; i < paths.size(); i += step) {
        const std::string track_id = library.Attribute(paths[i], "persistent_id");
        const fs::path file = library_folder / ArtworkCachePath(library_id, track_id);
        fs::create_directories(file.parent_path());
        Require(static_cast<bool>(std::ofstream(file) << "x"), "a cache file cannot be written");
    }
}

std::size_t ListPlainly(const fs::path &folder) {
    std::size_t files = 0;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder))
        files += entry.is_directory() ? 0 : 1;
    return files;
}

void Run(const fs::path &generated) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const fs::path library_folder = home.path() / "library";
    fs::create_directories(library_folder);
    const fs::path library_xml = library_folder / "iTunes Music Library.xml";
    fs::copy_file(generated, library_xml);
    const LibraryPlace place = MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml);
    WriteCache(place, library_folder);

    Series scan;
    Series listing;
    std::size_t files = 0;
    for (int round = -1; round < kRounds; ++round) {
        const LoadedLibrary library(place);
        const std::string path = library.MusicPaths().front();
        const double listing_time = Seconds([&] { files = ListPlainly(library_folder / "Album Artwork"); });
        const double scan_time = Seconds([&] { library.Open(path); });
        Require(library.Attribute(path, "media_has_thumb") == "true", "the scan has not found a cache file");
        if (round < 0) continue;
        scan.Add(scan_time);
        listing.Add(listing_time);
    }
    std::cout << "artwork: scan / plain listing = " << Ratio(scan, listing) << "   " << scan.Text(1e3, "ms")
              << " / " << listing.Text(1e3, "ms") << " for " << files << " files\n";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: artwork-bench LIBRARY_XML\n";
        return 2;
    }
    try {
        Run(fs::absolute(argv[1]));
    } catch (const std::exception &error) {
        std::cerr << "artwork-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
