#ifndef PLATFORM_WINDOWS_FILE_STATUS_H
#define PLATFORM_WINDOWS_FILE_STATUS_H

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/windows/folder_identity.h"
#include "platform/windows/windows_api.h"

// The status with the birth time, of what `path` leads to or, with AT_SYMLINK_NOFOLLOW, of a link itself. -1
// and errno on failure.
inline int ReadStatus(int folder, const char *path, int flags, struct statx &status) {
    return statx(folder, path, flags, STATX_BASIC_STATS | STATX_BTIME, &status);
}

// The birth time, else the time of the last write.
inline const struct statx_timestamp &CreationTime(const struct statx &status) {
    return (status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime;
}

inline FolderIdentity IdentityOf(const struct statx &status) {
    return {(uint64_t{status.stx_dev_major} << 32) | status.stx_dev_minor, status.stx_ino};
}

inline DWORD AttributesOf(const struct statx &status, bool is_link) {
    const DWORD kind = S_ISDIR(status.stx_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    return is_link ? (kind & ~FILE_ATTRIBUTE_NORMAL) | FILE_ATTRIBUTE_REPARSE_POINT : kind;
}

#endif
