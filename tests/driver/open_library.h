#ifndef TESTS_DRIVER_OPEN_LIBRARY_H
#define TESTS_DRIVER_OPEN_LIBRARY_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "driver/itunes_driver.h"

// The library of the environment, opened for a scope. `result` is that of the start.
struct OpenLibrary {
    LibraryDriver *driver = nullptr;
    const int32_t result = InitializeDriverPath(nullptr, nullptr, 0, &driver);

    ~OpenLibrary() {
        if (driver != nullptr) UninitializeDriverPath(driver);
    }
};

// A path opened for a scope; null when there is none.
class OpenedPath {
  public:
    OpenedPath(LibraryDriver *driver, const char *text) { OpenDriverPath(driver, 0, text, &path_); }
    ~OpenedPath() {
        if (path_ != nullptr) CloseDriverPath(path_);
    }

    DriverPath *get() const { return path_; }
    DriverPathInfo Info() const {
        DriverPathInfo info = {};
        GetDriverPathInfo(path_, &info);
        return info;
    }
    std::vector<int32_t> Numbers() const { return {Info().kind, Info().category, Info().subcategory}; }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        void *name = nullptr;
        for (int32_t i = 0; path_ != nullptr && GetVelmarArrayItem(Info().names, i, &name) == 0; ++i)
            names.emplace_back(static_cast<const char *>(name));
        return names;
    }
    std::optional<std::string> Attribute(const char *key) const {
        const char *value = nullptr;
        const bool is_there =
            path_ != nullptr && FindVelmarAttributeValue(Info().attributes, key, &value) == 0;
        return is_there ? std::optional<std::string>(value) : std::nullopt;
    }

  private:
    DriverPath *path_ = nullptr;
};

// Everything that a stream gives, read in pieces of `chunk` bytes; empty when it does not open.
inline std::optional<std::string> StreamBytes(LibraryDriver *driver, const std::string &path, int32_t chunk) {
    DriverStream *stream = nullptr;
    if (OpenDriverStream(driver, 0, path.c_str(), &stream) != 0) return std::nullopt;
    std::string bytes, piece(static_cast<size_t>(chunk), '\0');
    while (const int32_t count = ReadDriverStream(stream, piece.data(), chunk))
        bytes.append(piece, 0, static_cast<size_t>(count));
    EXPECT_EQ(CloseDriverStream(stream), 0);
    return bytes;
}

#endif
