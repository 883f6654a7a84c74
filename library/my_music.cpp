#include "library/my_music.h"

#include "platform/windows/windows_api.h"

std::optional<std::wstring> MyMusicFolder() {
    wchar_t folder[MAX_PATH] = {};
    if (SHGetFolderPathW(nullptr, CSIDL_MYMUSIC, nullptr, 0, folder) != S_OK) return std::nullopt;
    std::wstring path = folder;
    if (path.ends_with(L'\\')) path.pop_back();
    return path;
}
