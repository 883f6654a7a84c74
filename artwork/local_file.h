#ifndef ARTWORK_LOCAL_FILE_H
#define ARTWORK_LOCAL_FILE_H

#include <cstdint>
#include <string>

#include "driver/library_driver.h"

// Adds a file to the category that its extension names, with what its own tag says: a file that waits to be
// taken into the library, or lies beside it. Books and applications go to their own operations. `path` is
// UTF-8 with backslashes.
//
// 0; -1 if the file cannot be reached, or has no category in the tree, which is logged; -3 if the library
// lists it there already; for books and applications the result of their operation.
int32_t ImportLocalFile(LibraryDriver *driver, const std::string &path);

#endif
