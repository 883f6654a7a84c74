#ifndef DRIVER_COPY_BATCH_H
#define DRIVER_COPY_BATCH_H

#include <cstdint>

#include "driver/itunes_driver.h"

// Copies one file into iTunes and tells the progress callback of the batch. The result of its last call;
// without one, -1 when there is no source, else 0.
int32_t CopyIntoITunes(LibraryDriver *driver, const char *path_text, const CopySourceInfo &source);

#endif
