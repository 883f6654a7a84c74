#ifndef CONTENT_LOCATION_URL_H
#define CONTENT_LOCATION_URL_H

#include <string>
#include <string_view>

// The path of a file URL: without "file://localhost/" or "file:///" in front, and with its percent escapes
// decoded to the bytes that they spell. Slashes stay slashes. A text that is no file URL is only decoded. Two
// characters behind a
// "%" that are no hexadecimal digits give a byte 0, which ends the path, and so does a "%" at the very end.
std::string LocationUrlToPath(std::string_view url);

// The same in room that is used again: the path lies in `room`, followed by a NUL, until that changes. The
// URL may lie there too.
std::string_view LocationUrlToPath(std::string_view url, std::string &room);

#endif
