#ifndef LIBRARY_REFRESH_H
#define LIBRARY_REFRESH_H

#include <cstdint>

#include "driver/library_driver.h"

// Reads the library XML file again and takes in the tracks that the tree does not know yet, under "music" or
// "movie". Known tracks, tracks that are gone and all lists stay as they are. 0, or -1 when the file cannot
// be read.
int32_t RefreshLibrary(LibraryDriver *driver);

#endif
