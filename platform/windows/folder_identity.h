#ifndef PLATFORM_WINDOWS_FOLDER_IDENTITY_H
#define PLATFORM_WINDOWS_FOLDER_IDENTITY_H

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

// Which folder a path leads to, links followed: two paths to one folder have equal identities. A walk that
// keeps the identities of the folders it has entered meets no folder twice, whatever links lie in its way.
struct FolderIdentity {
    uint64_t volume;
    uint64_t index;
    auto operator<=>(const FolderIdentity &) const = default;
};

// Empty if the path leads to no folder.
std::optional<FolderIdentity> IdentifyFolder(const std::wstring &path);

#endif
