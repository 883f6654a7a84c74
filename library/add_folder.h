#ifndef LIBRARY_ADD_FOLDER_H
#define LIBRARY_ADD_FOLDER_H

#include <cstdint>

#include "driver/library_driver.h"

// Finds the folder "Automatically Add to iTunes" in the media folder and stores its path in `add_folder`.
// Where several folders pass for it, their contents are merged into the one created last, and the others are
// removed. 0, or -1 when there is none.
int32_t FindAddFolder(LibraryDriver *driver);

#endif
