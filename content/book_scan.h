#ifndef CONTENT_BOOK_SCAN_H
#define CONTENT_BOOK_SCAN_H

#include <cstdint>
#include <string>

#include "driver/library_driver.h"

// Adds the books in the media folder that the library does not list. 0, also where there are none; -1 when
// there is no place in the tree for them.
int32_t ScanBooks(LibraryDriver *driver);

// Adds the books in a folder (UTF-8) and in all folders below it.
void WalkBookFolder(DriverPath *book_category, const std::string &folder);

#endif
