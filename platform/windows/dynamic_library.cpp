#include <dlfcn.h>

#include <string>
#include <string_view>

#include "platform/windows/last_error.h"
#include "platform/windows/native_path.h"
#include "platform/windows/text.h"

HMODULE LoadLibraryW(LPCWSTR name) {
    const std::wstring_view wide = name;
    const bool is_path = wide.find_first_of(L"/\\:") != std::wstring_view::npos;
    const std::string file = is_path ? NativePath(wide) : WideToUtf8(wide);
    // An empty name would give the program itself.
    void *const module = file.empty() ? nullptr : dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
    return static_cast<HMODULE>(module);
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    void *const address = module == nullptr ? nullptr : dlsym(module, name);
    if (address == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}

BOOL FreeLibrary(HMODULE module) {
    if (module != nullptr && dlclose(module) == 0) return TRUE;
    return FailWith(ERROR_INVALID_HANDLE);
}
