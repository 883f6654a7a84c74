#ifndef ARTWORK_ARTWORK_SCAN_H
#define ARTWORK_ARTWORK_SCAN_H

#include <cstdint>
#include <string>

#include "driver/library_driver.h"

// The artwork cache of iTunes: files below the folder "Album Artwork" beside the library file, each named
// after the persistent ids of the library and of a track. Every such track gets a node "thumb" for the file.

// Does so unless it is done already for this library. Always 0. The tracks must not change meanwhile.
int32_t EnsureAlbumArtworkScan(LibraryDriver *driver);

// The same for one folder and those below it, as often as it is called. Always 0.
int32_t ScanAlbumArtworkFolder(LibraryDriver *driver, const std::wstring &folder);

// Lets go of the mark that the scan is done. The tracks keep what it has given them.
void FreeAlbumArtworkScan(LibraryDriver *driver);

#endif
