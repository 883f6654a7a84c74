#ifndef ARTWORK_TRACK_THUMBNAILS_H
#define ARTWORK_TRACK_THUMBNAILS_H

#include <cstdint>

#include "driver/library_driver.h"

// Fills the node "thumb" of a track with the pictures of its file in the artwork cache, or that of a scanned
// file with the picture of its ID3 tag. 1 if the node has children already; 0 if it was looked at, whether
// there is a picture or not; -1 if it is no "thumb" node or has no artwork file that can be read.
int32_t LoadTrackThumbnails(LibraryDriver *driver, DriverPath *thumb);

#endif
