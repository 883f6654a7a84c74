#include "platform/windows/native_path.h"

#include "platform/windows/text.h"

std::string NativePath(std::string_view windows_path) {
    return std::string(windows_path.substr(0, windows_path.find('\0')));
}

std::string NativePath(std::wstring_view windows_path) {
    return NativePath(WideToUtf8(windows_path));
}
