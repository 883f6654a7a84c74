#ifndef DRIVER_SCANNED_ENTRIES_H
#define DRIVER_SCANNED_ENTRIES_H

#include <cstdint>

#include <string>

#include "driver/driver_path.h"
#include "driver/scanned_files.h"

// What scans of folders put into the tree, beside what the library lists: the nodes with `from_folder_scan`.

// Makes a node of a scan, which hangs nowhere yet. Throws std::bad_alloc.
LoosePath CreateScannedEntry(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory);

// The category root under "library" with this subcategory, made under the name if there is none. Null when
// there is no "library".
DriverPath *EnsureCategoryPath(LibraryDriver *driver, const char *name, int32_t category,
                               int32_t subcategory);

// The next number for a scanned file, which no other one has until the entries are removed.
int32_t TakeScannedId(LibraryDriver *driver);

// Takes all of them out of the tree and lets the numbers begin anew. What a host has open stays until its
// last close. Entries of files that are kept, and that no host has open, wait for the scan that follows.
void RemoveScannedEntries(LibraryDriver *driver);

// Keeps what was read of a file for the scans to come, under its stamp. The entry hangs in the tree.
void KeepEntry(DriverPath *entry, const std::string &location, const FileStamp &stamp);

// The entry of a file that waits since RemoveScannedEntries, if the file has not changed since it was read.
// It is kept no longer. Null otherwise.
LoosePath TakeKeptEntry(LibraryDriver *driver, const std::string &location, const FileStamp &stamp);

// Releases the entries that no scan has taken: their files are gone or have changed.
void ReleaseKeptEntries(LibraryDriver *driver);

#endif
