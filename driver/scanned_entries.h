#ifndef DRIVER_SCANNED_ENTRIES_H
#define DRIVER_SCANNED_ENTRIES_H

#include <cstdint>

#include "driver/driver_path.h"

// What scans of folders put into the tree, beside what the library lists: the nodes with `from_folder_scan`.

// Makes a node of a scan, which hangs nowhere yet. Throws std::bad_alloc.
DriverPath *CreateScannedEntry(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory);

// The category root under "library" with this subcategory, made under the name if there is none. Null when
// there is no "library".
DriverPath *EnsureCategoryPath(LibraryDriver *driver, const char *name, int32_t category,
                               int32_t subcategory);

// The next number for a scanned file, which no other one has until the entries are removed.
int32_t TakeScannedId(LibraryDriver *driver);

// Takes all of them out of the tree and lets the numbers begin anew. What a host has open stays until its
// last close.
void RemoveScannedEntries(LibraryDriver *driver);

#endif
