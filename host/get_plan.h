#ifndef HOST_GET_PLAN_H
#define HOST_GET_PLAN_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/library_session.h"
#include "host/options.h"
#include "host/tree_walk.h"

namespace velmarhost {

// One file to get.
struct PlannedFile {
    std::string path;              // in the tree
    std::size_t folder;            // index in the plan's folders
    std::string name;              // in that folder
    std::string cover;             // the name of its picture without extension; empty when none is wanted
    std::string location;          // as the library tells it; empty when it knows of no file
    std::optional<uint64_t> size;  // as the library tells it
    // Seconds. The driver takes the library's universal time for local time, so in other zones this is off by
    // the zone's distance. The host cannot know whether a library has that shift and hands the number on as
    // it comes.
    std::optional<int64_t> modified;
};

// What a cover's file can end in.
inline constexpr std::array<std::string_view, 4> kCoverExtensions = {".jpg", ".png", ".gif", ".bmp"};

struct PassedOver {
    std::string path;
    Reach reason;
};

struct GetPlan {
    std::vector<std::filesystem::path> folders;  // each behind the one it lies in
    std::vector<PlannedFile> files;
    std::vector<PassedOver> passed_over;
    uint64_t total_bytes = 0;  // of the files whose size is known
};

// Walks the subtrees and gives every file its name on disk. A file that a list holds twice is planned once; a
// file in two lists is planned for each. Thumbnails are no part
// of it, but with --with-artwork names are kept free for them; files have the same names with and without it.
// Throws NoSuchPath.
GetPlan PlanGet(const LibrarySession &session, const Options &options);

}  // namespace velmarhost

#endif
