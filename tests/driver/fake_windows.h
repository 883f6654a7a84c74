#ifndef TESTS_DRIVER_FAKE_WINDOWS_H
#define TESTS_DRIVER_FAKE_WINDOWS_H

#include <string>
#include <utility>
#include <vector>

// The windows of a desktop, which a test program has in the place of the platform layer's own window
// operations: its source defines those and Sleep. While an object lives, the windows that it names are there;
// every call is noted, and none takes time.
struct FakeWindows {
    // Class names of the windows with the title "iTunes"; the window in the foreground has the name "other".
    explicit FakeWindows(std::vector<std::wstring> itunes_classes = {}) {
        classes = std::move(itunes_classes);
        calls.clear();
    }
    ~FakeWindows() { classes.clear(); }

    static inline std::vector<std::wstring> classes;
    // Such as "find ITWindow/iTunes", "front other", "sleep 1000".
    static inline std::vector<std::string> calls;
};

#endif
