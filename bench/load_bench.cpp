// Loading a library, against other readers of the same file: libplist, pugixml's parse into a tree, and a
// plain read that counts every '<'. The driver's own property-list reader is measured alone too. All take
// turns, each time in a process of its own, after one round that only warms the file up. What is measured
// ends with the result in memory; its release is a figure of its own.

#include <plist/plist.h>

#include <pugixml.hpp>

#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "driver/itunes_driver.h"
#include "fixtures/library_place.h"
#include "fixtures/temp_folder.h"
#include "platform/core_foundation/core_foundation.h"

namespace {

constexpr int kRounds = 7;

Cost LoadWithDriver() {
    LibraryDriver *driver = nullptr;
    return MeasureInChild(
        [&] {
            Require(InitializeDriverPath(nullptr, nullptr, 0, &driver) == 0,
                    "the driver cannot load the library");
        },
        [&] { Require(UninitializeDriverPath(driver) == 0, "the driver cannot release the library"); });
}

CFPropertyListRef ReadList(const std::string &path) {
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
    return list;
}

Cost ParseWithDriver(const std::string &path) {
    CFPropertyListRef list = nullptr;
    return MeasureInChild([&] { list = ReadList(path); }, [&] { CFRelease(list); });
}

// Reading the file belongs to the work, as it does for the driver.
Cost ParseWithLibplist(const std::string &path) {
    plist_t list = nullptr;
    const auto parse = [&] {
        const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
        std::string bytes(size, '\0');
        std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(size));
        plist_from_xml(bytes.data(), static_cast<uint32_t>(size), &list);
        Require(list != nullptr, "libplist cannot read the file");
    };
    return MeasureInChild(parse, [&] { plist_free(list); });
}

Cost ParseWithPugixml(const std::string &path) {
    pugi::xml_document document;
    const auto parse = [&] {
        Require(static_cast<bool>(document.load_file(path.c_str())), "pugixml cannot read the file");
    };
    return MeasureInChild(parse, [&] { document.reset(); });
}

Cost CountTags(const std::string &path) {
    return MeasureInChild([&] {
        std::ifstream file(path, std::ios::binary);
        std::vector<char> bytes(std::size_t{1} << 20);
        std::size_t tags = 0;
        while (file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())), file.gcount() > 0) {
            const char *const end = bytes.data() + file.gcount();
            for (const char *at = bytes.data();
                 (at = static_cast<const char *>(std::memchr(at, '<', static_cast<std::size_t>(end - at)))) !=
                 nullptr;
                 ++at)
                ++tags;
        }
        Require(tags > 0, "the file has no tags");
    });
}

void PrintRatio(const char *what, const Series &first, const Series &second) {
    std::cout << what << " = " << Ratio(first, second) << "   " << first.Text(1, "s") << " / "
              << second.Text(1, "s") << "\n";
}

void Run(const std::filesystem::path &library_xml) {
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml);
    const ScopedEnvironmentValues environment(place.environment);
    const std::string file = library_xml.string();
    Costs load;
    Costs parse;
    Costs libplist;
    Costs pugixml;
    Costs count;
    const std::pair<Costs *, std::function<Cost()>> works[] = {
        {&load, LoadWithDriver},
        {&libplist, [&] { return ParseWithLibplist(file); }},
        {&parse, [&] { return ParseWithDriver(file); }},
        {&pugixml, [&] { return ParseWithPugixml(file); }},
        {&count, [&] { return CountTags(file); }}};
    for (int round = -1; round < kRounds; ++round) {
        for (const auto &[costs, work] : works) {
            const Cost cost = work();
            if (round >= 0) costs->Add(cost);
        }
    }
    constexpr double kMegabyte = 1.0 / (1 << 20);
    const auto file_bytes = static_cast<double>(std::filesystem::file_size(library_xml));
    std::cout << "library of " << file_bytes * kMegabyte << " MiB; medians of " << kRounds
              << " rounds (min to max)\n";
    PrintCosts("load", "driver / libplist", load, libplist);
    PrintRatio("load time: driver / pugixml's parse", load.seconds, pugixml.seconds);
    PrintRatio("load time: driver / read and memchr", load.seconds, count.seconds);
    std::cout << "load memory: peak / file = " << load.peak_bytes.Median() / file_bytes
              << ", held after the load / file = " << load.held_bytes.Median() / file_bytes << "\n";
    PrintRatio("unload / load", load.release_seconds, load.seconds);
    PrintCosts("parse alone,", "driver / libplist", parse, libplist);
    PrintRatio("parse alone, time: driver / pugixml", parse.seconds, pugixml.seconds);
}

Cost LoadOf(const std::filesystem::path &library_xml) {
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml);
    const ScopedEnvironmentValues environment(place.environment);
    return LoadWithDriver();
}

void RunGrowth(const std::filesystem::path &library_xml, const std::filesystem::path &larger_xml) {
    constexpr int kGrowthRounds = 5;
    Costs small;
    Costs large;
    for (int round = -1; round < kGrowthRounds; ++round) {
        const Cost small_cost = LoadOf(library_xml);
        const Cost large_cost = LoadOf(larger_xml);
        if (round < 0) continue;
        small.Add(small_cost);
        large.Add(large_cost);
    }
    const auto times = static_cast<double>(std::filesystem::file_size(larger_xml)) /
                       static_cast<double>(std::filesystem::file_size(library_xml));
    std::cout << "a file " << times << " times as large:\n";
    PrintCosts("load", "large / small", large, small);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: load-bench LIBRARY_XML [LARGER_LIBRARY_XML]\n";
        return 2;
    }
    try {
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
        Run(std::filesystem::absolute(argv[1]));
        if (argc == 3) RunGrowth(std::filesystem::absolute(argv[1]), std::filesystem::absolute(argv[2]));
    } catch (const std::exception &error) {
        std::cerr << "load-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
