#ifndef ARTWORK_MEDIA_FOLDER_WALK_H
#define ARTWORK_MEDIA_FOLDER_WALK_H

#include <cstdint>
#include <optional>
#include <string>

#include "driver/library_driver.h"

// Imports every file of a folder, and of the folders below it if `recursive`, into the category that the file
// belongs to. Files that have no place in the tree are passed over. 0; -1 without a folder.
int32_t WalkMediaFolder(LibraryDriver *driver, const std::optional<std::string> &folder, bool recursive);

#endif
