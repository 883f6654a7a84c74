#ifndef ARTWORK_RINGTONES_H
#define ARTWORK_RINGTONES_H

#include <cstdint>
#include <string>

#include "driver/library_driver.h"

// Lists the files "*.m4r" of a folder under the media folder as children of the category root "ringtone",
// which is made if need be. Subfolders are not entered. 0; -1 if there is no such root.
int32_t ScanToneFolder(LibraryDriver *driver, const std::string &folder);

#endif
