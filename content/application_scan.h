#ifndef CONTENT_APPLICATION_SCAN_H
#define CONTENT_APPLICATION_SCAN_H

#include <cstdint>

#include "driver/library_driver.h"

// Adds the applications in the media folder that the library does not list. 0, also where there are none; -1
// when there is no place in the tree for them.
int32_t ScanApps(LibraryDriver *driver);

#endif
