#include "artwork/media_folder_walk.h"

#include "artwork/local_file.h"
#include "content/folder_walk.h"
#include "content/path_text.h"

int32_t WalkMediaFolder(LibraryDriver *driver, const std::optional<std::string> &folder, bool recursive) {
    if (!folder) return -1;
    const FolderDepth depth = recursive ? FolderDepth::kAllLevels : FolderDepth::kOneLevel;
    WalkFolder(Utf8ToWide(*folder), depth,
               [driver](const std::wstring &parent, const WIN32_FIND_DATAW &file) {
                   ImportLocalFile(driver, WideToUtf8(parent) + "\\" + WideToUtf8(file.cFileName));
               });
    return 0;
}
