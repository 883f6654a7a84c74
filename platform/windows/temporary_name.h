#ifndef PLATFORM_WINDOWS_TEMPORARY_NAME_H
#define PLATFORM_WINDOWS_TEMPORARY_NAME_H

#include <string>

// A path in a native folder that no other process or thread comes upon, for something that gets its real name
// later.
std::string TemporaryPathIn(const std::string &folder);

#endif
