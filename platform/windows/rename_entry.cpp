#include "platform/windows/rename_entry.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "platform/windows/file_descriptor.h"

namespace {

// An empty folder holds the name until the rename takes its place, which works on nothing but an empty
// folder.
int RenameFolderOverPlaceholder(const std::string &from, const std::string &to) {
    if (mkdir(to.c_str(), S_IRWXU) != 0) return errno;
    if (rename(from.c_str(), to.c_str()) == 0) return 0;
    const int error = errno;
    rmdir(to.c_str());
    return error;
}

int RenameThroughHardLink(const std::string &from, const std::string &to) {
    if (link(from.c_str(), to.c_str()) != 0) return errno;
    if (unlink(from.c_str()) == 0) return 0;
    const int error = errno;
    unlink(to.c_str());
    return error;
}

}  // namespace

int RenameWithoutReplacing(const std::string &from, const std::string &to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // A file system that does not know the flag. The ways round it need two steps.
    struct stat status;
    if (lstat(from.c_str(), &status) != 0) return errno;
    return S_ISDIR(status.st_mode) ? RenameFolderOverPlaceholder(from, to) : RenameThroughHardLink(from, to);
}

int SyncFolder(const std::string &folder) {
    const FileDescriptor descriptor(
        Uninterrupted([&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!descriptor) return errno;
    const int result = Uninterrupted([&] { return fsync(descriptor.get()); });
    // Some file systems cannot do this for folders and need not.
    return result == 0 || errno == EINVAL ? 0 : errno;
}
