#include "content/application.h"

#include <optional>

#include "content/app_info.h"
#include "content/app_thumb.h"
#include "content/file_kinds.h"
#include "content/file_stamp.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/path_lookup.h"
#include "driver/scanned_entries.h"
#include "platform/windows/windows_api.h"

namespace {

void AddIfPresent(DriverPath *app, const char *key, const std::optional<std::string> &value) {
    if (value) AddAttribute(app, key, value->c_str());
}

void AddSize(DriverPath *app, const std::string &path) {
    struct _stat64 status;
    if (_wstat64(Utf8ToWide(path).c_str(), &status) != 0) return;
    AddAttribute(app, "st_size", std::to_string(status.st_size).c_str());
}

DriverPath *CreateApp(LibraryDriver *driver, const std::string &path, const std::string &file_name,
                      const AppInfo &info) {
    const FileCategory kind = GetFileCategory(path).value_or(FileCategory{0, 0});
    DriverPath *app =
        CreateScannedEntry(driver, node_kind::kApplicationFile, kind.category, kind.subcategory);
    AddSize(app, path);
    AddAttribute(app, "location", path.c_str());
    AddIfPresent(app, "bundleId", info.bundle_id);
    AddIfPresent(app, "bundleVersion", info.bundle_version);
    AddAttribute(app, "media_has_thumb", "false");
    AddAttribute(app, "name", info.display_name.value_or(file_name).c_str());
    AddIfPresent(app, "genre", info.genre);
    AddAppThumb(app, info, path);
    return app;
}

}  // namespace

int32_t AddLocalApp(DriverPath *app_category, const std::string &path) {
    if (IsLocationKnown(app_category, path)) return 0;
    const std::string file_name(FileNameOfPath(path));
    const auto stamp = StampOfFile(path);
    DriverPath *app = stamp ? TakeKeptEntry(app_category->owner, path, *stamp) : nullptr;
    if (app == nullptr) {
        AppInfo info;
        const int32_t result = ReadAppInfo(path, info);
        if (result != 0) return result;
        app = CreateApp(app_category->owner, path, file_name, info);
        if (stamp) KeepEntry(app, path, *stamp);
    }
    AppendChild(app_category, file_name.c_str(), app);
    return 0;
}
