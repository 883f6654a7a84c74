#include "tests/driver/fake_windows.h"

#include <algorithm>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

std::vector<std::wstring> classes;
std::vector<std::string> calls;
std::wstring foreground = L"other";

// A window is known by the name of its class.
HWND HandleOf(std::wstring &name) {
    return reinterpret_cast<HWND>(&name);
}

}  // namespace

FakeWindows::FakeWindows(const std::vector<std::wstring> &itunes_classes) {
    classes = itunes_classes;
    calls.clear();
}
FakeWindows::~FakeWindows() {
    classes.clear();
}
const std::vector<std::string> &FakeWindows::Calls() const {
    return calls;
}

HWND GetForegroundWindow() {
    return HandleOf(foreground);
}

HWND FindWindowW(LPCWSTR class_name, LPCWSTR title) {
    calls.push_back("find " + WideToUtf8(class_name) + "/" + WideToUtf8(title));
    const auto found = std::find(classes.begin(), classes.end(), class_name);
    return found == classes.end() ? nullptr : HandleOf(*found);
}

BOOL SetForegroundWindow(HWND window) {
    calls.push_back("front " + WideToUtf8(*reinterpret_cast<std::wstring *>(window)));
    return TRUE;
}

void Sleep(DWORD milliseconds) {
    calls.push_back("sleep " + std::to_string(milliseconds));
}
