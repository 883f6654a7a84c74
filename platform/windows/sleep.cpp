#include <chrono>
#include <thread>

#include "platform/windows/windows_api.h"

// In a file of its own, like the window operations: a test program that defines it itself does not have to
// wait.
void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
