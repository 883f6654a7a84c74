#ifndef ARTWORK_TEMPORARY_PATH_H
#define ARTWORK_TEMPORARY_PATH_H

#include <optional>
#include <string>
#include <string_view>

// Where pictures are put below the temporary folder, named after the file that they come from. A location is
// what a stranger may have written: one whose last part is no name of a file has no place there, and neither
// has one that would make the path longer than Windows takes it.

// "TEMP\NAME.jpg" for the picture of a media file.
std::optional<std::wstring> PictureTempPath(std::string_view location);

// "TEMP\NAME", the folder into which a cover of the book is unpacked.
std::optional<std::string> BookTempFolder(std::string_view location);

// The path of an entry of the book's archive in that folder. Empty also if the entry's name would lead out of
// it.
std::optional<std::string> BookTempFile(std::string_view location, std::string_view entry_name);

#endif
