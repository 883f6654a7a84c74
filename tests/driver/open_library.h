#ifndef TESTS_DRIVER_OPEN_LIBRARY_H
#define TESTS_DRIVER_OPEN_LIBRARY_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "driver/itunes_driver.h"

// The library of the environment, opened for a scope. `result` is that of the start.
class OpenLibrary {
  public:
    OpenLibrary() : result(InitializeDriverPath(nullptr, nullptr, 0, &driver_)) {}
    ~OpenLibrary() {
        if (driver_ != nullptr) UninitializeDriverPath(driver_);
    }
    OpenLibrary(const OpenLibrary &) = delete;
    OpenLibrary &operator=(const OpenLibrary &) = delete;

    LibraryDriver *driver() const { return driver_; }

  private:
    LibraryDriver *driver_ = nullptr;

  public:
    const int32_t result;
};

// A path opened for a scope; null when there is none.
class OpenedPath {
  public:
    OpenedPath(LibraryDriver *driver, const char *text) { OpenDriverPath(driver, 0, text, &path_); }
    ~OpenedPath() {
        if (path_ != nullptr) CloseDriverPath(path_);
    }
    OpenedPath(const OpenedPath &) = delete;
    OpenedPath &operator=(const OpenedPath &) = delete;

    DriverPath *get() const { return path_; }
    DriverPathInfo Info() const {
        DriverPathInfo info = {};
        GetDriverPathInfo(path_, &info);
        return info;
    }
    std::vector<int32_t> Numbers() const {
        const DriverPathInfo info = Info();
        return {info.kind, info.category, info.subcategory};
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        const DriverPathInfo info = Info();
        for (int32_t i = 0; i < GetVelmarArraySize(info.names); ++i) {
            void *name = nullptr;
            GetVelmarArrayItem(info.names, i, &name);
            names.emplace_back(static_cast<const char *>(name));
        }
        return names;
    }
    std::optional<std::string> Attribute(const char *key) const {
        const char *value = nullptr;
        if (path_ == nullptr || FindVelmarAttributeValue(Info().attributes, key, &value) != 0)
            return std::nullopt;
        return value;
    }

  private:
    DriverPath *path_ = nullptr;
};

// Everything that a stream gives, read in pieces of `chunk` bytes; empty when it does not open.
inline std::optional<std::string> StreamBytes(LibraryDriver *driver, const std::string &path, int32_t chunk) {
    DriverStream *stream = nullptr;
    if (OpenDriverStream(driver, 0, path.c_str(), &stream) != 0) return std::nullopt;
    std::string bytes;
    std::string piece(static_cast<size_t>(chunk), '\0');
    while (const int32_t count = ReadDriverStream(stream, piece.data(), chunk)) {
        bytes.append(piece, 0, static_cast<size_t>(count));
    }
    EXPECT_EQ(CloseDriverStream(stream), 0);
    return bytes;
}

#endif
