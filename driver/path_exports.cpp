// Handles of paths: the walk over a path text, and what the host learns of a node.
#include <cstdlib>
#include <string_view>

#include "artwork/artwork_scan.h"
#include "artwork/book_thumbnail.h"
#include "artwork/track_thumbnails.h"
#include "driver/driver_log.h"
#include "driver/driver_path.h"
#include "driver/export_guard.h"
#include "driver/itunes_driver.h"
#include "driver/library_driver.h"
#include "platform/windows/windows_api.h"

namespace {

// What a walk over a path text has come past.
struct WalkMarks {
    bool past_file = false;
    bool inside_book = false;
};

// Nodes "thumb" of the tracks come into being when a walk first stands in a file, and the thumbnails below
// such a node when a walk first enters it. Their failures show in what the walk finds next.
void PrepareNode(LibraryDriver *driver, DriverPath *path, bool wants_thumbnails, WalkMarks &marks) {
    if (path->category == node_category::kBook) marks.inside_book = true;
    if (path->kind == node_kind::kFile) {
        marks.past_file = true;
        EnsureAlbumArtworkScan(driver);
    }
    if (!wants_thumbnails) return;
    if (marks.inside_book) {
        LoadBookThumbnail(driver, path);
    } else {
        LoadTrackThumbnails(driver, path);
    }
}

// The node that the text names, or null. A trailing "/" is passed over; other empty segments are names like
// any other.
DriverPath *WalkPath(LibraryDriver *driver, std::string_view rest) {
    DriverPath *path = driver->root;
    WalkMarks marks;
    while (path != nullptr && !rest.empty()) {
        const size_t end = rest.find('/');
        const std::string_view segment = rest.substr(0, end);
        const bool wants_thumbnails = marks.past_file && segment == "thumb";
        path = FindChild(path, segment);
        if (path != nullptr) PrepareNode(driver, path, wants_thumbnails, marks);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return path;
}

int32_t Open(LibraryDriver *driver, const char *path_text, DriverPath **out) {
    if (driver == nullptr) {
        WriteDriverLog("iTunes driver is not available");
        return -1;
    }
    if (out == nullptr) {
        WriteDriverLog("Receive iTunes path address is zero");
        return -1;
    }
    DriverPath *path = WalkPath(driver, path_text == nullptr ? "" : path_text);
    *out = path;
    if (path == nullptr) return -2;
    if (path->open_count++ == 0 && path_text != nullptr) path->open_path = _strdup(path_text);
    return 0;
}

int32_t Close(DriverPath *path) {
    if (path == nullptr) {
        WriteDriverLog("iTunes path is not available");
        return -1;
    }
    if (--path->open_count == 0) {
        std::free(path->open_path);
        path->open_path = nullptr;
        if (path->dropped) ReleaseDroppedPath(path);
    }
    return 0;
}

int32_t GetInfo(DriverPath *path, DriverPathInfo *info) {
    if (path == nullptr) {
        WriteDriverLog("iTunes path is not available");
        return -1;
    }
    if (info == nullptr) {
        WriteDriverLog("Path info is zero");
        return -1;
    }
    *info = {path->open_path,  path->kind, path->category, path->subcategory, 0, path->names,
             path->attributes, 0};
    return 0;
}

}  // namespace

int32_t OpenDriverPath(LibraryDriver *driver, int32_t /*device_index*/, const char *path_text,
                       DriverPath **path) {
    return GuardExport([=] { return Open(driver, path_text, path); });
}

int32_t CloseDriverPath(DriverPath *path) {
    return GuardExport([=] { return Close(path); });
}

int32_t GetDriverPathInfo(DriverPath *path, DriverPathInfo *info) {
    return GuardExport([=] { return GetInfo(path, info); });
}
