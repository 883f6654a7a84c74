#ifndef ARTWORK_ARTWORK_FILE_H
#define ARTWORK_ARTWORK_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Files of the artwork cache, "itc" and "itc2". They are walked, not decoded: no picture is read.

// A picture inside such a file.
struct ArtworkImage {
    const char *type;  // "png", "jpg", "bgra" or "argb"
    int32_t width;
    int32_t height;
    int32_t display_width;
    int32_t display_height;
    int32_t size;    // in bytes; the file may end before
    int64_t offset;  // of the first byte in the file
};

// The pictures in the order of the file, without those of unknown formats. Empty if the file cannot be opened
// or is none of the artwork cache. `path` is a Windows path in UTF-8.
std::optional<std::vector<ArtworkImage>> ReadArtworkFile(const std::string &path);

#endif
