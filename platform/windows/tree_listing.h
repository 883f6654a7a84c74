#ifndef PLATFORM_WINDOWS_TREE_LISTING_H
#define PLATFORM_WINDOWS_TREE_LISTING_H

#include <sys/stat.h>

#include <string>
#include <vector>

struct TreeEntry {
    std::string path;    // native
    struct stat status;  // of a link itself
};

struct TreeListing {
    std::vector<TreeEntry> entries;  // a folder stands before everything in it
    int error = 0;                   // errno value of the first entry that could not be looked into
};

// Lists a file, a link, or a folder with all that is below it. Links are not followed, so the walk has an
// end.
TreeListing ListTree(const std::string &root);

// Removes what was listed, and nothing that has come since, from the end to the beginning. Goes on past what
// cannot be removed. 0, or the errno value of the first failure.
int RemoveListed(const std::vector<TreeEntry> &entries);

// Both together: 0 if nothing is left.
int RemoveTree(const std::string &root);

#endif
