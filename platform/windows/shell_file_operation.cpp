#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/folder_search.h"
#include "platform/windows/last_error.h"
#include "platform/windows/move_target.h"
#include "platform/windows/native_path.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/text.h"
#include "platform/windows/tree_listing.h"

namespace {

// The shell's own error for a source and a target that are one.
constexpr int kSameFile = 0x71;

// 0, then the first error that is reported.
class FirstError {
  public:
    void Add(int error) {
        if (value_ == 0) value_ = error;
    }
    void AddErrno(int error_number) {
        if (error_number != 0) Add(static_cast<int>(WindowsError(error_number)));
    }
    int value() const { return value_; }

  private:
    int value_ = 0;
};

std::vector<std::wstring> ReadList(LPCWSTR text) {
    std::vector<std::wstring> paths;
    while (text != nullptr && *text != L'\0') {
        paths.emplace_back(text);
        text += paths.back().size() + 1;
    }
    return paths;
}

bool IsFolder(const std::string &native_path) {
    struct stat status;
    return stat(native_path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool AreOneFolder(const std::string &left, const std::string &right) {
    struct stat left_status;
    struct stat right_status;
    return stat(left.c_str(), &left_status) == 0 && stat(right.c_str(), &right_status) == 0 &&
           left_status.st_dev == right_status.st_dev && left_status.st_ino == right_status.st_ino;
}

// The native paths that a path or pattern stands for. All names are read before anything is done to them.
std::vector<std::string> ExpandSource(const std::wstring &path, FirstError &error) {
    const SpelledPath spelled = SpellNativePath(std::wstring_view(path));
    if (spelled.text.size() <= spelled.root_size) {  // nobody means a whole drive
        error.Add(ERROR_INVALID_PARAMETER);
        return {};
    }
    if (FileNameOf(spelled.text).find_first_of("*?") == std::string_view::npos)
        return {ResolveSpelling(spelled)};
    const std::string folder = FolderOf(ResolveSpelling(spelled)) + "/";
    if (!IsFolder(folder)) error.Add(ERROR_PATH_NOT_FOUND);
    std::vector<std::string> entries;
    FolderSearch search(path, FindExInfoBasic);
    for (const WIN32_FIND_DATAW &entry : search) {
        const std::string name = WideToUtf8(entry.cFileName);
        if (name != "." && name != "..") entries.push_back(folder + name);
    }
    if (!search.IsComplete()) error.Add(static_cast<int>(search.error()));
    return entries;
}

int MoveEntries(const SHFILEOPSTRUCTW &operation, const std::vector<std::wstring> &sources) {
    const std::vector<std::wstring> targets = ReadList(operation.pTo);
    if (targets.size() != 1) return ERROR_INVALID_PARAMETER;
    const std::string folder = NativePath(targets[0]);
    if (!IsFolder(folder) && CreateDirectoryW(targets[0].c_str(), nullptr) == FALSE) {
        return static_cast<int>(GetLastError());
    }
    MoveTarget target(folder, (operation.fFlags & FOF_RENAMEONCOLLISION) != 0);
    FirstError error;
    for (const std::wstring &source : sources) {
        for (const std::string &entry : ExpandSource(source, error)) {
            if (AreOneFolder(FolderOf(entry), folder)) return kSameFile;
            error.AddErrno(target.TakeIn(entry));
        }
    }
    return error.value();
}

int DeleteEntries(const SHFILEOPSTRUCTW &operation, const std::vector<std::wstring> &sources) {
    if ((operation.fFlags & FOF_ALLOWUNDO) != 0) return ERROR_NOT_SUPPORTED;
    FirstError error;
    for (const std::wstring &source : sources) {
        for (const std::string &entry : ExpandSource(source, error))
            error.AddErrno(RemoveTree(entry));
    }
    return error.value();
}

}  // namespace

int SHFileOperationW(LPSHFILEOPSTRUCTW operation) {
    if (operation == nullptr) return ERROR_INVALID_PARAMETER;
    operation->fAnyOperationsAborted = FALSE;
    const std::vector<std::wstring> sources = ReadList(operation->pFrom);
    if (sources.empty()) return ERROR_INVALID_PARAMETER;
    switch (operation->wFunc) {
        case FO_MOVE:
            return MoveEntries(*operation, sources);
        case FO_DELETE:
            return DeleteEntries(*operation, sources);
        default:
            return ERROR_NOT_SUPPORTED;
    }
}
