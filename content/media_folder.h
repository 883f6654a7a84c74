#ifndef CONTENT_MEDIA_FOLDER_H
#define CONTENT_MEDIA_FOLDER_H

#include <optional>
#include <string>

#include "driver/library_driver.h"

// The folder that holds the folder which files are added to: `add_folder` up to its last backslash. Empty
// where no such folder has been found.
std::optional<std::string> MediaFolder(const LibraryDriver *driver);

#endif
