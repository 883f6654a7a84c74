#ifndef HOST_FILE_OWNER_H
#define HOST_FILE_OWNER_H

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace velmarhost {

struct FileCloser {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

// An open file, closed at the end of the scope.
using FileOwner = std::unique_ptr<std::FILE, FileCloser>;

// Null on failure, and errno tells why.
inline FileOwner OpenToRead(const std::filesystem::path &file) {
    errno = 0;
    return FileOwner(std::fopen(file.c_str(), "rb"));
}

}  // namespace velmarhost

#endif
