// Merging a library of 100000 tracks, of which a tenth are new, against reading its XML file alone, in turns.

#include <exception>
#include <iostream>
#include <string>

#include "bench/measure.h"
#include "content/plist_values.h"
#include "driver/library_driver.h"
#include "fixtures/generated_library.h"
#include "fixtures/library_place.h"
#include "fixtures/temp_folder.h"
#include "library/refresh.h"

namespace {

constexpr int kRounds = 5;
constexpr int kTracks = 100000;
constexpr int kNewTracks = kTracks / 10;

void Run() {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    const std::string changed_xml = (home.path() / "changed.xml").string();
    GenerateLibrary(place.library_xml, {.tracks = kTracks - kNewTracks});
    GenerateLibrary(changed_xml, {.tracks = kTracks});
    LibraryDriver driver;
    const ScopedEnvironmentValues environment(place.environment);
    Require(CreateLibrary(&driver) == 0, "a library cannot be loaded");
    driver.xml_path = changed_xml;

    // Each round begins with the library as it was loaded, as it runs in a copy of this process.
    Series refresh;
    Series read;
    for (int round = -1; round < kRounds; ++round) {
        const Cost refresh_cost = MeasureInChild([&] {
            Require(RefreshLibrary(&driver) == 0, "a refresh has failed");
            Require(GetVelmarArraySize(driver.tracks) == kTracks, "tracks are missing");
        });
        const Cost read_cost = MeasureInChild(
            [&] { Require(ReadPropertyListFile(changed_xml) != nullptr, "a list is unreadable"); });
        if (round < 0) continue;
        refresh.Add(refresh_cost.seconds);
        read.Add(read_cost.seconds);
    }
    DestroyLibrary(&driver);
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
