#ifndef PLATFORM_WINDOWS_COPY_TREE_H
#define PLATFORM_WINDOWS_COPY_TREE_H

#include <string>

#include "platform/windows/tree_listing.h"

// Copies what was listed to `target`, where nothing may be yet, with its permissions and the times of its
// last writes, links as links, and brings it to the disk. `source` is the root of the listing. 0 or an errno
// value; after a failure the caller removes what lies at `target`.
int CopyListed(const TreeListing &source, const std::string &target);

#endif
