// A call of the platform layer that every target with applications has in the place of the real one: what a
// file names as the address of its icon is not asked for.
#include "platform/windows/windows_api.h"

HRESULT URLDownloadToFileW(LPUNKNOWN, LPCWSTR, LPCWSTR, DWORD, LPBINDSTATUSCALLBACK) {
    return INET_E_DOWNLOAD_FAILURE;
}
