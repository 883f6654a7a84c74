#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/windows/home_folder.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

std::string UserFoldersFile() {
    const char *config = std::getenv("XDG_CONFIG_HOME");
    const std::string folder = config != nullptr && *config != '\0' ? config : HomeFolder() + "/.config";
    return folder + "/user-dirs.dirs";
}

// The text between the quotes of a line `XDG_MUSIC_DIR="..."`, with its backslash escapes undone; empty for
// any other line.
std::string QuotedValue(std::string_view line, std::string_view key) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(key)) return {};
    line.remove_prefix(key.size());
    std::string value;
    for (size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
        if (line[i] == '\\' && i + 1 < line.size()) ++i;
        value += line[i];
    }
    return value;
}

// The folder of a value, which begins with "$HOME" or is an absolute path; anything else does not count.
std::string ExpandHome(const std::string &value) {
    constexpr std::string_view kHome = "$HOME";
    if (value.starts_with(kHome)) return HomeFolder() + value.substr(kHome.size());
    return value.starts_with('/') ? value : std::string();
}

std::string MusicFolder() {
    std::string folder;
    std::ifstream file(UserFoldersFile());
    for (std::string line; std::getline(file, line);) {
        const std::string value = ExpandHome(QuotedValue(line, "XDG_MUSIC_DIR=\""));
        if (!value.empty()) folder = value;  // as in a shell, the last line counts
    }
    if (folder.empty() && !HomeFolder().empty()) folder = HomeFolder() + "/Music";
    while (folder.size() > 1 && folder.ends_with('/'))
        folder.pop_back();
    return folder;
}

}  // namespace

HRESULT SHGetFolderPathW(HWND, int folder, HANDLE, DWORD, LPWSTR path) {
    if (path == nullptr) return E_INVALIDARG;
    *path = L'\0';
    if (folder != CSIDL_MYMUSIC) return E_INVALIDARG;
    const std::wstring music = Utf8ToWide(MusicFolder());
    if (music.empty() || music.size() >= MAX_PATH) return E_FAIL;
    music.copy(path, music.size());
    path[music.size()] = L'\0';
    return S_OK;
}
