#include "platform/windows/file_status.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "platform/windows/folder_identity.h"
#include "platform/windows/last_error.h"
#include "platform/windows/path_resolution.h"

namespace {

int ReadStatusOf(std::wstring_view path, int flags, struct statx &status) {
    return CallWithNativePath(
        path, [&](const std::string &native) { return ReadStatus(AT_FDCWD, native.c_str(), flags, status); });
}

int RuntimeResult(int result) {
    if (result == -1 && errno == ENOTDIR) errno = ENOENT;
    return result;
}

timespec ToTimespec(const struct statx_timestamp &time) {
    return {.tv_sec = time.tv_sec, .tv_nsec = static_cast<long>(time.tv_nsec)};
}

template <typename Status>
void CopyStatus(const struct statx &from, Status &to) {
    to = {};
    to.st_mode = from.stx_mode;
    to.st_size = static_cast<decltype(to.st_size)>(from.stx_size);
    to.st_atim = ToTimespec(from.stx_atime);
    to.st_mtim = ToTimespec(from.stx_mtime);
    to.st_ctim = ToTimespec(CreationTime(from));
}

}  // namespace

int _wstat64(const wchar_t *path, struct _stat64 *status) {
    struct statx native;
    const int result = RuntimeResult(ReadStatusOf(path, 0, native));
    if (result == 0) CopyStatus(native, *status);
    return result;
}

int _wstat64i32(const wchar_t *path, struct _stat64i32 *status) {
    struct statx native;
    if (RuntimeResult(ReadStatusOf(path, 0, native)) != 0) return -1;
    if (native.stx_size > static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) {
        errno = EOVERFLOW;
        return -1;
    }
    CopyStatus(native, *status);
    return 0;
}

int _waccess(const wchar_t *path, int mode) {
    if (mode == 0) {
        struct statx ignored;
        return RuntimeResult(ReadStatusOf(path, AT_SYMLINK_NOFOLLOW, ignored));
    }
    const auto check = [mode](const std::string &native) {
        return access(native.c_str(), mode & (R_OK | W_OK));
    };
    return RuntimeResult(CallWithNativePath(std::wstring_view(path), check));
}

DWORD GetFileAttributesW(LPCWSTR path) {
    struct statx status;
    if (ReadStatusOf(path, AT_SYMLINK_NOFOLLOW, status) != 0) {
        SetLastError(WindowsError(errno));
        return INVALID_FILE_ATTRIBUTES;
    }
    const bool is_link = S_ISLNK(status.stx_mode);
    // A link that leads nowhere keeps the status of its own.
    struct statx target;
    if (is_link && ReadStatusOf(path, 0, target) == 0) status = target;
    return AttributesOf(status, is_link);
}

std::optional<FolderIdentity> IdentifyFolder(const std::wstring &path) {
    struct statx status;
    if (ReadStatusOf(path, 0, status) != 0 || !S_ISDIR(status.stx_mode)) return std::nullopt;
    return IdentityOf(status);
}
