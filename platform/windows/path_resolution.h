#ifndef PLATFORM_WINDOWS_PATH_RESOLUTION_H
#define PLATFORM_WINDOWS_PATH_RESOLUTION_H

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

// The two halves of NativePath, for the calls of this folder: nearly every path exists as it is spelled, so a
// call tries that first and lets the folders be searched only when it finds nothing.

struct SpelledPath {
    std::string text;
    size_t root_size = 0;  // what leads to the root or to the drive; it has one spelling alone
};

// The path by its spelling, without a look at the disk.
SpelledPath SpellNativePath(std::string_view windows_path);
SpelledPath SpellNativePath(std::wstring_view windows_path);

// The path with its components as they are on disk, as far as they exist.
std::string ResolveSpelling(const SpelledPath &spelled);

// The part behind the last separator, and the folder before it: "/" for what lies in the root folder.
std::string_view FileNameOf(std::string_view native_path);
std::string FolderOf(std::string_view native_path);

// The result of `call` for the path as spelled, or else, if that gave -1 and ENOENT, as resolved.
template <typename Path, typename Call>
int CallWithNativePath(const Path &windows_path, const Call &call) {
    const SpelledPath spelled = SpellNativePath(windows_path);
    const int result = call(spelled.text);
    if (result != -1 || errno != ENOENT) return result;
    const std::string resolved = ResolveSpelling(spelled);
    errno = ENOENT;
    return resolved == spelled.text ? result : call(resolved);
}

#endif
