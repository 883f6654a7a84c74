#include "content/file_stamp.h"

#include <ctime>

#include "content/path_text.h"
#include "platform/windows/windows_api.h"

namespace {

// Times count whole seconds, or two on old file systems of Windows.
constexpr int64_t kSettledSeconds = 3;

}  // namespace

bool PathExists(const std::string &path) {
    constexpr int kExistence = 0;
    return _waccess(Utf8ToWide(path).c_str(), kExistence) == 0;
}

std::optional<int64_t> SizeOfFile(const std::string &path) {
    struct _stat64 status = {};
    if (_wstat64(Utf8ToWide(path).c_str(), &status) != 0) return std::nullopt;
    return status.st_size;
}

std::optional<FileStamp> StampOfFile(const std::string &path) {
    struct _stat64 status = {};
    if (_wstat64(Utf8ToWide(path).c_str(), &status) != 0) return std::nullopt;
    const FileStamp stamp{status.st_size, status.st_mtime, status.st_ctime};
    const int64_t latest = std::time(nullptr) - kSettledSeconds;
    if (stamp.modified > latest || stamp.changed > latest) return std::nullopt;
    return stamp;
}
