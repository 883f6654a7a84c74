#include "driver/itunes_window.h"

#include "platform/windows/windows_api.h"

namespace {

constexpr DWORD kShownMilliseconds = 1000;
constexpr DWORD kSettlingMilliseconds = 2000;

constexpr wchar_t kTitle[] = L"iTunes";

// The class differs between versions.
HWND FindITunes() {
    HWND window = FindWindowW(L"iTunes", kTitle);
    return window != nullptr ? window : FindWindowW(L"ITWindow", kTitle);
}

}  // namespace

bool ShowITunesWindow() {
    HWND foreground = GetForegroundWindow();
    HWND window = FindITunes();
    if (window == nullptr) {
        Sleep(kShownMilliseconds);
        return false;
    }
    SetForegroundWindow(window);
    Sleep(kShownMilliseconds);
    SetForegroundWindow(foreground);
    Sleep(kSettlingMilliseconds);
    return true;
}
