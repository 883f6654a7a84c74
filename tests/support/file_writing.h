#ifndef TESTS_SUPPORT_FILE_WRITING_H
#define TESTS_SUPPORT_FILE_WRITING_H

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

// Writes a whole file, with the folders that lead to it. Throws std::runtime_error.
inline void WriteFile(const std::filesystem::path &path, const std::string &bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

#endif
