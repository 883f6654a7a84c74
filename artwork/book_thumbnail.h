#ifndef ARTWORK_BOOK_THUMBNAIL_H
#define ARTWORK_BOOK_THUMBNAIL_H

#include <cstdint>

#include "driver/library_driver.h"

// Fills the node "thumb" of an EPUB book with its cover: the file on disk for a book that is a folder, a copy
// in the temporary folder for a packed one. 1 if the node has children already; 0 if it was looked at,
// whether there is a cover or not; -1 if it is no "thumb" node, the book is no EPUB, or its cover is empty.
int32_t LoadBookThumbnail(LibraryDriver *driver, DriverPath *thumb);

#endif
