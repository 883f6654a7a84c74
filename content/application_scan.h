#ifndef CONTENT_APPLICATION_SCAN_H
#define CONTENT_APPLICATION_SCAN_H

#include <cstdint>

#include "driver/library_driver.h"

int32_t ScanApps(LibraryDriver *driver);

#endif
