#ifndef TESTS_CONTENT_MEDIA_TREE_H
#define TESTS_CONTENT_MEDIA_TREE_H

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fixtures/preference_file.h"
#include "fixtures/scoped_environment.h"
#include "fixtures/temp_folder.h"
#include "fixtures/zip_builder.h"
#include "tests/driver/open_library.h"
#include "tests/driver/tree_fixture.h"
#include "tests/support/collected_log.h"

// An archive with one deflated entry for each file, in the order of their names.
inline std::string Archive(const std::map<std::string, std::string> &files) {
    std::vector<ZipBuilderEntry> entries;
    for (const auto &[name, content] : files)
        entries.push_back(DeflatedEntry(name, content));
    return BuildZip(entries);
}

// Keys and values of a node, in their order, as "key=value".
inline std::vector<std::string> AttributeLines(const DriverPath *node) {
    std::vector<std::string> lines;
    for (int32_t i = 0; node != nullptr && i < GetVelmarAttributeSize(node->attributes); ++i) {
        const char *key = nullptr;
        const char *value = nullptr;
        GetVelmarAttributeItem(node->attributes, i, &key, &value);
        lines.push_back(std::string(key) + "=" + value);
    }
    return lines;
}

// A node and all below it: name, numbers and attributes.
inline std::string TreeText(const DriverPath *node, const std::string &name) {
    std::string text = name;
    for (const int32_t number : {node->kind, node->category, node->subcategory})
        text += " " + std::to_string(number);
    for (const std::string &line : AttributeLines(node))
        text += " " + line;
    text += "\n";
    for (int32_t i = 0; i < ChildCount(node); ++i)
        text += TreeText(ChildAt(node, i), name + "/" + ChildNameAt(node, i));
    return text;
}

// A driver without a library, with a media folder and a folder for temporary files of its own.
struct MediaTree : BareTree {
    TempFolder folder;
    CollectedLog log;
    ScopedEnvironment temp{"TEMP", (folder.path() / "temp").string()};

    MediaTree() {
        std::filesystem::create_directory(folder.path() / "temp");
        driver.add_folder = Location("Automatically Add to iTunes");
    }

    // Both take a path below the media folder and give it as a location.
    std::string Write(const std::string &name, std::string_view bytes) const {
        folder.Write("media/" + name, bytes);
        return Location(name);
    }
    std::string Location(const std::string &name) const {
        return BackslashPath(folder.path() / "media" / name);
    }
    DriverPath *AddRoot(const char *name, int32_t category, int32_t subcategory) {
        return CreateCategoryPath(&driver, name, node_kind::kFolder, category, subcategory);
    }
    // The node that a path text names, or null, and the bytes of its stream.
    DriverPath *At(const std::string &path) { return OpenedPath(&driver, path.c_str()).get(); }
    std::string StreamOf(const std::string &path) { return StreamBytes(&driver, path, 100).value_or("none"); }
};

#endif
