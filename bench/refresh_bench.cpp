// Merging a library of 100000 tracks, of which a tenth are new, against reading its XML file alone, in turns.

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

#include "bench/measure.h"
#include "content/plist_values.h"
#include "driver/library_driver.h"
#include "library/refresh.h"
#include "tests/support/generated_library.h"
#include "tests/support/library_place.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr int kRounds = 5;
constexpr int kTracks = 100000;
constexpr int kNewTracks = kTracks / 10;

void Require(bool condition, const char *what) {
    if (!condition) throw std::runtime_error(what);
}

// Seconds of a refresh, without the load before it.
double RefreshSeconds(const LibraryPlace &place, const std::string &changed_xml) {
    LibraryDriver driver;
    const ScopedEnvironmentValues environment(place.environment);
    Require(CreateLibrary(&driver) == 0, "a library cannot be loaded");
    driver.xml_path = changed_xml;
    const double seconds = Seconds([&] { Require(RefreshLibrary(&driver) == 0, "a refresh has failed"); });
    Require(GetVelmarArraySize(driver.tracks) == kTracks, "tracks are missing");
    DestroyLibrary(&driver);
    return seconds;
}

void Run() {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    const std::string changed_xml = (home.path() / "changed.xml").string();
    GenerateLibrary(place.library_xml, {.tracks = kTracks - kNewTracks});
    GenerateLibrary(changed_xml, {.tracks = kTracks});
    Series refresh;
    Series read;
    for (int round = -1; round < kRounds; ++round) {
        const double refresh_seconds = RefreshSeconds(place, changed_xml);
        const double read_seconds =
            Seconds([&] { Require(ReadPropertyListFile(changed_xml) != nullptr, "unreadable"); });
        if (round < 0) continue;
        refresh.Add(refresh_seconds);
        read.Add(read_seconds);
    }
    std::cout << "refresh / reading the XML file = " << Ratio(refresh, read) << "   "
              << refresh.Text(1e3, "ms") << " / " << read.Text(1e3, "ms") << " for " << kTracks << " tracks, "
              << kNewTracks << " new\n";
}

}  // namespace

int main() {
    try {
        Run();
    } catch (const std::exception &error) {
        std::cerr << "refresh-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
