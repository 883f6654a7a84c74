#include "platform/windows/tree_listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "platform/windows/file_descriptor.h"

namespace {

// Null if the path has become something else than a folder since it was looked at.
Directory OpenWithoutFollowing(const std::string &path) {
    FileDescriptor descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    Directory directory(descriptor ? fdopendir(descriptor.get()) : nullptr);
    if (directory) descriptor.Release();
    return directory;
}

int AppendEntry(const std::string &path, std::vector<TreeEntry> &entries) {
    TreeEntry entry{path, {}};
    if (lstat(path.c_str(), &entry.status) != 0) return errno;
    entries.push_back(std::move(entry));
    return 0;
}

int AppendChildren(const std::string &folder, std::vector<TreeEntry> &entries) {
    const Directory directory = OpenWithoutFollowing(folder);
    if (!directory) return errno;
    int first_error = 0;
    errno = 0;
    while (const dirent *child = readdir(directory.get())) {
        const std::string_view name = child->d_name;
        const int error =
            name == "." || name == ".." ? 0 : AppendEntry(folder + "/" + child->d_name, entries);
        if (first_error == 0) first_error = error;
        errno = 0;
    }
    return first_error != 0 ? first_error : errno;
}

}  // namespace

TreeListing ListTree(const std::string &root) {
    TreeListing listing;
    listing.error = AppendEntry(root, listing.entries);
    // The list is its own queue of folders that are still to be read.
    for (size_t i = 0; i < listing.entries.size(); ++i) {
        if (!S_ISDIR(listing.entries[i].status.st_mode)) continue;
        const std::string folder = listing.entries[i].path;
        const int error = AppendChildren(folder, listing.entries);
        if (listing.error == 0) listing.error = error;
    }
    return listing;
}

int RemoveListed(const std::vector<TreeEntry> &entries) {
    int first_error = 0;
    std::for_each(entries.rbegin(), entries.rend(), [&first_error](const TreeEntry &entry) {
        const char *path = entry.path.c_str();
        const int result = S_ISDIR(entry.status.st_mode) ? rmdir(path) : unlink(path);
        if (result != 0 && first_error == 0) first_error = errno;
    });
    return first_error;
}

int RemoveTree(const std::string &root) {
    const TreeListing listing = ListTree(root);
    const int error = RemoveListed(listing.entries);
    return listing.error != 0 ? listing.error : error;
}
