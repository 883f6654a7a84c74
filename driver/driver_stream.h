#ifndef DRIVER_DRIVER_STREAM_H
#define DRIVER_DRIVER_STREAM_H

#include <cstdint>

#include "driver/itunes_driver.h"
#include "platform/windows/file_handle.h"

// An open file, or a range of its bytes. Independent of the tree once it is open.
struct DriverStream {
    LibraryDriver *driver = nullptr;
    FileHandle file;
    int64_t range_offset = 0;  // first byte of the data inside the file; 0: the stream is the whole file
    int64_t range_size = 0;    // bytes, of a range
};

// Reading and seeking of an open stream, with the results of the exports.
int32_t ReadStream(DriverStream &stream, void *buffer, int32_t count);
int32_t WriteStream(DriverStream &stream, const void *buffer, int32_t count);
int32_t SeekStream(DriverStream &stream, int64_t offset, int32_t origin);

#endif
