#ifndef CONTENT_EPUB_FOLDER_H
#define CONTENT_EPUB_FOLDER_H

#include <optional>
#include <string>

#include "platform/velmar_path/velmar_path.h"

// Reads a book that is a folder, with "\" as separator in its location. Gives the full path of the cover,
// which need not be there; empty for a book without a cover. The metadata go into the container, unless it is
// null.
std::optional<std::string> ReadEpubFolder(const std::string &location, VelmarAttribute *attributes);

#endif
