#ifndef LIBRARY_CATEGORY_ROOT_H
#define LIBRARY_CATEGORY_ROOT_H

#include <cstdint>

#include "driver/library_driver.h"

// The category root that lists of a kind make, such as "movie"; made under its usual name if no list has. The
// kind is one whose row names the root. Null when there is no "library".
DriverPath *EnsureCategoryRoot(LibraryDriver *driver, int32_t distinguished_kind);

#endif
