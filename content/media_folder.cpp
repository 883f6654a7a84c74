#include "content/media_folder.h"

std::optional<std::string> MediaFolder(const LibraryDriver *driver) {
    const size_t end = driver->add_folder ? driver->add_folder->rfind('\\') : std::string::npos;
    if (end == std::string::npos) return std::nullopt;
    return driver->add_folder->substr(0, end);
}
