#include "content/path_text.h"

#include <algorithm>
#include <new>

#include "content/environment.h"
#include "platform/windows/windows_api.h"

namespace {

std::wstring TempFolderPath() {
    return EnvironmentVariable(L"TEMP").value_or(L"");
}

}  // namespace

void ReplaceChar(std::string &text, char find, char put) {
    std::replace(text.begin(), text.end(), find, put);
}

std::optional<std::string> DirectoryOfPath(std::string_view path) {
    const size_t separator = path.find_last_of("\\/");
    if (separator == std::string_view::npos) return std::nullopt;
    return std::string(path.substr(0, separator));
}

std::string_view FileNameOfPath(std::string_view path) {
    // Without a backslash, npos plus 1 is the first character.
    return path.substr(path.rfind('\\') + 1);
}

std::string_view ExtensionOfPath(std::string_view path) {
    const size_t dot = path.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : path.substr(dot);
}

std::string BuildTempPath(std::optional<std::string_view> folder, std::string_view name) {
    std::string path = WideToUtf8(TempFolderPath()) + '\\';
    if (folder) path.append(*folder) += '\\';
    return path.append(name);
}

std::wstring BuildTempPathW(std::optional<std::wstring_view> folder, std::wstring_view name) {
    std::wstring path = TempFolderPath() + L'\\';
    if (folder && !folder->empty()) path.append(*folder) += L'\\';
    return path.append(name);
}

void RemoveFileQuietly(const std::wstring &path) noexcept try {
    _wremove(path.c_str());
} catch (const std::bad_alloc &) {
}

void RemoveFileQuietly(std::string_view utf8_path) noexcept try {
    _wremove(Utf8ToWide(utf8_path).c_str());
} catch (const std::bad_alloc &) {
}
