// What a host does with a node and everything below it, and what it relies on.
#ifndef FUZZ_TREE_CHECK_H
#define FUZZ_TREE_CHECK_H

#include <string>

#include "driver/itunes_driver.h"

// A final "/" of a path is passed over when it is opened, and stands for itself here.
std::string ChildPath(const std::string &path, const std::string &name);

// Opens the path and all paths below it, reads names and attributes, and reads the files behind the nodes up
// to a limit. A thumbnail inside a file may give no more bytes than its "st_size" says. Every handle is
// closed again.
void CheckTree(LibraryDriver *driver, const std::string &path);

#endif
