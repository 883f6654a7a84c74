#ifndef DRIVER_STREAM_SOURCE_H
#define DRIVER_STREAM_SOURCE_H

#include <cstdint>
#include <optional>
#include <string>

#include "driver/driver_path.h"

// The local file behind a path.
struct StreamSource {
    std::string file;  // UTF-8
    int64_t offset = 0;
    int64_t size = 0;
    bool is_folder = false;
};

// Reads it off the path's attributes; an application's icon is fetched into the temporary folder first.
// Empty, after a line in the log that names `path_text`, when the path has no file.
std::optional<StreamSource> FindStreamSource(DriverPath *path, const char *path_text);

// Packs a folder into an archive of its name in the temporary folder, and gives that path; empty when that
// fails.
std::optional<std::string> PackFolder(const std::string &folder);

#endif
