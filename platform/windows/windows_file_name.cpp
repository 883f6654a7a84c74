#include <algorithm>

#include "platform/windows/native_path.h"

bool IsWindowsFileName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("<>:\"|?*/\\").find(c) != std::string_view::npos;
    });
}
