#include "fuzz/tree_check.h"

#include <charconv>
#include <optional>
#include <vector>

#include "driver/driver_path.h"
#include "fuzz/fuzz_target.h"

namespace {

// Enough for every thumbnail, and little enough for a fuzzer's pace.
constexpr int32_t kPieceBytes = 4096;
constexpr int kMostPieces = 64;

std::optional<int64_t> SizeOf(const DriverPathInfo &info) {
    const char *text = nullptr;
    if (FindVelmarAttributeValue(info.attributes, "st_size", &text) != 0) return std::nullopt;
    int64_t size = 0;
    std::from_chars(text, text + std::strlen(text), size);
    return size;
}

void CheckAttributes(const DriverPathInfo &info) {
    for (int32_t i = 0; i < GetVelmarAttributeSize(info.attributes); ++i) {
        const char *key = nullptr;
        const char *value = nullptr;
        Require(GetVelmarAttributeItem(info.attributes, i, &key, &value) == 0, "an item has key and value");
        Require(key != nullptr && value != nullptr && std::strlen(key) > 0, "neither is null");
    }
}

// The bytes from the position on; more than a limit are not read.
int64_t CountBytes(DriverStream *stream) {
    std::vector<char> piece(kPieceBytes);
    int64_t count = 0;
    for (int pieces = 0; pieces < kMostPieces; ++pieces) {
        const int32_t read = ReadDriverStream(stream, piece.data(), kPieceBytes);
        Require(read >= 0 && read <= kPieceBytes, "a read gives no more than there is room for");
        if (read == 0) break;
        count += read;
    }
    return count;
}

void CheckStream(LibraryDriver *driver, const std::string &path, const DriverPath *node, int64_t told_size) {
    DriverStream *stream = nullptr;
    if (OpenDriverStream(driver, 0, path.c_str(), &stream) != 0) return;
    const bool is_range = node->thumb_offset != 0;
    const int64_t most = told_size < 0 ? 0 : told_size;
    const int64_t whole = CountBytes(stream);
    Require(!is_range || whole <= most, "a thumbnail is no longer than its size");
    SeekDriverStream(stream, told_size / 2, 0);
    const int64_t part = CountBytes(stream);
    Require(!is_range || part <= most, "a part of a thumbnail is no longer than its size");
    SeekDriverStream(stream, -1, 2);
    CountBytes(stream);
    Require(CloseDriverStream(stream) == 0, "a stream closes");
}

void CheckNode(LibraryDriver *driver, const std::string &path, DriverPath *node, int depth);

void CheckChildren(LibraryDriver *driver, const std::string &path, const DriverPathInfo &info, int depth) {
    for (int32_t i = 0; i < GetVelmarArraySize(info.names); ++i) {
        void *item = nullptr;
        Require(GetVelmarArrayItem(info.names, i, &item) == 0, "each child has a name, or null");
        const std::string name = item == nullptr ? "" : static_cast<const char *>(item);
        // Such a name is there for the host to see and not to open.
        if (name.empty() || name.find('/') != std::string::npos) continue;
        const std::string child_path = ChildPath(path, name);
        DriverPath *child = nullptr;
        Require(OpenDriverPath(driver, 0, child_path.c_str(), &child) == 0, "a name that is listed opens");
        CheckNode(driver, child_path, child, depth + 1);
    }
}

void CheckNode(LibraryDriver *driver, const std::string &path, DriverPath *node, int depth) {
    constexpr int kDeepest = 16;
    DriverPathInfo info = {};
    Require(GetDriverPathInfo(node, &info) == 0, "an open path has an info");
    Require(info.open_path != nullptr, "an open path has a text");
    CheckAttributes(info);
    CheckStream(driver, path, node, SizeOf(info).value_or(0));
    if (depth < kDeepest) CheckChildren(driver, path, info, depth);
    Require(CloseDriverPath(node) == 0, "a path closes");
}

}  // namespace

std::string ChildPath(const std::string &path, const std::string &name) {
    const bool is_folder = path.empty() || path.ends_with('/');
    return path + (is_folder ? "" : "/") + name;
}

void CheckTree(LibraryDriver *driver, const std::string &path) {
    DriverPath *node = nullptr;
    if (OpenDriverPath(driver, 0, path.c_str(), &node) == 0) CheckNode(driver, path, node, 0);
}
