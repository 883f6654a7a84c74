#include "platform/windows/copy_tree.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <vector>

#include "platform/windows/file_descriptor.h"
#include "platform/windows/rename_entry.h"

namespace {

constexpr size_t kBlockBytes = 256 << 10;
constexpr mode_t kPermissions = 0777;

int WriteAll(int file, const char *bytes, size_t size) {
    while (size > 0) {
        const ssize_t written = Uninterrupted([&] { return write(file, bytes, size); });
        if (written <= 0) return written == 0 ? EIO : errno;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return 0;
}

int CopyBytes(int from, int to) {
    std::vector<char> block(kBlockBytes);
    while (true) {
        const ssize_t size = Uninterrupted([&] { return read(from, block.data(), block.size()); });
        if (size <= 0) return size == 0 ? 0 : errno;
        const int error = WriteAll(to, block.data(), static_cast<size_t>(size));
        if (error != 0) return error;
    }
}

std::array<timespec, 2> TimesOf(const struct stat &status) {
    return {status.st_atim, status.st_mtim};
}

int CopyFile(const TreeEntry &entry, const std::string &target) {
    const FileDescriptor from(
        Uninterrupted([&] { return open(entry.path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); }));
    if (!from) return errno;
    FileDescriptor to(Uninterrupted([&] {
        return open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    }));
    if (!to) return errno;
    const int error = CopyBytes(from.get(), to.get());
    if (error != 0) return error;
    if (fchmod(to.get(), entry.status.st_mode & kPermissions) != 0) return errno;
    if (futimens(to.get(), TimesOf(entry.status).data()) != 0) return errno;
    if (Uninterrupted([&] { return fsync(to.get()); }) != 0) return errno;
    return to.Close() ? 0 : errno;
}

int CopyLink(const TreeEntry &entry, const std::string &target) {
    std::array<char, PATH_MAX> text;
    const ssize_t size = readlink(entry.path.c_str(), text.data(), text.size());
    if (size < 0) return errno;
    const std::string to(text.data(), static_cast<size_t>(size));
    return symlink(to.c_str(), target.c_str()) == 0 ? 0 : errno;
}

int CopyEntry(const TreeEntry &entry, const std::string &target) {
    const mode_t mode = entry.status.st_mode;
    if (S_ISREG(mode)) return CopyFile(entry, target);
    if (S_ISLNK(mode)) return CopyLink(entry, target);
    if (S_ISDIR(mode)) return mkdir(target.c_str(), S_IRWXU) == 0 ? 0 : errno;
    return ENOTSUP;  // a pipe or a device is not its bytes
}

// A folder gets its own permissions and time only when nothing more comes into it.
int FinishFolder(const TreeEntry &entry, const std::string &target) {
    const int error = SyncFolder(target);
    if (error != 0) return error;
    if (utimensat(AT_FDCWD, target.c_str(), TimesOf(entry.status).data(), 0) != 0) return errno;
    return chmod(target.c_str(), entry.status.st_mode & kPermissions) == 0 ? 0 : errno;
}

}  // namespace

int CopyListed(const TreeListing &source, const std::string &target) {
    if (source.error != 0) return source.error;
    const size_t root_size = source.entries.front().path.size();
    const auto target_of = [&](const TreeEntry &entry) { return target + entry.path.substr(root_size); };
    for (const TreeEntry &entry : source.entries) {
        const int error = CopyEntry(entry, target_of(entry));
        if (error != 0) return error;
    }
    for (auto entry = source.entries.rbegin(); entry != source.entries.rend(); ++entry) {
        const int error = S_ISDIR(entry->status.st_mode) ? FinishFolder(*entry, target_of(*entry)) : 0;
        if (error != 0) return error;
    }
    return 0;
}
