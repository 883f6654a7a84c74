#include "content/application.h"

#include <optional>
#include <utility>

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

// The same file may be listed in other letters, from before it was copied anew.
void DeleteOtherFile(const DriverPath *app, const std::string &path) {
    const auto location = FindAttribute(app, "location");
    if (!location || _stricmp(location->data(), path.c_str()) == 0) return;
    // One that cannot be deleted stays; iTunes goes by the newest.
    _wremove(Utf8ToWide(*location).c_str());
}

LoosePath CreateApp(LibraryDriver *driver, const std::string &path, const std::string &file_name,
                    const AppInfo &info) {
    const FileCategory kind = GetFileCategory(path).value_or(FileCategory{0, 0});
    LoosePath app = CreateScannedEntry(driver, node_kind::kApplicationFile, kind.category, kind.subcategory);
    if (const auto size = SizeOfFile(path)) AddAttribute(app.get(), "st_size", std::to_string(*size).c_str());
    AddAttribute(app.get(), "location", path.c_str());
    AddIfPresent(app.get(), "bundleId", info.bundle_id);
    AddIfPresent(app.get(), "bundleVersion", info.bundle_version);
    AddAttribute(app.get(), "media_has_thumb", "false");
    AddAttribute(app.get(), "name", info.display_name.value_or(file_name).c_str());
    AddIfPresent(app.get(), "genre", info.genre);
    AddAppThumb(app.get(), info, path);
    return app;
}

}  // namespace

int32_t AddLocalApp(DriverPath *app_category, const std::string &path) {
    if (IsLocationKnown(app_category, path)) return 0;
    const std::string file_name(FileNameOfPath(path));
    const auto stamp = StampOfFile(path);
    LoosePath app = stamp ? TakeKeptEntry(app_category->owner, path, *stamp) : nullptr;
    if (app == nullptr) {
        AppInfo info;
        const int32_t result = ReadAppInfo(path, info);
        if (result != 0) return result;
        app = CreateApp(app_category->owner, path, file_name, info);
    }
    DriverPath *entry = AppendChild(app_category, file_name.c_str(), std::move(app));
    if (stamp) KeepEntry(entry, path, *stamp);
    return 0;
}

int32_t RemoveOlderAppFiles(LibraryDriver *driver, const std::string &path) {
    AppInfo info;
    const int32_t result = ReadAppInfo(path, info);
    if (result != 0) return result;
    const DriverPath *apps = FindCategoryPath(driver, node_subcategory::kApplication);
    if (apps == nullptr || !info.bundle_id) return 0;
    for (int32_t i = ChildCount(apps) - 1; i >= 0; --i) {
        const DriverPath *app = ChildAt(apps, i);
        if (app != nullptr && FindAttribute(app, "bundleId") == *info.bundle_id) DeleteOtherFile(app, path);
    }
    return 0;
}
