#ifndef CONTENT_BOOK_SCAN_H
#define CONTENT_BOOK_SCAN_H

#include <cstdint>

#include "driver/library_driver.h"

int32_t ScanBooks(LibraryDriver *driver);

#endif
