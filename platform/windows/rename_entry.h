#ifndef PLATFORM_WINDOWS_RENAME_ENTRY_H
#define PLATFORM_WINDOWS_RENAME_ENTRY_H

#include <string>

// Both take native paths and give 0 or an errno value.

// Gives a file, link or folder another path on the same file system. EEXIST if something is there: the system
// decides that in the same step, so nothing is ever replaced.
int RenameWithoutReplacing(const std::string &from, const std::string &to);

// Brings the entries of a folder to the disk.
int SyncFolder(const std::string &folder);

#endif
