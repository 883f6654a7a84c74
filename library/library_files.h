#ifndef LIBRARY_LIBRARY_FILES_H
#define LIBRARY_LIBRARY_FILES_H

#include <cstdint>

#include "driver/library_driver.h"

// Finds the library of the current user and opens it: the XML file, or "iTunes Library.itl" when that cannot
// be read. Sets the paths and the source of the driver. 0, or -999 when neither can be read.
int32_t LoadLibraryFiles(LibraryDriver *driver);

#endif
