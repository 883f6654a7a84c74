#ifndef TESTS_ARTWORK_THUMB_TREE_H
#define TESTS_ARTWORK_THUMB_TREE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "driver/scanned_entries.h"
#include "tests/driver/tree_fixture.h"
#include "tests/support/preference_file.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

// A bare library with a root for music, a folder for files, and one for temporary files. Locations have
// backslashes.
struct ThumbTree : BareTree {
    TempFolder files;
    TempFolder temp;
    ScopedEnvironment environment{"TEMP", temp.path().string()};
    DriverPath *music = EnsureCategoryPath(&driver, "music", node_category::kAudio, node_subcategory::kMusic);

    // A "thumb" node that hangs below a file node, in music by default.
    DriverPath *AddThumb(const std::string &file_name, const std::string &location,
                         DriverPath *category_root = nullptr) {
        DriverPath *root = category_root != nullptr ? category_root : music;
        DriverPath *file = CreateDriverPath(&driver, node_kind::kFile, root->category, root->subcategory);
        AppendChild(root, file_name.c_str(), file);
        DriverPath *thumb = CreateDriverPath(&driver, node_kind::kFolder, node_category::kThumbnail,
                                             node_subcategory::kThumbOfTrack);
        if (!location.empty()) AddAttribute(thumb, "location", location.c_str());
        AppendChild(file, "thumb", thumb);
        return thumb;
    }
    std::string Location(const std::string &name) const { return BackslashPath(files.path() / name); }
    std::string Write(const std::string &name, const std::string &bytes) const {
        files.Write(name, bytes);
        return Location(name);
    }
    // The node that a path text names, or null.
    DriverPath *At(const std::string &path) {
        DriverPath *node = nullptr;
        if (OpenDriverPath(&driver, 0, path.c_str(), &node) == 0) CloseDriverPath(node);
        return node;
    }
    static std::string Text(const DriverPath *path, const char *key) {
        return std::string(FindAttribute(path, key).value_or("(none)"));
    }
    static std::vector<std::string> Names(const DriverPath *path) {
        std::vector<std::string> names;
        for (int32_t i = 0; i < GetVelmarArraySize(path->names); ++i)
            names.emplace_back(ChildNameAt(path, i));
        return names;
    }
    std::string StreamOf(const std::string &path) {
        DriverStream *stream = nullptr;
        if (OpenDriverStream(&driver, 0, path.c_str(), &stream) != 0) return "(does not open)";
        std::string bytes(1 << 20, '\0');
        const int32_t count = ReadDriverStream(stream, bytes.data(), static_cast<int32_t>(bytes.size()));
        CloseDriverStream(stream);
        bytes.resize(static_cast<size_t>(count));
        return bytes;
    }
};

#endif
