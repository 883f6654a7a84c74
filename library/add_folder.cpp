#include "library/add_folder.h"

#include <string>
#include <string_view>

#include "content/path_text.h"
#include "driver/driver_log.h"
#include "library/my_music.h"
#include "platform/windows/folder_search.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr size_t kShortestName = 12;

// The folder's name differs by language, but it always holds the program's name.
bool IsCandidate(const WIN32_FIND_DATAW &entry) {
    const std::wstring_view name = entry.cFileName;
    return name.size() >= kShortestName && name.find(L"iTunes") != std::wstring_view::npos &&
           (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

uint64_t CreationTime(const WIN32_FIND_DATAW &entry) {
    return (uint64_t{entry.ftCreationTime.dwHighDateTime} << 32) | entry.ftCreationTime.dwLowDateTime;
}

// The shell takes lists of names, each with a terminator and one more behind the last.
std::wstring NameList(std::wstring name) {
    name.push_back(L'\0');
    return name;
}

int MoveFolderContents(const std::wstring &from, const std::wstring &to) {
    const std::wstring from_list = NameList(from);
    const std::wstring to_list = NameList(to);
    SHFILEOPSTRUCTW operation = {};
    operation.wFunc = FO_MOVE;
    operation.pFrom = from_list.c_str();
    operation.pTo = to_list.c_str();
    operation.fFlags = FOF_SILENT | FOF_RENAMEONCOLLISION | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR;
    const int result = SHFileOperationW(&operation);
    if (result != 0) WriteVelmarLog("Failed to move files to folder");
    return result;
}

void DeleteFolder(const std::wstring &folder) {
    const std::wstring list = NameList(folder);
    SHFILEOPSTRUCTW operation = {};
    operation.wFunc = FO_DELETE;
    operation.pFrom = list.c_str();
    operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION;
    // A folder that cannot be deleted stays, empty.
    SHFileOperationW(&operation);
}

// A loser whose contents could not all be moved keeps what is left.
void MergeFolder(const std::wstring &loser, const std::wstring &winner) {
    if (MoveFolderContents(loser + L"\\*", winner) == 0) DeleteFolder(loser);
}

std::wstring MediaFolder(const LibraryDriver *driver) {
    if (driver->add_folder) return Utf8ToWide(*driver->add_folder);
    const auto my_music = MyMusicFolder();
    return my_music ? *my_music + L"\\iTunes\\iTunes Media" : std::wstring();
}

// The name of the folder that stays; empty when there is no candidate.
std::wstring ChooseFolder(const std::wstring &media_folder) {
    std::wstring chosen;
    uint64_t chosen_time = 0;
    for (const WIN32_FIND_DATAW &entry : FolderSearch(media_folder + L"\\*")) {
        if (!IsCandidate(entry)) continue;
        const std::wstring name = entry.cFileName;
        const uint64_t time = CreationTime(entry);
        if (chosen.empty()) {
            chosen = name;
            chosen_time = time;
            continue;
        }
        std::wstring loser = name;
        if (time > chosen_time) {
            loser.swap(chosen);
            chosen_time = time;
        }
        MergeFolder(media_folder + L"\\" + loser, media_folder + L"\\" + chosen);
    }
    return chosen;
}

}  // namespace

int32_t FindAddFolder(LibraryDriver *driver) {
    const std::wstring media_folder = MediaFolder(driver);
    const std::wstring chosen = media_folder.empty() ? std::wstring() : ChooseFolder(media_folder);
    if (chosen.empty()) {
        WriteDriverLog("Can't find \"Automatically Add to iTunes\" folder under iTunes Media Folder");
        return -1;
    }
    driver->add_folder = WideToUtf8(media_folder) + "\\" + WideToUtf8(chosen);
    return 0;
}
