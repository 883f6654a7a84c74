#ifndef DRIVER_LIBRARY_DRIVER_H
#define DRIVER_LIBRARY_DRIVER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "driver/driver_path.h"
#include "driver/itunes_driver.h"
#include "driver/path_lookup.h"
#include "driver/scanned_files.h"
#include "platform/core_foundation/cf_owner.h"
#include "platform/itl_parser/itl_parser.h"

class StartupThread;

constexpr int32_t kDefaultCopyChunkSize = 1024;
constexpr int32_t kFirstScannedId = 5000000;

// One opened library. All texts are UTF-8 with backslash separators.
struct LibraryDriver {
    DriverStartupCallback host_callback = nullptr;
    void *host_context = nullptr;
    // Root of the library XML file, empty once the library is loaded; null when the .itl file is the source.
    CFOwner library_plist;
    std::unique_ptr<ITLParser> parser;  // null when the XML file is the source
    // The media folder at first, then the folder "Automatically Add to iTunes" in it.
    std::optional<std::string> add_folder;
    std::string library_folder;  // of the library file, without a trailing backslash
    std::string xml_path;
    std::string itl_path;
    DriverPath *root = nullptr;
    VelmarArray *tracks = nullptr;  // every track, those too that no list holds; not their owner
    // The mark that the folder "Album Artwork" has been scanned; holds nothing.
    VelmarArray *artwork_scan = nullptr;
    CopyProgressCallback copy_callback = nullptr;
    void *copy_context = nullptr;
    int32_t copy_chunk_size = kDefaultCopyChunkSize;
    int32_t next_scanned_id = kFirstScannedId;
    DriverPath *master_playlist = nullptr;

    // Lists without a name: they hold tracks, but no walk reaches them.
    std::vector<DriverPath *> unnamed_lists;
    ScannedFiles scanned_files;
    // Nodes that a rescan has dropped and a host has still open.
    std::unordered_set<DriverPath *> dropped_paths;
    TreeIndex index;
    uint32_t next_sequence = 0;  // of DriverPath::sequence
    std::unique_ptr<StartupThread> startup_thread;

    LibraryDriver();
    ~LibraryDriver();
    LibraryDriver(const LibraryDriver &) = delete;
    LibraryDriver &operator=(const LibraryDriver &) = delete;
};

// Builds the library of the current user. 0, or the negative result of the step that failed.
int32_t CreateLibrary(LibraryDriver *driver);

// Releases the library's source, the tree and all tracks.
void DestroyLibrary(LibraryDriver *driver);

#endif
