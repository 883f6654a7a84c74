#ifndef CONTENT_FILE_STAMP_H
#define CONTENT_FILE_STAMP_H

#include <cstdint>
#include <optional>
#include <string>

#include "driver/scanned_files.h"

// True when something of any kind is at a path (UTF-8), be it a link that leads nowhere.
bool PathExists(const std::string &path);

// The bytes of what a path (UTF-8) leads to. Empty where nothing is.
std::optional<int64_t> SizeOfFile(const std::string &path);

// Of what a path (UTF-8) leads to. Empty where nothing is, and for a file that was changed so lately that
// another change might leave its stamp as it is.
std::optional<FileStamp> StampOfFile(const std::string &path);

#endif
