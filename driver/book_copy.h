#ifndef DRIVER_BOOK_COPY_H
#define DRIVER_BOOK_COPY_H

#include <optional>
#include <string>

#include "driver/itunes_driver.h"

// What the book catalogue changes about a copy. Nothing as long as it is switched off.

// The folder that a copy to this place of the tree goes to; empty for the usual one.
std::optional<std::string> BookCopyFolder(const char *path_text, const CopySourceInfo &source);

// Enters the file of a copy (UTF-8) if it is a book.
void CatalogueCopy(const char *path_text, const CopySourceInfo &source, const std::string &file);

#endif
