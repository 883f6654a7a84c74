#ifndef PLATFORM_WINDOWS_FILE_HANDLE_H
#define PLATFORM_WINDOWS_FILE_HANDLE_H

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

// A file that closes itself. Empty if it could not be opened.
class FileHandle {
  public:
    FileHandle() = default;
    FileHandle(const std::wstring &path, const wchar_t *mode) : file_(_wfopen(path.c_str(), mode)) {}
    FileHandle(std::string_view utf8_path, const wchar_t *mode) : FileHandle(Utf8ToWide(utf8_path), mode) {}
    FileHandle(FileHandle &&other) noexcept : file_(std::exchange(other.file_, nullptr)) {}
    FileHandle &operator=(FileHandle &&other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~FileHandle() { Close(); }

    explicit operator bool() const { return file_ != nullptr; }
    FILE *get() const { return file_; }

    // True if everything that was written has reached the system. An empty handle gives false.
    bool Close() {
        FILE *file = std::exchange(file_, nullptr);
        return file != nullptr && std::fclose(file) == 0;
    }

  private:
    FILE *file_ = nullptr;
};

#endif
