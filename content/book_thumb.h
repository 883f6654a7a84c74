#ifndef CONTENT_BOOK_THUMB_H
#define CONTENT_BOOK_THUMB_H

#include <optional>
#include <string>

#include "driver/driver_path.h"

enum class BookForm { kFile, kFolder };

// The value of the attribute `format` for an extension with its dot.
const char *BookFormat(const std::string &extension);

// Hangs the node "thumb" under a book. The cover stays where it is until a host asks for the picture; `cover`
// tells where that is.
void AddBookThumb(DriverPath *book, BookForm form, const std::string &location,
                  const std::optional<std::string> &cover);

#endif
