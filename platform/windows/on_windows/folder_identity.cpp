#include "platform/windows/folder_identity.h"

#include "platform/windows/windows_api.h"

std::optional<FolderIdentity> IdentifyFolder(const std::wstring &path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // Without the backup flag no folder can be opened.
    HANDLE folder =
        CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION status;
    const bool is_folder = GetFileInformationByHandle(folder, &status) != FALSE &&
                           (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    CloseHandle(folder);
    if (!is_folder) return std::nullopt;
    return FolderIdentity{status.dwVolumeSerialNumber,
                          (uint64_t{status.nFileIndexHigh} << 32) | status.nFileIndexLow};
}

std::optional<FolderIdentity> IdentifySearch(HANDLE /*search*/, const std::wstring &folder) {
    return IdentifyFolder(folder);
}
