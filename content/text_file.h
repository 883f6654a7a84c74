#ifndef CONTENT_TEXT_FILE_H
#define CONTENT_TEXT_FILE_H

#include <cstdint>
#include <string>

// Reads a whole text document, whatever its encoding, as UTF-8: by its byte order mark, or without one as
// UTF-8 or else in the locale's character set; bytes that are neither stand as they are. UTF-16 ends at the
// first zero. `path` is UTF-8. 0; -1 the file cannot be opened; -2 a damaged byte order mark; -3 nothing
// readable: no text, text that cannot be converted, or more than the limit.
int32_t ReadTextFileAsUtf8(const std::string &path, std::string &text);

#endif
