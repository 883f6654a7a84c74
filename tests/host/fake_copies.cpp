#include "tests/host/fake_copies.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string Variable(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::vector<std::string> Words(const char *variable) {
    std::istringstream stream(Variable(variable));
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

int32_t WantedError(const std::string &name) {
    for (const std::string &word : Words("FAKE_DRIVER_COPY_ERRORS")) {
        if (word.starts_with(name + "=")) return std::stoi(word.substr(name.size() + 1));
    }
    return 0;
}

std::string BehindLastSlash(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

std::string TargetName(const CopySourceInfo &source) {
    if (source.source_type == 1) return BehindLastSlash(source.source_path);
    const char *location = "";
    FindVelmarAttributeValue(source.source.attributes, "location", &location);
    const char *name = nullptr;
    if (FindVelmarAttributeValue(source.source.attributes, "name", &name) != 0)
        return BehindLastSlash(location);
    std::string target = name;
    for (char &character : target) {
        if (std::string_view("/\\:*\"<>|").find(character) != std::string_view::npos) character = '_';
    }
    const std::size_t dot = std::string_view(location).rfind('.');
    return dot == std::string_view::npos ? target : target + (location + dot);
}

fs::path UniquePath(const fs::path &wanted) {
    fs::path path = wanted;
    for (int i = 1; fs::exists(fs::symlink_status(path)); ++i)
        path =
            wanted.parent_path() / (wanted.stem().string() + std::to_string(i) + wanted.extension().string());
    return path;
}

}  // namespace

struct FakeCopies::Source {
    const CopySourceInfo &info;
    std::ifstream file;
    int32_t error;

    std::streamsize Read(std::vector<char> &buffer) {
        const auto count = static_cast<int32_t>(buffer.size());
        if (info.source_type == 0) return info.read_function(info.source_handle, buffer.data(), count);
        return file.read(buffer.data(), count).gcount();
    }
};

FakeCopies::FakeCopies() : folder_(Variable("FAKE_DRIVER_ADD_FOLDER")) {
    const fs::path in_private =
        fs::path(Variable("APPDATA")).parent_path() / "media" / "Automatically Add to iTunes";
    if (folder_.empty() && fs::is_directory(in_private)) folder_ = in_private;
}

void FakeCopies::Start(CopyProgressCallback callback, void *context, int32_t chunk_size) {
    callback_ = callback;
    context_ = context;
    chunk_size_ = chunk_size;
}

void FakeCopies::Finish() {
    callback_ = nullptr;
    for (const std::string &name : Words("FAKE_DRIVER_TAKES"))
        fs::remove(folder_ / name);
}

int32_t FakeCopies::Tell(int32_t state, int32_t error) {
    progress_.copy_state = state;
    progress_.copy_error = error;
    return callback_(&progress_, context_);
}

int32_t FakeCopies::Copy(const char *path_text, const CopySourceInfo &info) {
    const std::string name = TargetName(info);
    WriteVelmarLog("[fake] %s of type %d for %s", name.c_str(), info.source_type, path_text);
    progress_ = {};
    int32_t result = Tell(0, 0);
    if (result == -1 || result == 2) return result;
    Source source{info, {}, WantedError(name)};
    if (info.source_type == 1) source.file.open(info.source_path, std::ios::binary);
    if (source.error == 2 || !source.file) return Tell(3, 2);
    const fs::path target = UniquePath(folder_ / name);
    if (source.error == 3 || !fs::is_directory(folder_)) {
        WriteVelmarLog("[fake] Open file \"%s\" failed", target.c_str());
        return Tell(3, 3);
    }
    result = Transfer(source, target);
    if (progress_.bytes_copied < info.source_size) fs::remove(target);
    return result == 0 ? Tell(2, progress_.copy_error) : result;
}

int32_t FakeCopies::Transfer(Source &source, const fs::path &target) {
    const std::string pause = Variable("FAKE_DRIVER_COPY_PAUSE");
    std::ofstream file(target, std::ios::binary);
    std::vector<char> buffer(static_cast<std::size_t>(chunk_size_));
    int32_t result = 0;
    while (progress_.bytes_copied < source.info.source_size) {
        if (!pause.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(pause)));
        const std::streamsize count = source.Read(buffer);
        if (count == 0 || source.error == 5) return Tell(3, 5);
        file.write(buffer.data(), count);
        if (source.error == 6) return Tell(3, 6);
        progress_.bytes_copied += count;
        result = Tell(1, 0);
        if (result == -1 || result == 2) break;
    }
    return result;
}
