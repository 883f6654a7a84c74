#ifndef PLATFORM_WINDOWS_HOME_FOLDER_H
#define PLATFORM_WINDOWS_HOME_FOLDER_H

#include <string>

// The native path of the user's home folder: "HOME", else what the system's user list says. Empty if neither
// tells.
std::string HomeFolder();

#endif
