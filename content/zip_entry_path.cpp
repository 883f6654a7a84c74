#include "content/zip_entry_path.h"

#include <glib.h>

#include <vector>

#include "content/glib_owner.h"
#include "platform/windows/native_path.h"

namespace {

constexpr std::string_view kSeparators = "\\/";

using Components = std::vector<std::string>;

// Windows drops dots and spaces at the end of a name, so that ".. " would lead upwards there.
bool IsSafeComponent(const std::string &component) {
    return component.find_first_not_of(". ") != std::string::npos && IsWindowsFileName(component);
}

// Doubled separators and "." lead nowhere and are dropped.
std::optional<Components> SplitEntryName(std::string_view name) {
    if (name.find_first_of(kSeparators) == 0) return std::nullopt;
    Components components;
    while (!name.empty()) {
        const size_t end = name.find_first_of(kSeparators);
        std::string component(name.substr(0, end));
        name.remove_prefix(end == std::string_view::npos ? name.size() : end + 1);
        if (component.empty() || component == ".") continue;
        if (!IsSafeComponent(component)) return std::nullopt;
        components.push_back(std::move(component));
    }
    return components;
}

std::string Join(const std::string &folder, const std::string &name) {
    return GTextOwner(g_build_filename(folder.c_str(), name.c_str(), nullptr)).get();
}

}  // namespace

std::optional<std::string> ZipEntryTarget(const std::string &folder, std::string_view name) {
    const std::optional<Components> components = SplitEntryName(name);
    if (!components) return std::nullopt;
    std::string path = folder;
    for (const std::string &component : *components) {
        // The folder itself may be reached through links, and a link at the end is replaced, not followed.
        if (path != folder && g_file_test(path.c_str(), G_FILE_TEST_IS_SYMLINK) != FALSE) return std::nullopt;
        path = Join(path, component);
    }
    return path;
}
