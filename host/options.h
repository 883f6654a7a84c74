#ifndef HOST_OPTIONS_H
#define HOST_OPTIONS_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/output.h"
#include "host/private_environment.h"
#include "host/thumbnail.h"

namespace velmarhost {

enum class Command { kTree, kLs, kStat, kCat, kThumb, kGet, kAdd };
enum class FileNames { kTitle, kPath };

// What the user asked for. An option stands at its default where the command does not know it.
struct Options {
    Command command = Command::kTree;
    std::vector<std::string> paths;  // of the tree; one, except for get; for add files of the disk

    LibraryChoice library;
    std::string driver;  // empty: the one beside the program
    bool verbose = false;
    ColorChoice color = ColorChoice::kAuto;

    bool json = false;
    bool long_list = false;
    bool human_sizes = false;
    bool all = false;
    std::optional<std::size_t> depth;
    int64_t offset = 0;
    std::optional<int64_t> length;
    std::filesystem::path target;
    FileNames names = FileNames::kTitle;
    bool overwrite = false;
    bool with_artwork = false;
    std::optional<ThumbnailSize> thumbnail_size;
    std::string file;  // to write the thumbnail to; "-" is standard output
    bool png = false;
    std::string add_to;    // a path of the tree; empty: by the kind of each file
    std::string add_name;  // the name of the one file; empty: its own
    bool dry_run = false;
};

// Reads the command line. Empty after --help or --version, which are answered here. Throws HostError with
// code kUsage.
std::optional<Options> ParseOptions(int argument_count, char **arguments);

}  // namespace velmarhost

#endif
