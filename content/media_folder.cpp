#include "content/media_folder.h"

std::optional<std::string> MediaFolder(const LibraryDriver *driver) {
    if (!driver->add_folder) return std::nullopt;
    const size_t separator = driver->add_folder->rfind('\\');
    if (separator == std::string::npos) return std::nullopt;
    return driver->add_folder->substr(0, separator);
}
