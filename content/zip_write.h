#ifndef CONTENT_ZIP_WRITE_H
#define CONTENT_ZIP_WRITE_H

#include <minizip/zip.h>

#include <cstdint>
#include <optional>
#include <string>

// Folder trees as archives: deflated entries without dates, attributes or comments. Paths are Windows paths
// in UTF-8.

// Packs what is in a folder into a new archive, which takes the place of an old one once it is complete; a
// failure leaves the old one as it was. A single file in the folder's place becomes an entry "-". 0, or
// negative, which is logged: -2 no archive can be made there; -7 it could not be completed; else as
// AddPathToZip.
int32_t ZipFolder(const std::string &folder, const std::string &zip_path);

// Adds a file, or a folder with everything below it. The top of a tree has no entry of its own: then
// `entry_name` is empty. Anything else than files and folders is passed over without being opened, and so is
// a link that leads back to a folder above it.
//
// A folder's result is that of its last child, and a failed child does not end the walk. 0; -1 no archive; -3
// nothing there; -4 the file cannot be opened; -5 the folder cannot be listed or lies too deep; -6 too many
// entries, which ends the walk; other negative numbers come from minizip.
int32_t AddPathToZip(zipFile zip, const std::optional<std::string> &entry_name, const std::string &path);

#endif
