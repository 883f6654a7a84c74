#ifndef TESTS_ARTWORK_THUMB_TREE_H
#define TESTS_ARTWORK_THUMB_TREE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "artwork/thumb_node.h"
#include "driver/scanned_entries.h"
#include "tests/content/media_tree.h"

// A media folder with a root for music.
struct ThumbTree : MediaTree {
    DriverPath *music = EnsureCategoryPath(&driver, "music", node_category::kAudio, node_subcategory::kMusic);
    std::filesystem::path media = folder.path() / "media";
    std::filesystem::path temp_folder = folder.path() / "temp";

    // A "thumb" node below a file node, in music by default.
    DriverPath *AddThumb(const std::string &file_name, const std::string &location,
                         DriverPath *root = nullptr) {
        if (root == nullptr) root = music;
        DriverPath *file =
            AppendChild(root, file_name.c_str(),
                        CreateDriverPath(&driver, node_kind::kFile, root->category, root->subcategory));
        return AddThumbNode(file, node_subcategory::kThumbOfTrack, location.c_str());
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
        for (int32_t i = 0; i < ChildCount(path); ++i)
            names.emplace_back(i < GetVelmarArraySize(path->names) ? ChildNameAt(path, i) : "(none)");
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
