#ifndef CONTENT_MEDIA_FOLDER_H
#define CONTENT_MEDIA_FOLDER_H

#include <optional>
#include <string>

#include "driver/library_driver.h"

// The folder that holds books, applications and the other media, in UTF-8 and without a backslash at its end:
// the one that the folder "Automatically Add to iTunes" lies in. Empty if that is not known.
std::optional<std::string> MediaFolder(const LibraryDriver *driver);

#endif
