#ifndef CONTENT_BOOK_H
#define CONTENT_BOOK_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

// Adds a book that a scan has found to the category of books: an EPUB, as a file or as a folder, or a PDF.
// `location` is UTF-8 with "\" as separator. The new node is stored in `book`, unless that is null, and is
// the category's. A book whose documents are damaged is added with what its file tells. 0; -1 the location is
// known already; -2 it is no book by its extension; -3 its status cannot be read.
int32_t AddLocalBook(DriverPath *book_category, const std::string &location, DriverPath **book = nullptr);

#endif
