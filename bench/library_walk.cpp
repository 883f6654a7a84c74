#include "bench/library_walk.h"

#include <utility>

#include "bench/measure.h"

LoadedLibrary::LoadedLibrary(const LibraryPlace &place) {
    const ScopedEnvironmentValues environment(place.environment);
    Require(InitializeDriverPath(nullptr, nullptr, 0, &driver_) == 0, "a library cannot be loaded");
}

LoadedLibrary::~LoadedLibrary() {
    UninitializeDriverPath(driver_);
}

std::vector<std::string> LoadedLibrary::MusicPaths() const {
    DriverPath *music = nullptr;
    Require(OpenDriverPath(driver_, 0, "library/music", &music) == 0, "the library has no music");
    DriverPathInfo info{};
    GetDriverPathInfo(music, &info);
    std::vector<std::string> paths;
    for (int32_t i = 0; i < GetVelmarArraySize(info.names); ++i) {
        void *name = nullptr;
        GetVelmarArrayItem(info.names, i, &name);
        paths.push_back(std::string("library/music/") + static_cast<const char *>(name));
    }
    CloseDriverPath(music);
    return paths;
}

std::string LoadedLibrary::Attribute(const std::string &path, const char *key) const {
    DriverPath *node = nullptr;
    Require(OpenDriverPath(driver_, 0, path.c_str(), &node) == 0, "a path cannot be opened");
    DriverPathInfo info{};
    GetDriverPathInfo(node, &info);
    const char *value = "";
    FindVelmarAttributeValue(info.attributes, key, &value);
    std::string text = value;
    CloseDriverPath(node);
    return text;
}

std::size_t LoadedLibrary::WalkAll() const {
    std::vector<std::string> waiting{""};
    std::size_t count = 0;
    while (!waiting.empty()) {
        const std::string path = std::move(waiting.back());
        waiting.pop_back();
        ++count;
        DriverPath *node = nullptr;
        DriverPathInfo info{};
        Require(OpenDriverPath(driver_, 0, path.c_str(), &node) == 0, "a path cannot be opened");
        Require(GetDriverPathInfo(node, &info) == 0, "a node says nothing");
        for (int32_t i = GetVelmarArraySize(info.names) - 1; i >= 0; --i) {
            void *name = nullptr;
            GetVelmarArrayItem(info.names, i, &name);
            waiting.push_back((path.empty() ? path : path + "/") + static_cast<const char *>(name));
        }
        CloseDriverPath(node);
    }
    return count;
}

void LoadedLibrary::Open(const std::string &path) const {
    DriverPath *node = nullptr;
    Require(OpenDriverPath(driver_, 0, path.c_str(), &node) == 0, "a path cannot be opened");
    CloseDriverPath(node);
}
