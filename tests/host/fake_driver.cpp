// A driver with the thirteen exports and a tree from the script in fake_tree.cpp. What it does otherwise is
// told by environment variables:
//   FAKE_DRIVER_RESULT    InitializeDriverPath logs a line and gives this number
//   FAKE_DRIVER_SNAPSHOT  a folder into which it copies what the environment points to, links as links
//   FAKE_DRIVER_FILES     see FakeTree
//   and those of FakeCopies
// A path, stream or batch that is still open at the end is a fault of the host, told on standard error.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "driver/itunes_driver.h"
#include "tests/host/fake_copies.h"
#include "tests/host/fake_tree.h"

struct LibraryDriver {
    explicit LibraryDriver(std::size_t many_files) : tree(many_files) {}
    FakeTree tree;
    FakeCopies copies;
    int open_streams = 0;
};

struct DriverStream {
    LibraryDriver *driver;
    const DriverPath *node;
    std::size_t position = 0;
};

namespace {

namespace fs = std::filesystem;

std::string Variable(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

void TakeSnapshot(const fs::path &target) {
    for (const char *name : {"APPDATA", "TEMP", "XDG_CONFIG_HOME", "WINEPREFIX"}) {
        const std::string folder = Variable(name);
        if (folder.empty() || !fs::exists(folder)) continue;
        fs::copy(folder, target / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    }
    // The folders beside the preferences: the library and its media.
    const fs::path root = fs::path(Variable("APPDATA")).parent_path();
    for (const char *name : {"library", "media", "music"}) {
        if (!fs::exists(root / name)) continue;
        fs::copy(root / name, target / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    }
}

}  // namespace

int32_t InitializeDriverPath(DriverStartupCallback, void *, uintptr_t, LibraryDriver **driver) {
    WriteVelmarLog("%s", "[fake] starting");
    if (const std::string folder = Variable("FAKE_DRIVER_SNAPSHOT"); !folder.empty()) TakeSnapshot(folder);
    if (const std::string result = Variable("FAKE_DRIVER_RESULT"); !result.empty()) {
        WriteVelmarLog("%s", "[fake] Default iTunes Library XML: C:\\Music\\Library.xml");
        WriteVelmarLog("%s", "[fake] the library is bad \x1b[31m");
        return std::stoi(result);
    }
    const std::string files = Variable("FAKE_DRIVER_FILES");
    *driver = new LibraryDriver(files.empty() ? 0 : std::stoul(files));
    (*driver)->tree.Rescan((*driver)->copies.folder());
    return 0;
}

int32_t UninitializeDriverPath(LibraryDriver *driver) {
    if (driver == nullptr) return 1;
    if (driver->open_streams != 0 || driver->tree.open_count() != 0 || driver->copies.open())
        std::fputs("FAULT: left open\n", stderr);
    delete driver;
    return 0;
}

int32_t OpenDriverPath(LibraryDriver *driver, int32_t, const char *path_text, DriverPath **path) {
    *path = driver->tree.Walk(path_text != nullptr ? path_text : "");
    if (*path == nullptr) return -2;
    ++(*path)->open_count;
    return 0;
}

int32_t CloseDriverPath(DriverPath *path) {
    if (path == nullptr) return -1;
    --path->open_count;
    return 0;
}

int32_t GetDriverPathInfo(DriverPath *path, DriverPathInfo *info) {
    *info = {nullptr, path->kind, path->category, path->subcategory, 0, path->names, path->attributes, 0};
    return 0;
}

int32_t StartPathCopy(LibraryDriver *driver, uintptr_t, CopyProgressCallback callback, void *context,
                      int32_t chunk_size) {
    driver->copies.Start(callback, context, chunk_size);
    return 0;
}

int32_t CopyDriverPath(LibraryDriver *driver, int32_t, const char *path_text, const CopySourceInfo *source) {
    return driver->copies.Copy(path_text, *source);
}

int32_t FinishPathCopy(LibraryDriver *driver, uintptr_t) {
    driver->copies.Finish();
    driver->tree.Rescan(driver->copies.folder());
    return 0;
}

int32_t OpenDriverStream(LibraryDriver *driver, int32_t, const char *path_text, DriverStream **stream) {
    const DriverPath *node = driver->tree.Walk(path_text);
    if (node == nullptr || node->content == FakeContent::kNone) {
        WriteVelmarLog("%s", "[fake] no stream");
        return -1;
    }
    ++driver->open_streams;
    *stream = new DriverStream{driver, node};
    return 0;
}

int32_t CloseDriverStream(DriverStream *stream) {
    if (stream == nullptr) return 1;
    --stream->driver->open_streams;
    delete stream;
    return 0;
}

int32_t ReadDriverStream(DriverStream *stream, void *buffer, int32_t count) {
    if (stream->node->content == FakeContent::kEndless) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::memset(buffer, 'e', static_cast<std::size_t>(count));
        return count;
    }
    const std::string &text = stream->node->text;
    if (stream->position >= text.size()) return stream->node->content == FakeContent::kBreaks ? -1 : 0;
    const std::size_t length = std::min(static_cast<std::size_t>(count), text.size() - stream->position);
    std::memcpy(buffer, text.data() + stream->position, length);
    stream->position += length;
    return static_cast<int32_t>(length);
}

int32_t WriteDriverStream(DriverStream *, const void *, int32_t) {
    return 0;
}

int32_t SeekDriverStream(DriverStream *stream, int64_t offset, int32_t origin) {
    if (origin != 0 || offset < 0) return -1;
    stream->position = static_cast<std::size_t>(offset);
    return 0;
}
