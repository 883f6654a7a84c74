// Copying one large file into iTunes, against `cp` of the same file in the same folder, in turns; and ten
// thousand copies of one name. Needs room for two copies of the file.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "fixtures/generated_library.h"
#include "fixtures/temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 5;
constexpr int64_t kMegabyte = 1 << 20;
constexpr int64_t kFileMegabytes = 1024;
constexpr int32_t kLargeChunk = kMegabyte;
constexpr int32_t kSmallChunk = 1024;
constexpr int kNames = 10000;
constexpr int kTimedNames = 100;

struct Bench {
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    const fs::path file = home.path() / "large.m4v";
    LibraryDriver *driver = nullptr;

    Bench() {
        GenerateLibrary(place.library_xml, {.tracks = 1});
        const ScopedEnvironmentValues environment(place.environment);
        Require(InitializeDriverPath(nullptr, nullptr, 0, &driver) == 0, "a library cannot be loaded");
        std::ofstream out(file, std::ios::binary);
        std::string piece(static_cast<std::size_t>(kMegabyte), '\0');
        for (int64_t i = 0; i < kFileMegabytes; ++i) {
            for (std::size_t at = 0; at < piece.size(); ++at)
                piece[at] = static_cast<char>(at * 7 + static_cast<std::size_t>(i));
            out << piece;
        }
        Require(static_cast<bool>(out.flush()), "the file cannot be written");
    }
    ~Bench() { UninitializeDriverPath(driver); }
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

    fs::path Target() const { return place.add_folder / "large.m4v"; }

    // Seconds; the copy is gone afterwards.
    double Time(const std::function<void()> &work) const {
        const double seconds = Seconds(work);
        Require(fs::file_size(Target()) == fs::file_size(file), "the copy is not complete");
        fs::remove(Target());
        return seconds;
    }

    void Copy(int32_t chunk) const {
        int64_t calls = 0;
        const auto count = [](const CopyProgress *, void *context) {
            ++*static_cast<int64_t *>(context);
            return 0;
        };
        CopySourceInfo source = {};
        source.source_type = 1;
        source.source_path = file.c_str();
        source.source_size = kFileMegabytes * kMegabyte;
        StartPathCopy(driver, 0, count, &calls, chunk);
        Require(CopyDriverPath(driver, 0, "library/movie", &source) == 0, "a copy has failed");
        Require(calls == source.source_size / chunk + 2, "a call is missing");
    }

    void CopyWithCp() const {
        const std::string command = "cp '" + file.string() + "' '" + Target().string() + "'";
        Require(std::system(command.c_str()) == 0, "cp has failed");
    }
};

void MeasureLargeFile(const Bench &bench) {
    Series cp;
    Series large;
    Series small;
    for (int round = -1; round < kRounds; ++round) {
        const double cp_seconds = bench.Time([&] { bench.CopyWithCp(); });
        const double large_seconds = bench.Time([&] { bench.Copy(kLargeChunk); });
        const double small_seconds = bench.Time([&] { bench.Copy(kSmallChunk); });
        if (round < 0) continue;
        cp.Add(cp_seconds);
        large.Add(large_seconds);
        small.Add(small_seconds);
    }
    std::cout << "1 GiB, chunks of 1 MiB / cp = " << Ratio(large, cp) << "   " << large.Text(1, "s") << " / "
              << cp.Text(1, "s") << "\n"
              << "1 GiB, chunks of 1 KiB / cp = " << Ratio(small, cp) << "   " << small.Text(1, "s") << "\n";
}

void MeasureNames(const Bench &bench) {
    char byte = 'b';
    CopySourceInfo source = {};
    source.source_type = 2;
    source.source_handle = &byte;
    source.source_size = 1;
    StartPathCopy(bench.driver, 0, nullptr, nullptr, 1);
    const auto copy = [&](int count) {
        for (int i = 0; i < count; ++i)
            Require(CopyDriverPath(bench.driver, 0, "", &source) == 0, "a copy has failed");
    };
    Series first;
    Series last;
    first.Add(Seconds([&] { copy(kTimedNames); }) / kTimedNames);
    copy(kNames - 2 * kTimedNames);
    last.Add(Seconds([&] { copy(kTimedNames); }) / kTimedNames);
    const fs::directory_iterator files(bench.place.add_folder);
    Require(std::distance(begin(files), end(files)) == kNames, "copies have come under one name");
    std::cout << kNames << " copies of one name: last / first = " << Ratio(last, first) << "   "
              << last.Text(1e3, "ms") << " / " << first.Text(1e3, "ms") << ", means of " << kTimedNames
              << "\n";
}

}  // namespace

int main() {
    try {
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
        const Bench bench;
        MeasureLargeFile(bench);
        MeasureNames(bench);
    } catch (const std::exception &error) {
        std::cerr << "copy-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
