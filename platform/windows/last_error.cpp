#include "platform/windows/last_error.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

struct ErrorPair {
    int error_number;
    DWORD windows_error;
};

constexpr std::array kErrors = {
    ErrorPair{ENOENT, ERROR_FILE_NOT_FOUND},
    ErrorPair{ENOTDIR, ERROR_PATH_NOT_FOUND},
    ErrorPair{ELOOP, ERROR_PATH_NOT_FOUND},
    ErrorPair{EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    ErrorPair{ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    ErrorPair{EACCES, ERROR_ACCESS_DENIED},
    ErrorPair{EPERM, ERROR_ACCESS_DENIED},
    ErrorPair{EISDIR, ERROR_ACCESS_DENIED},
    ErrorPair{EBADF, ERROR_INVALID_HANDLE},
    ErrorPair{ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    ErrorPair{EXDEV, ERROR_NOT_SAME_DEVICE},
    ErrorPair{EROFS, ERROR_WRITE_PROTECT},
    ErrorPair{EBUSY, ERROR_SHARING_VIOLATION},
    ErrorPair{ETXTBSY, ERROR_SHARING_VIOLATION},
    ErrorPair{ENOTSUP, ERROR_NOT_SUPPORTED},
    ErrorPair{EINVAL, ERROR_INVALID_PARAMETER},
    ErrorPair{ENOSPC, ERROR_DISK_FULL},
    ErrorPair{EDQUOT, ERROR_DISK_FULL},
    ErrorPair{ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    ErrorPair{EEXIST, ERROR_ALREADY_EXISTS},
    ErrorPair{ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
};

thread_local DWORD last_error = ERROR_SUCCESS;

}  // namespace

DWORD GetLastError() {
    return last_error;
}

void SetLastError(DWORD error) {
    last_error = error;
}

DWORD WindowsError(int error_number) {
    const auto *const found =
        std::find_if(kErrors.begin(), kErrors.end(),
                     [error_number](const ErrorPair &pair) { return pair.error_number == error_number; });
    return found == kErrors.end() ? ERROR_GEN_FAILURE : found->windows_error;
}

BOOL Succeeded(bool success) {
    if (!success) SetLastError(WindowsError(errno));
    return success ? TRUE : FALSE;
}

BOOL FailWith(DWORD error) {
    SetLastError(error);
    return FALSE;
}
