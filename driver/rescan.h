#ifndef DRIVER_RESCAN_H
#define DRIVER_RESCAN_H

#include <cstdint>

#include "driver/library_driver.h"

// Takes what earlier scans have found out of the tree, and scans the folders for ringtones, books,
// applications and media files anew. The sum of the results of the scans, which are 0 or negative.
int32_t RescanLocalFolders(LibraryDriver *driver);

#endif
