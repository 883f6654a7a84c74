// Reading a large file that the system has in memory, in pieces of 64 KiB: through a stream of the driver,
// and by read(2) alone, in turns.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "fixtures/generated_library.h"
#include "fixtures/media_files.h"
#include "fixtures/temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 9;
constexpr int32_t kPiece = 64 << 10;
constexpr int64_t kFileBytes = int64_t{1} << 30;

// A song, so that the scan lists the file, and then whatever.
void WriteLargeFile(const fs::path &path) {
    const std::string song = Mp3File(1, {"Song", "Artist", "Album", "Rock", 1980, 1, ""});
    const std::string piece(std::size_t{1} << 20, 'm');
    std::ofstream file(path, std::ios::binary);
    file << song;
    for (auto left = static_cast<std::size_t>(kFileBytes) - song.size(); left > 0;) {
        const std::size_t count = std::min(left, piece.size());
        file.write(piece.data(), static_cast<std::streamsize>(count));
        left -= count;
    }
    Require(static_cast<bool>(file.flush()), "the file cannot be written");
}

void ReadThroughDriver(const LoadedLibrary &library, const std::string &path, std::vector<char> &buffer) {
    DriverStream *stream = nullptr;
    Require(OpenDriverStream(library.driver(), 0, path.c_str(), &stream) == 0, "the stream cannot be opened");
    int64_t total = 0;
    for (int32_t count = 0; (count = ReadDriverStream(stream, buffer.data(), kPiece)) > 0;)
        total += count;
    CloseDriverStream(stream);
    Require(total == kFileBytes, "the stream has not given the whole file");
}

void ReadAlone(const fs::path &path, std::vector<char> &buffer) {
    const int file = open(path.c_str(), O_RDONLY);
    int64_t total = 0;
    for (ssize_t count = 0; (count = read(file, buffer.data(), kPiece)) > 0;)
        total += count;
    close(file);
    Require(total == kFileBytes, "the file cannot be read");
}

void Run() {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    GenerateLibrary(place.library_xml, {.tracks = 1});
    const fs::path file = place.add_folder / "large.mp3";
    WriteLargeFile(file);
    const LoadedLibrary library(place);
    const std::string path = library.MusicPaths().back();
    std::vector<char> buffer(static_cast<std::size_t>(kPiece));
    Series stream;
    Series alone;
    for (int round = -1; round < kRounds; ++round) {
        const double stream_seconds = Seconds([&] { ReadThroughDriver(library, path, buffer); });
        const double alone_seconds = Seconds([&] { ReadAlone(file, buffer); });
        if (round < 0) continue;
        stream.Add(stream_seconds);
        alone.Add(alone_seconds);
    }
    std::cout << "1 GiB in pieces of 64 KiB, speed: stream / read = " << Ratio(alone, stream) << "   "
              << stream.Text(1e3, "ms") << " / " << alone.Text(1e3, "ms") << "\n";
}

}  // namespace

int main() {
    try {
        Run();
    } catch (const std::exception &error) {
        std::cerr << "stream-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
