#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/windows/last_error.h"
#include "platform/windows/native_path.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/rename_entry.h"

namespace {

int Unlink(std::wstring_view path) {
    return CallWithNativePath(path, [](const std::string &native) { return unlink(native.c_str()); });
}

bool IsFolder(const std::string &native_path) {
    struct stat status;
    return lstat(native_path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Where a move to `windows_path` ends: at what is there under any spelling, unless that is the moved entry
// itself, which then gets the spelling asked for.
std::string TargetOfMove(const std::string &source, std::wstring_view windows_path) {
    const SpelledPath spelled = SpellNativePath(windows_path);
    std::string resolved = ResolveSpelling(spelled);
    if (resolved != source) return resolved;
    return FolderOf(resolved) + "/" + std::string(FileNameOf(spelled.text));
}

int Replace(const std::string &from, const std::string &to) {
    if (IsFolder(to)) return EACCES;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int _wremove(const wchar_t *path) {
    const int result = Unlink(path);
    if (result != 0 && errno == ENOTDIR) errno = ENOENT;
    if (result != 0 && errno == EISDIR) errno = EACCES;
    return result;
}

BOOL DeleteFileW(LPCWSTR path) {
    return Succeeded(Unlink(path) == 0);
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES) {
    const std::string native = NativePath(std::wstring_view(path));
    if (!IsWindowsFileName(FileNameOf(native))) return FailWith(ERROR_INVALID_NAME);
    return Succeeded(mkdir(native.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0);
}

BOOL RemoveDirectoryW(LPCWSTR path) {
    return Succeeded(CallWithNativePath(std::wstring_view(path), [](const std::string &native) {
                         return rmdir(native.c_str());
                     }) == 0);
}

BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const std::string source = NativePath(std::wstring_view(from));
    const std::string target = TargetOfMove(source, to);
    if (!IsWindowsFileName(FileNameOf(target))) return FailWith(ERROR_INVALID_NAME);
    const bool replace = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
    int error = replace ? Replace(source, target) : RenameWithoutReplacing(source, target);
    if (error == 0 && (flags & MOVEFILE_WRITE_THROUGH) != 0) error = SyncFolder(FolderOf(target));
    return error == 0 ? TRUE : FailWith(WindowsError(error));
}
