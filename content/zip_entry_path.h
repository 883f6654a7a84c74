#ifndef CONTENT_ZIP_ENTRY_PATH_H
#define CONTENT_ZIP_ENTRY_PATH_H

#include <optional>
#include <string>
#include <string_view>

// Where an entry of an archive is put below a target folder. A name is what a stranger wrote: one that would
// lead out of the folder has no place at all.

// The native path for an entry's name, in which both separators count and a final one, that of a folder, is
// left out. `folder` is a native path. Empty if the name begins with a separator, has a component ".." or one
// that Windows could not hold as a name (a drive is one of these), or leads through a symbolic link that lies
// below the folder.
std::optional<std::string> ZipEntryTarget(const std::string &folder, std::string_view name);

#endif
