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
    static std::vector<std::string> Names(const DriverPath *path) {
        std::vector<std::string> names;
        for (int32_t i = 0; i < ChildCount(path); ++i)
            names.emplace_back(i < GetVelmarArraySize(path->names) ? ChildNameAt(path, i) : "(none)");
        return names;
    }
};

#endif
