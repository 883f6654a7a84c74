#ifndef DRIVER_COPY_TARGET_H
#define DRIVER_COPY_TARGET_H

#include <string>

#include "driver/itunes_driver.h"

// Where a copy goes, in UTF-8.
struct CopyTarget {
    std::string folder;
    std::string name;  // as the source gives it: it may be no name that a file can have

    std::string Path() const { return folder + "\\" + name; }
};

// `path_text` is the place in the tree that the host names. It decides nothing but what is a book.
CopyTarget ChooseCopyTarget(const LibraryDriver *driver, const char *path_text, const CopySourceInfo &source);

#endif
