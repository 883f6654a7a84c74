#ifndef PLATFORM_WINDOWS_FILE_DESCRIPTOR_H
#define PLATFORM_WINDOWS_FILE_DESCRIPTOR_H

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

// A descriptor that closes itself. Negative if there is none.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : number_(other.Release()) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    // Errors are dropped here on purpose; whoever has written something calls Close.
    ~FileDescriptor() { Close(); }

    explicit operator bool() const { return number_ >= 0; }
    int get() const { return number_; }
    int Release() { return std::exchange(number_, -1); }
    // False if the system could not keep what was written. The descriptor is gone in any case, so an
    // interrupted call is not repeated.
    bool Close() {
        const int number = Release();
        return number >= 0 && (close(number) == 0 || errno == EINTR);
    }

  private:
    int number_ = -1;
};

struct DirectoryCloser {
    void operator()(DIR *directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// Repeats a system call that a signal has interrupted.
template <typename Call>
auto Uninterrupted(const Call &call) {
    while (true) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

#endif
