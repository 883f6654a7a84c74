#ifndef ARTWORK_FILE_ATTRIBUTES_H
#define ARTWORK_FILE_ATTRIBUTES_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

// What a folder scan tells of a file. Paths are Windows paths in UTF-8.

// Adds `st_size`, unless the file cannot be looked at or is 2 GB or more.
void AddFileSize(DriverPath *entry, const std::string &path);

// Adds `duration`.
void AddDuration(DriverPath *entry, int64_t milliseconds);

// True for a file that can be read to its end, and so not for a pipe or a device.
bool IsPlainFile(const std::string &path);

#endif
