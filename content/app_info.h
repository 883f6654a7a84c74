#ifndef CONTENT_APP_INFO_H
#define CONTENT_APP_INFO_H

#include <cstdint>
#include <optional>
#include <string>

#include "content/zip_archive.h"
#include "platform/core_foundation/cf_owner.h"

// What the archive of an application says of itself.
struct AppInfo {
    std::optional<std::string> bundle_id;
    std::optional<std::string> display_name;  // in the user's language, where the application has it
    std::optional<std::string> bundle_version;
    std::optional<std::string> icon;  // name of an entry, or a URL
    uint32_t icon_size = 0;           // bytes of the entry once unpacked; 1 for a URL
    bool is_artwork = false;          // `icon` names an entry
    std::optional<std::string> genre;
};

// Reads the archive at a path in UTF-8. 0; -1 no zip archive; -3 it has no "Info.plist" where an application
// has it; -4 that is no dictionary. Only a success changes `info`. Anything else that is damaged or missing
// leaves its field empty.
int32_t ReadAppInfo(const std::string &path, AppInfo &info);

// The property list, of any form, in the entry at the cursor; null if that is none, or larger than any that
// describes an application.
CFOwner ReadEntryPropertyList(unzFile zip);

#endif
