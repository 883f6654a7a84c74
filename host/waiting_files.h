#ifndef HOST_WAITING_FILES_H
#define HOST_WAITING_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/library_session.h"

namespace velmarhost {

// A file that waits in the add folder for iTunes, as the tree shows it.
struct WaitingFile {
    std::string name;             // in that folder
    std::optional<int64_t> size;  // as the driver tells it: the lower 32 bits are right
    std::string path;             // in the tree; empty where an entry of the same name hides it
    std::string location;         // as the user knows it
};

// In the order of the tree. Looks at entries of folder scans only, not at the tracks of the library.
std::vector<WaitingFile> ListWaitingFiles(const LibrarySession &session);

}  // namespace velmarhost

#endif
