#ifndef DRIVER_UNIQUE_FILE_H
#define DRIVER_UNIQUE_FILE_H

#include <optional>
#include <string>

#include "platform/windows/file_handle.h"

// The path itself if nothing of any kind has it, or else the first that is free of those with 1, 2, 3 and so
// on between the path's stem and its extension. Empty if none is free, if the stem has no backslash, or if it
// cannot be told what is there.
std::optional<std::wstring> UniqueFileName(const std::wstring &path);

struct UniqueFile {
    std::wstring path;
    FileHandle handle;  // for binary writing
};

// Makes the file under that name. Never opens one that is there already, whoever makes it meanwhile.
std::optional<UniqueFile> CreateUniqueFile(const std::wstring &path);

#endif
