#ifndef HOST_SUGGESTION_H
#define HOST_SUGGESTION_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_error.h"
#include "host/library_session.h"

namespace velmarhost {

// The candidate that a user most likely meant, when one is close enough: letter case aside, a few letters
// changed.
std::optional<std::string> ClosestName(std::string_view wanted,
                                       const std::vector<std::string_view> &candidates);

// The error for a path that is not there, with the nearest one that is.
HostError NoSuchPath(const LibrarySession &session, const std::string &path);

// The node at a path that the user named. Throws NoSuchPath.
Node OpenOrExplain(const LibrarySession &session, const std::string &path);

}  // namespace velmarhost

#endif
