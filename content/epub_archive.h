#ifndef CONTENT_EPUB_ARCHIVE_H
#define CONTENT_EPUB_ARCHIVE_H

#include <optional>
#include <string>

#include "platform/velmar_path/velmar_path.h"

// Reads a book that is a file, with "\" as separator in its location. Gives the name of the entry that holds
// the cover, in which both separators may stand; empty for a book without a cover and for a file that is no
// archive. The metadata go into the container, unless it is null. Costs one failed open where nothing can be
// read.
std::optional<std::string> ReadEpubArchive(const std::string &location, VelmarAttribute *attributes);

#endif
