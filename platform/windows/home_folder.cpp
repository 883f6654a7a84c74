#include "platform/windows/home_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

std::string HomeFolder() {
    const char *home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') return home;
    passwd record = {};
    passwd *found = nullptr;
    std::array<char, 4096> buffer;
    getpwuid_r(getuid(), &record, buffer.data(), buffer.size(), &found);
    return found == nullptr || found->pw_dir == nullptr ? std::string() : found->pw_dir;
}
