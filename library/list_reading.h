#ifndef LIBRARY_LIST_READING_H
#define LIBRARY_LIST_READING_H

#include "driver/library_driver.h"
#include "platform/core_foundation/cf_owner.h"

// Reads the library's XML file: its root value, or null where it cannot be read. Tracks of a large file are
// imported while it is still being read: then `tracks` holds what LoadTracks would make of them, and is null
// otherwise.
CFOwner ReadLibraryList(LibraryDriver *driver);

#endif
