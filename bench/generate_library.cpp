#include "fixtures/generated_library.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <string>

namespace {

constexpr const char *kUsage =
    "usage: generate-library FILE.xml|FILE.itl [--tracks N] [--lists L] [--items K] [--seed S]\n";

// Pairs of an option and its number; false for anything else.
bool ReadOptions(int argc, char **argv, GeneratedLibraryOptions &options) {
    const std::map<std::string, int *> targets = {
        {"--tracks", &options.tracks}, {"--lists", &options.lists}, {"--items", &options.items}};
    for (int i = 2; i < argc; i += 2) {
        if (i + 1 == argc) return false;
        const auto target = targets.find(argv[i]);
        const long number = std::strtol(argv[i + 1], nullptr, 10);
        if (number < 0) return false;
        if (target != targets.end()) {
            *target->second = static_cast<int>(number);
        } else if (std::string(argv[i]) == "--seed") {
            options.seed = static_cast<std::uint64_t>(number);
        } else {
            return false;
        }
    }
    return argc > 1 && argv[1][0] != '-';
}

}  // namespace

int main(int argc, char **argv) {
    GeneratedLibraryOptions options;
    if (!ReadOptions(argc, argv, options)) {
        std::cerr << kUsage;
        return 2;
    }
    try {
        GenerateLibrary(argv[1], options);
    } catch (const std::exception &error) {
        std::cerr << "generate-library: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
