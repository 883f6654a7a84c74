// Loading a library: the whole driver, and its property-list reader alone, against libplist's reader of the
// same file. The three take turns, each time in a process of its own, after one round that only warms the
// file up.

#include <plist/plist.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "driver/itunes_driver.h"
#include "platform/core_foundation/core_foundation.h"
#include "tests/support/library_place.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr int kRounds = 7;

void LoadWithDriver() {
    LibraryDriver *driver = nullptr;
    Require(InitializeDriverPath(nullptr, nullptr, 0, &driver) == 0, "the driver cannot load the library");
    Require(UninitializeDriverPath(driver) == 0, "the driver cannot release the library");
}

void ParseWithDriver(const std::string &path) {
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                           reinterpret_cast<const UInt8 *>(path.data()),
                                                           static_cast<CFIndex>(path.size()), false);
    CFReadStreamRef stream = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
    CFRelease(url);
    Require(CFReadStreamOpen(stream), "the file cannot be opened");
    CFPropertyListRef list =
        CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, 0, nullptr, nullptr);
    CFReadStreamClose(stream);
    CFRelease(stream);
    Require(list != nullptr, "the file is no property list");
    CFRelease(list);
}

// Reading the file belongs to the work, as it does for the driver.
void ParseWithLibplist(const std::string &path) {
    const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
    plist_t list = nullptr;
    {
        std::string bytes(size, '\0');
        std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(size));
        plist_from_xml(bytes.data(), static_cast<uint32_t>(size), &list);
    }
    Require(list != nullptr, "libplist cannot read the file");
    plist_free(list);
}

void Run(const std::filesystem::path &library_xml) {
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml);
    const ScopedEnvironmentValues environment(place.environment);
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    Costs load;
    Costs parse;
    Costs libplist;
    for (int round = -1; round < kRounds; ++round) {
        const Cost load_cost = MeasureInChild(LoadWithDriver);
        const Cost libplist_cost = MeasureInChild([&] { ParseWithLibplist(library_xml.string()); });
        const Cost parse_cost = MeasureInChild([&] { ParseWithDriver(library_xml.string()); });
        if (round < 0) continue;
        load.Add(load_cost);
        libplist.Add(libplist_cost);
        parse.Add(parse_cost);
    }
    std::cout << "library of " << std::filesystem::file_size(library_xml) / (1 << 20) << " MiB; medians of "
              << kRounds << " rounds (min to max)\n";
    PrintCosts("load", "driver / libplist", load, libplist);
    PrintCosts("parse alone,", "driver / libplist", parse, libplist);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: load-bench LIBRARY_XML\n";
        return 2;
    }
    try {
        Run(std::filesystem::absolute(argv[1]));
    } catch (const std::exception &error) {
        std::cerr << "load-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
