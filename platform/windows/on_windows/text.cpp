#include "platform/windows/text.h"

#include "platform/windows/windows_api.h"

namespace {

std::string NarrowFromWide(UINT code_page, std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string narrow(static_cast<size_t>(WideCharToMultiByte(code_page, 0, text.data(), size, nullptr, 0,
                                                               nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(code_page, 0, text.data(), size, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow;
}

}  // namespace

std::wstring Utf8ToWide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string WideToUtf8(std::wstring_view text) {
    return NarrowFromWide(CP_UTF8, text);
}

std::string AnsiFromWide(std::wstring_view text) {
    return NarrowFromWide(CP_ACP, text);
}
