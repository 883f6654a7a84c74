#include "platform/windows/windows_api.h"

HWND GetForegroundWindow() {
    return nullptr;
}

HWND FindWindowW(LPCWSTR, LPCWSTR) {
    return nullptr;
}

BOOL SetForegroundWindow(HWND) {
    return FALSE;
}
