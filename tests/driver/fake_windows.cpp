#include "tests/driver/fake_windows.h"

#include <algorithm>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

std::wstring foreground = L"other";

// A window is known by the name of its class.
HWND HandleOf(std::wstring &name) {
    return reinterpret_cast<HWND>(&name);
}

}  // namespace

HWND GetForegroundWindow() {
    return HandleOf(foreground);
}

HWND FindWindowW(LPCWSTR class_name, LPCWSTR title) {
    FakeWindows::calls.push_back("find " + WideToUtf8(class_name) + "/" + WideToUtf8(title));
    const auto found = std::find(FakeWindows::classes.begin(), FakeWindows::classes.end(), class_name);
    return found == FakeWindows::classes.end() ? nullptr : HandleOf(*found);
}

BOOL SetForegroundWindow(HWND window) {
    FakeWindows::calls.push_back("front " + WideToUtf8(*reinterpret_cast<std::wstring *>(window)));
    return TRUE;
}

void Sleep(DWORD milliseconds) {
    FakeWindows::calls.push_back("sleep " + std::to_string(milliseconds));
}
