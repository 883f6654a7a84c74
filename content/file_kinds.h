#ifndef CONTENT_FILE_KINDS_H
#define CONTENT_FILE_KINDS_H

#include <cstdint>
#include <optional>
#include <string_view>

// Where files of one kind stand in the tree: the numbers of a path. Some kinds, such as pictures, have
// numbers but no category root, and so no place in the tree.
struct FileCategory {
    int32_t category;
    int32_t subcategory;
    bool operator==(const FileCategory &) const = default;
};

// Codes of itdb_get_media_type that callers ask for.
inline constexpr int32_t kMediaTypePdf = 6;
inline constexpr int32_t kMediaTypeEpub = 7;
inline constexpr int32_t kNoMediaType = -1;

// The kind of a file by its extension, whatever the letter case; empty for an extension of no known kind.
std::optional<FileCategory> GetFileCategory(std::string_view path);

// What iTunes will take the file for, by its extension: a code, or kNoMediaType. A missing path, or one
// without a dot, is a fault of the caller, and a GLib warning tells of it.
int32_t itdb_get_media_type(std::optional<std::string_view> path);

// The text behind the last dot of the whole path, folders included; empty without a dot. The result points
// into `path`. A missing path gives a GLib warning too.
std::optional<std::string_view> itdb_get_ext_pos(std::optional<std::string_view> path);

#endif
