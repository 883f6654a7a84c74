#ifndef ARTWORK_THUMB_NODE_H
#define ARTWORK_THUMB_NODE_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

// The node "thumb" of a file, which knows where pictures come from, and the thumbnails under it, which are
// made when a walk first enters it.

// Adds a node "thumb" under a file. `location` is where its pictures are found.
DriverPath *AddThumbNode(DriverPath *file, int32_t subcategory, const char *location);

// True for a node whose numbers are those of a "thumb" node. Null is none.
bool IsThumbNode(const DriverPath *path);

// One picture: bytes of a file.
struct Thumbnail {
    std::string type;      // empty where it is not known
    std::string location;  // UTF-8
    int32_t size = 0;      // in bytes; of a larger file the low 32 bits
    int64_t offset = 0;    // 0: the file is the picture
};

// Adds a thumbnail under a "thumb" node, and gives its node. A null name makes one that no path reaches.
DriverPath *AddThumbnail(DriverPath *thumb, const char *name, const Thumbnail &thumbnail);

#endif
