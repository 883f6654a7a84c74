#include "content/application_scan.h"

#include <optional>
#include <string>

#include "content/application.h"
#include "content/folder_walk.h"
#include "content/media_folder.h"
#include "content/path_text.h"
#include "driver/scanned_entries.h"

int32_t ScanApps(LibraryDriver *driver) {
    DriverPath *apps =
        EnsureCategoryPath(driver, "app", node_category::kApplication, node_subcategory::kApplication);
    if (apps == nullptr) return -1;
    const std::optional<std::string> media_folder = MediaFolder(driver);
    if (!media_folder) return 0;
    // Every file is tried, whatever its extension. One that is no application is left out of the tree.
    const auto visit = [=](const std::wstring &folder, const WIN32_FIND_DATAW &file) {
        AddLocalApp(apps, WideToUtf8(folder + L"\\" + file.cFileName));
    };
    WalkFolder(Utf8ToWide(*media_folder + "\\Mobile Applications"), FolderDepth::kOneLevel, visit);
    return 0;
}
