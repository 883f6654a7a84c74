#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

#include "tests/support/sample_library.h"

namespace {

// In single quotes, so that a shell takes every character as it is.
std::string ShellQuoted(const std::string &text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

int Run(const std::filesystem::path &folder, PathStyle style) {
    const LibraryPlace place = MakeSampleLibrary(std::filesystem::absolute(folder), style);
    for (const auto &[name, value] : place.environment) {
        std::cout << "export " << name << "=" << ShellQuoted(value) << "\n";
    }
    return 0;
}

}  // namespace

int main(int argc, char **argv) {
    const bool windows = argc == 3 && std::string_view(argv[1]) == "--windows-paths";
    if (argc != 2 && !windows) {
        std::cerr << "usage: make-sample-library [--windows-paths] DIR\n"
                     "Makes a small iTunes library in DIR and prints the environment in which the driver "
                     "finds it.\n";
        return 2;
    }
    try {
        return Run(argv[argc - 1], windows ? PathStyle::kWindows : PathStyle::kNative);
    } catch (const std::exception &error) {
        std::cerr << "make-sample-library: " << error.what() << "\n";
        return 1;
    }
}
