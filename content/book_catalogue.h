#ifndef CONTENT_BOOK_CATALOGUE_H
#define CONTENT_BOOK_CATALOGUE_H

#include <cstdint>
#include <optional>
#include <string>

#include "content/book_catalogue_setting.h"
#include "driver/driver_path.h"

// The property list "Books.plist": one entry for each book, with the path of its file or folder. It is read
// at each use and never held in memory. Only to be called while the catalogue is enabled. Paths are UTF-8.

std::string GetBookCataloguePath();

// Adds the books that the catalogue names to the category of books. 0, also without a list of books; -2 when
// the file cannot be read or is no dictionary.
int32_t LoadBookCatalogue(DriverPath *book_category);

// Enters a book that was copied in: an EPUB, which is unpacked into a folder of the catalogue, or for any
// other type the file as it is, which is deleted if the catalogue has its bytes already. `media_type` is that
// of itdb_get_media_type. 0 when an entry was added; -1 no catalogue that can be read; -2 it has no list of
// books; -3 the file cannot be read; -4 it is no archive; -5 the book is there already. The catalogue is
// replaced as a whole or stays as it was.
int32_t AddToBookCatalogue(const std::string &path, int32_t media_type);

// The MD5 of a file's bytes as 32 capital digits; empty if it cannot be opened.
std::optional<std::string> ComputeBookDigest(const std::string &path);

#endif
