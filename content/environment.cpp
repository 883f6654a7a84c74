#include "content/environment.h"

#include "platform/windows/windows_api.h"

std::optional<std::wstring> EnvironmentVariable(const wchar_t *name) {
    // Asked again with more room as long as the value does not fit: it may grow between two calls.
    std::wstring value(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
        if (size == 0) return std::nullopt;
        const bool fits = size < value.size();
        value.resize(size);
        if (fits) return value;
    }
}
