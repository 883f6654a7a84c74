#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/windows/file_descriptor.h"
#include "platform/windows/file_names.h"
#include "platform/windows/file_status.h"
#include "platform/windows/folder_identity.h"
#include "platform/windows/last_error.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/text.h"

namespace {

// What the HANDLE of a search points to.
struct Search {
    Directory directory;
    std::wstring pattern;  // folded
    FINDEX_INFO_LEVELS level = FindExInfoStandard;
};

FILETIME ToFileTime(const struct statx_timestamp &time) {
    constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
    constexpr int64_t kTicksPerSecond = 10'000'000;
    const auto ticks =
        static_cast<uint64_t>((time.tv_sec + kSecondsFrom1601To1970) * kTicksPerSecond + time.tv_nsec / 100);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// False for an entry that has vanished meanwhile. One that cannot be looked at is there, and may be anything.
bool FillStatus(int folder, const char *name, WIN32_FIND_DATAW &entry) {
    struct statx status;
    entry.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    if (ReadStatus(folder, name, AT_SYMLINK_NOFOLLOW, status) != 0) return errno != ENOENT;
    const bool is_link = S_ISLNK(status.stx_mode);
    struct statx target;
    if (is_link && ReadStatus(folder, name, 0, target) == 0) status = target;
    entry.dwFileAttributes = AttributesOf(status, is_link);
    entry.ftCreationTime = ToFileTime(CreationTime(status));
    entry.ftLastAccessTime = ToFileTime(status.stx_atime);
    entry.ftLastWriteTime = ToFileTime(status.stx_mtime);
    entry.nFileSizeHigh = static_cast<DWORD>(status.stx_size >> 32);
    entry.nFileSizeLow = static_cast<DWORD>(status.stx_size);
    return true;
}

// The attributes of an entry where the listing itself tells them: a link has to be followed.
std::optional<DWORD> ListedAttributes(const dirent &found) {
    if (found.d_type == DT_DIR) return FILE_ATTRIBUTE_DIRECTORY;
    if (found.d_type == DT_REG) return FILE_ATTRIBUTE_NORMAL;
    return std::nullopt;
}

// False also for an entry whose name has no room.
bool FillEntry(const Search &search, const dirent &found, WIN32_FIND_DATAW &entry) {
    const std::wstring wide = Utf8ToWide(found.d_name);
    if (wide.size() >= MAX_PATH) return false;
    entry = {};
    const auto listed = search.level == FindExInfoBasic ? ListedAttributes(found) : std::nullopt;
    if (listed) entry.dwFileAttributes = *listed;
    if (!listed && !FillStatus(dirfd(search.directory.get()), found.d_name, entry)) return false;
    wide.copy(entry.cFileName, wide.size());
    return true;
}

// The next entry that matches, or null.
const dirent *NextMatch(const Search &search) {
    errno = 0;
    const dirent *found = readdir(search.directory.get());
    while (found != nullptr && search.pattern != L"*" &&
           !MatchesPattern(search.pattern, FoldName(found->d_name))) {
        errno = 0;
        found = readdir(search.directory.get());
    }
    return found;
}

// ERROR_NO_MORE_FILES at the end; another error where the folder cannot be read on.
DWORD ReadNext(const Search &search, WIN32_FIND_DATAW &entry) {
    while (const dirent *found = NextMatch(search)) {
        if (FillEntry(search, *found, entry)) return ERROR_SUCCESS;
    }
    return errno == 0 ? ERROR_NO_MORE_FILES : WindowsError(errno);
}

Directory OpenFolderOf(const SpelledPath &spelled) {
    SpelledPath folder = spelled;
    folder.text = FolderOf(spelled.text);
    folder.root_size = std::min(folder.root_size, folder.text.size());
    Directory directory(opendir(folder.text.c_str()));
    if (!directory && errno == ENOENT) directory.reset(opendir(ResolveSpelling(folder).c_str()));
    return directory;
}

HANDLE FailedSearch(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW entry) {
    return FindFirstFileExW(pattern, FindExInfoStandard, entry, FindExSearchNameMatch, nullptr, 0);
}

HANDLE FindFirstFileExW(LPCWSTR pattern, FINDEX_INFO_LEVELS level, LPVOID entry, FINDEX_SEARCH_OPS, LPVOID,
                        DWORD) {
    const SpelledPath spelled = SpellNativePath(std::wstring_view(pattern));
    auto search = std::make_unique<Search>();
    search->directory = OpenFolderOf(spelled);
    if (!search->directory) return FailedSearch(errno == ENOENT ? ERROR_PATH_NOT_FOUND : WindowsError(errno));
    search->level = level;
    search->pattern = FoldName(FileNameOf(spelled.text));
    if (search->pattern == L"*.*") search->pattern = L"*";
    const DWORD error = ReadNext(*search, *static_cast<WIN32_FIND_DATAW *>(entry));
    if (error != ERROR_SUCCESS)
        return FailedSearch(error == ERROR_NO_MORE_FILES ? ERROR_FILE_NOT_FOUND : error);
    return search.release();
}

BOOL FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW entry) {
    if (search == nullptr || search == INVALID_HANDLE_VALUE) return FailWith(ERROR_INVALID_HANDLE);
    const DWORD error = ReadNext(*static_cast<Search *>(search), *entry);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
}

BOOL FindClose(HANDLE search) {
    if (search == nullptr || search == INVALID_HANDLE_VALUE) return FailWith(ERROR_INVALID_HANDLE);
    delete static_cast<Search *>(search);
    return TRUE;
}

std::optional<FolderIdentity> IdentifySearch(HANDLE search, const std::wstring & /*folder*/) {
    const int folder = dirfd(static_cast<Search *>(search)->directory.get());
    struct statx status;
    if (ReadStatus(folder, "", AT_EMPTY_PATH, status) != 0) return std::nullopt;
    return IdentityOf(status);
}
