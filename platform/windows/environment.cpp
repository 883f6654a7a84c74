#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "platform/windows/last_error.h"
#include "platform/windows/text.h"

namespace {

// A variable that is set to nothing does not exist on Windows.
std::optional<std::string> Variable(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

std::optional<std::string> WindowsVariable(const std::string &name) {
    std::optional<std::string> value = Variable(name.c_str());
    if (!value && name == "TEMP") return Variable("TMPDIR").value_or(P_tmpdir);
    return value;
}

}  // namespace

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) {
    const std::optional<std::string> value = WindowsVariable(WideToUtf8(name));
    if (!value) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    const std::wstring wide = Utf8ToWide(*value);
    if (buffer == nullptr || wide.size() >= size) return static_cast<DWORD>(wide.size() + 1);
    wide.copy(buffer, wide.size());
    buffer[wide.size()] = L'\0';
    return static_cast<DWORD>(wide.size());
}
