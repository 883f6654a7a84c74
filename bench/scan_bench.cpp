// Loading a library whose add folder holds thousands of mp3 files, against TagLib alone, which reads the tag
// and the audio properties of each file once; and a second scan of the same files against the first. In
// turns, each time in a process of its own.

#include <fileref.h>
#include <tag.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "driver/driver_path.h"
#include "driver/library_driver.h"
#include "driver/rescan.h"
#include "fixtures/artwork_file.h"
#include "fixtures/generated_library.h"
#include "fixtures/library_place.h"
#include "fixtures/media_files.h"
#include "fixtures/temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 7;
constexpr int kFiles = 5000;
constexpr int kSeconds = 4;
constexpr int kPictureSide = 64;

std::vector<fs::path> WriteFiles(const fs::path &folder) {
    const std::string picture = PngPicture(kPictureSide);
    std::vector<fs::path> files;
    for (int i = 0; i < kFiles; ++i) {
        const std::string number = std::to_string(i);
        const MediaTags tags{
            "Song " + number, "Artist " + std::to_string(i / 12), "Album", "Rock", 1980 + i % 40, i % 12 + 1,
            picture};
        files.push_back(folder / (number + ".mp3"));
        Require(static_cast<bool>(std::ofstream(files.back(), std::ios::binary) << Mp3File(kSeconds, tags)),
                "a file cannot be written");
    }
    return files;
}

void ReadWithTagLib(const std::vector<fs::path> &files) {
    std::size_t total = 0;
    for (const fs::path &path : files) {
        const TagLib::FileRef file(path.c_str(), true, TagLib::AudioProperties::Average);
        Require(!file.isNull() && file.audioProperties() != nullptr, "TagLib cannot read a file");
        const TagLib::Tag &tag = *file.tag();
        for (const TagLib::String &text :
             {tag.title(), tag.artist(), tag.album(), tag.comment(), tag.genre()})
            total += text.size();
        total += tag.year() + tag.track();
        total += static_cast<std::size_t>(file.audioProperties()->lengthInSeconds());
    }
    Require(total > 0, "TagLib has read nothing");
}

int32_t MusicCount(const LibraryDriver &driver) {
    return ChildCount(FindChild(GetLibraryRoot(&driver), "music"));
}

void Run() {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    GenerateLibrary(place.library_xml, {.tracks = 1});
    const std::vector<fs::path> files = WriteFiles(place.add_folder);
    const ScopedEnvironmentValues environment(place.environment);

    Series scan;
    Series rescan;
    Series taglib;
    for (int round = -1; round < kRounds; ++round) {
        LibraryDriver driver;
        const double scan_seconds =
            Seconds([&] { Require(CreateLibrary(&driver) == 0, "the library cannot be loaded"); });
        Require(MusicCount(driver) == kFiles + 1, "the scan has not found the files");
        const double rescan_seconds = Seconds([&] { RescanLocalFolders(&driver); });
        Require(MusicCount(driver) == kFiles + 1, "the second scan has lost files");
        DestroyLibrary(&driver);
        const double taglib_seconds = Seconds([&] { ReadWithTagLib(files); });
        if (round < 0) continue;
        scan.Add(scan_seconds);
        rescan.Add(rescan_seconds);
        taglib.Add(taglib_seconds);
    }
    std::cout << "mp3 files: scan / TagLib alone = " << Ratio(scan, taglib) << "   " << scan.Text(1e3, "ms")
              << " / " << taglib.Text(1e3, "ms") << " for " << kFiles << " files\n"
              << "unchanged mp3 files: second scan / first = " << Ratio(rescan, scan) << "   "
              << rescan.Text(1e3, "ms") << "\n";
}

}  // namespace

int main() {
    try {
        Run();
    } catch (const std::exception &error) {
        std::cerr << "scan-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
