#ifndef HOST_ADDED_NAMES_H
#define HOST_ADDED_NAMES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/waiting_files.h"

namespace velmarhost {

// A file that was copied, under the name that was asked for.
struct CopiedFile {
    std::string name;
    uint64_t bytes;
};

// Which of the waiting files each copy is; the driver does not tell. Where a name was taken the driver puts
// the first free number behind its stem: "song.mp3" becomes "song1.mp3". `copied` is in the order of the
// copies, `before` and `after` are the files of the folder at both ends of the batch. The results are indexes
// into `after`; empty for a file that does not show, as iTunes has taken it away.
std::vector<std::optional<std::size_t>> FindCopies(const std::vector<CopiedFile> &copied,
                                                   const std::vector<WaitingFile> &before,
                                                   const std::vector<WaitingFile> &after);

}  // namespace velmarhost

#endif
