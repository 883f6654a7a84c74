#ifndef PLATFORM_WINDOWS_FOLDER_IDENTITY_H
#define PLATFORM_WINDOWS_FOLDER_IDENTITY_H

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/windows/windows_api.h"

// Which folder a path leads to, links followed: two paths to one folder have equal identities. A walk that
// keeps the identities of the folders it has entered meets no folder twice, whatever links lie in its way.
struct FolderIdentity {
    uint64_t volume;
    uint64_t index;
    auto operator<=>(const FolderIdentity &) const = default;
};

// Empty if the path leads to no folder.
std::optional<FolderIdentity> IdentifyFolder(const std::wstring &path);

// The same for the folder that a search runs through, which spares the system most of the way where it lets
// us ask about the search itself. `folder` is that folder's path.
std::optional<FolderIdentity> IdentifySearch(HANDLE search, const std::wstring &folder);

#endif
