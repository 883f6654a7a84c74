// Runs a fuzz target over the empty input, its own seeds, and every file of the given folders:
//
//   NAME_replay [--write-seeds FOLDER] [FOLDER | FILE] ...
//
// With --write-seeds the seeds are only written, for libFuzzer to begin with. A folder that is not there has
// no files. A fault ends the process; its input is the last that was named.
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "fixtures/file_writing.h"
#include "fixtures/temp_folder.h"
#include "fuzz/fuzz_target.h"

namespace fs = std::filesystem;

// Mutators are compiled along, but nothing is mutated here.
extern "C" size_t LLVMFuzzerMutate(uint8_t * /*bytes*/, size_t size, size_t /*most*/) {
    return size;
}

namespace {

void Run(const std::string &name, const std::string &input) {
    std::cout << name << std::endl;
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
}

std::vector<fs::path> Files(const fs::path &place) {
    if (!fs::exists(place)) return {};
    if (!fs::is_directory(place)) return {place};
    std::vector<fs::path> files;
    for (const fs::directory_entry &entry : fs::directory_iterator(place)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void WriteSeeds(const fs::path &folder) {
    const std::vector<std::string> seeds = FuzzSeeds();
    for (size_t i = 0; i < seeds.size(); ++i)
        WriteFile(folder / ("seed" + std::to_string(i)), seeds[i]);
}

void RunAll(const std::vector<fs::path> &places) {
    Run("(empty)", "");
    const std::vector<std::string> seeds = FuzzSeeds();
    for (size_t i = 0; i < seeds.size(); ++i)
        Run("seed" + std::to_string(i), seeds[i]);
    for (const fs::path &place : places) {
        for (const fs::path &file : Files(place))
            Run(file.string(), ReadWholeFile(file));
    }
}

}  // namespace

int main(int argc, char **argv) {
    try {
        if (argc == 3 && std::string_view(argv[1]) == "--write-seeds") {
            WriteSeeds(argv[2]);
        } else {
            RunAll({argv + 1, argv + argc});
        }
    } catch (const std::exception &error) {
        std::cerr << argv[0] << ": " << error.what() << "\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
