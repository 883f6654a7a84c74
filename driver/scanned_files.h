#ifndef DRIVER_SCANNED_FILES_H
#define DRIVER_SCANNED_FILES_H

#include <cstdint>
#include <string>
#include <unordered_map>

#include "driver/driver_path.h"

// What tells whether a file is still the one that was read. Times are seconds since 1970.
struct FileStamp {
    int64_t size;
    int64_t modified;
    int64_t changed;  // of its status too; the creation on Windows

    bool operator==(const FileStamp &) const = default;
};

// An entry of a scan whose file need not be read again while it has this stamp.
struct ScannedFile {
    DriverPath *entry;
    FileStamp stamp;
    LoosePath
        waiting;  // the entry between the removal of all of them and the scan that follows; null otherwise
};

// By location.
using ScannedFiles = std::unordered_map<std::string, ScannedFile>;

#endif
