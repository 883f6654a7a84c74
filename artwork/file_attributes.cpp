#include "artwork/file_attributes.h"

#include "content/path_text.h"
#include "driver/attributes.h"
#include "platform/windows/windows_api.h"

void AddFileSize(DriverPath *entry, const std::string &path) {
    struct _stat64i32 status = {};
    if (_wstat64i32(Utf8ToWide(path).c_str(), &status) != 0) return;
    AddAttribute(entry, "st_size", std::to_string(status.st_size).c_str());
}

void AddDuration(DriverPath *entry, int64_t milliseconds) {
    AddAttribute(entry, "duration", std::to_string(milliseconds).c_str());
}

bool IsPlainFile(const std::string &path) {
    struct _stat64 status = {};
    return _wstat64(Utf8ToWide(path).c_str(), &status) == 0 && (status.st_mode & _S_IFMT) == _S_IFREG;
}
