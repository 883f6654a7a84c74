#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "platform/windows/ansi_code_page.h"
#include "platform/windows/ansi_text.h"
#include "platform/windows/last_error.h"
#include "platform/windows/text.h"

namespace {

int FailedConversion(DWORD error) {
    SetLastError(error);
    return 0;
}

// The text of a parameter pair: a size of -1 means up to and with the terminator.
template <typename Char>
std::basic_string_view<Char> InputText(const Char *text, int size) {
    if (size >= 0) return {text, static_cast<size_t>(size)};
    return {text, std::char_traits<Char>::length(text) + 1};
}

template <typename Char>
bool AreArgumentsValid(const Char *text, int size, const void *buffer, int buffer_size) {
    return text != nullptr && size != 0 && size >= -1 && buffer_size >= 0 &&
           (buffer != nullptr || buffer_size == 0);
}

// Hands a result out: its size alone where the caller only asks for that.
template <typename Char>
int Deliver(const std::basic_string<Char> &result, Char *buffer, int buffer_size) {
    const auto size = static_cast<int>(result.size());
    if (buffer_size == 0) return size;
    if (size > buffer_size) return FailedConversion(ERROR_INSUFFICIENT_BUFFER);
    std::copy(result.begin(), result.end(), buffer);
    return size;
}

// Null if there is no such code page.
const char *CharsetOf(UINT code_page) {
    return CodePageCharset(code_page == CP_ACP ? GetACP() : code_page);
}

std::optional<std::wstring> ToWide(UINT code_page, std::string_view text, bool &complete) {
    if (code_page == CP_UTF8) {
        std::wstring wide = Utf8ToWide(text);
        // No valid UTF-8 decodes to a surrogate: these stand for the bytes that are not.
        complete =
            std::none_of(wide.begin(), wide.end(), [](wchar_t c) { return c >= 0xDC80 && c <= 0xDCFF; });
        return wide;
    }
    const char *charset = CharsetOf(code_page);
    return charset == nullptr ? std::nullopt : WideFromAnsi(charset, text, complete);
}

}  // namespace

int MultiByteToWideChar(UINT code_page, DWORD flags, LPCCH text, int text_size, LPWSTR buffer,
                        int buffer_size) {
    if (!AreArgumentsValid(text, text_size, buffer, buffer_size))
        return FailedConversion(ERROR_INVALID_PARAMETER);
    bool complete = true;
    const std::optional<std::wstring> wide = ToWide(code_page, InputText(text, text_size), complete);
    if (!wide) return FailedConversion(ERROR_INVALID_PARAMETER);
    if (!complete && (flags & MB_ERR_INVALID_CHARS) != 0)
        return FailedConversion(ERROR_NO_UNICODE_TRANSLATION);
    return Deliver(*wide, buffer, buffer_size);
}

int WideCharToMultiByte(UINT code_page, DWORD, LPCWCH text, int text_size, LPSTR buffer, int buffer_size,
                        LPCCH default_character, LPBOOL used_default_character) {
    if (!AreArgumentsValid(text, text_size, buffer, buffer_size))
        return FailedConversion(ERROR_INVALID_PARAMETER);
    const std::wstring_view input = InputText(text, text_size);
    if (code_page == CP_UTF8) {
        const bool has_default = default_character != nullptr || used_default_character != nullptr;
        return has_default ? FailedConversion(ERROR_INVALID_PARAMETER)
                           : Deliver(WideToUtf8(input), buffer, buffer_size);
    }
    const char *charset = CharsetOf(code_page);
    if (charset == nullptr) return FailedConversion(ERROR_INVALID_PARAMETER);
    bool complete = true;
    const std::optional<std::string> narrow =
        AnsiFromWide(charset, input, default_character == nullptr ? "?" : default_character, complete);
    if (!narrow) return FailedConversion(ERROR_INVALID_PARAMETER);
    if (used_default_character != nullptr) *used_default_character = complete ? FALSE : TRUE;
    return Deliver(*narrow, buffer, buffer_size);
}
