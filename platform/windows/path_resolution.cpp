#include "platform/windows/path_resolution.h"

#include <pwd.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <vector>

#include "platform/windows/file_descriptor.h"
#include "platform/windows/file_names.h"
#include "platform/windows/home_folder.h"
#include "platform/windows/native_path.h"
#include "platform/windows/text.h"

namespace {

constexpr std::string_view kSeparators = "/\\";

bool HasDrive(std::string_view path) {
    const char lower = static_cast<char>(path.empty() ? '\0' : path[0] | 0x20);
    return path.size() >= 2 && path[1] == ':' && lower >= 'a' && lower <= 'z';
}

std::string DriveFolder(char letter) {
    const char *prefix = std::getenv("WINEPREFIX");
    const std::string root = prefix != nullptr && *prefix != '\0' ? prefix : HomeFolder() + "/.wine";
    return root + "/dosdevices/" + static_cast<char>(letter | 0x20) + ':';
}

std::vector<std::string_view> SplitPath(std::string_view path) {
    std::vector<std::string_view> components;
    for (size_t start = 0; start < path.size();) {
        const size_t end = std::min(path.find_first_of(kSeparators, start), path.size());
        if (end > start) components.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return components;
}

// A drive is a root of its own, whatever folder stands for it.
std::vector<std::string_view> WithoutDots(const std::vector<std::string_view> &components) {
    std::vector<std::string_view> result;
    for (const std::string_view component : components) {
        if (component == ".." && !result.empty()) result.pop_back();
        if (component != ".." && component != ".") result.push_back(component);
    }
    return result;
}

void AppendComponent(std::string &path, std::string_view component) {
    if (!path.ends_with('/')) path += '/';
    path += component;
}

bool IsThere(const std::string &native_path) {
    struct stat status;
    return lstat(native_path.c_str(), &status) == 0;
}

std::optional<std::string> FindNearestName(const std::string &folder, std::string_view wanted) {
    const Directory directory(opendir(folder.c_str()));
    if (!directory) return std::nullopt;
    NearestName nearest(wanted);
    while (const dirent *entry = readdir(directory.get()))
        nearest.Offer(entry->d_name);
    return nearest.best();
}

}  // namespace

SpelledPath SpellNativePath(std::string_view windows_path) {
    windows_path = windows_path.substr(0, windows_path.find('\0'));
    if (windows_path.empty()) return {};
    const bool has_drive = HasDrive(windows_path);
    SpelledPath spelled;
    spelled.text = has_drive ? DriveFolder(windows_path[0]) : "/";
    spelled.root_size = spelled.text.size();
    const std::vector<std::string_view> components = SplitPath(windows_path.substr(has_drive ? 2 : 0));
    for (const std::string_view component : has_drive ? WithoutDots(components) : components) {
        AppendComponent(spelled.text, component);
    }
    return spelled;
}

SpelledPath SpellNativePath(std::wstring_view windows_path) {
    return SpellNativePath(WideToUtf8(windows_path));
}

std::string ResolveSpelling(const SpelledPath &spelled) {
    // The system takes no longer path either, and so does not have to be asked component by component.
    if (spelled.text.size() >= PATH_MAX || IsThere(spelled.text)) return spelled.text;
    std::string resolved = spelled.text.substr(0, spelled.root_size);
    bool found = true;
    for (const std::string_view component :
         SplitPath(std::string_view(spelled.text).substr(spelled.root_size))) {
        const std::string folder = resolved;
        AppendComponent(resolved, component);
        if (!found || IsThere(resolved)) continue;
        const std::optional<std::string> name = FindNearestName(folder, component);
        found = name.has_value();
        if (!found) continue;
        resolved = folder;
        AppendComponent(resolved, *name);
    }
    return resolved;
}

std::string_view FileNameOf(std::string_view native_path) {
    return native_path.substr(native_path.find_last_of('/') + 1);
}

std::string FolderOf(std::string_view native_path) {
    const size_t separator = native_path.find_last_of('/');
    if (separator == std::string_view::npos) return ".";
    return std::string(native_path.substr(0, std::max<size_t>(separator, 1)));
}

std::string NativePath(std::string_view windows_path) {
    return ResolveSpelling(SpellNativePath(windows_path));
}

std::string NativePath(std::wstring_view windows_path) {
    return NativePath(WideToUtf8(windows_path));
}
