#ifndef TESTS_SUPPORT_FOLDER_CONTENTS_H
#define TESTS_SUPPORT_FOLDER_CONTENTS_H

#include <filesystem>
#include <map>
#include <string>

#include "fixtures/temp_folder.h"

// Everything below a folder by its relative path: the bytes of a file, "-> target" of a link, "/" of a
// folder.
inline std::map<std::string, std::string> FolderContents(const std::filesystem::path &folder) {
    std::map<std::string, std::string> contents;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::string &value = contents[entry.path().lexically_relative(folder).string()];
        if (entry.is_symlink()) {
            value = "-> " + std::filesystem::read_symlink(entry.path()).string();
        } else {
            value = entry.is_directory() ? "/" : ReadWholeFile(entry.path());
        }
    }
    return contents;
}

#endif
