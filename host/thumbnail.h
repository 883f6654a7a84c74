#ifndef HOST_THUMBNAIL_H
#define HOST_THUMBNAIL_H

#include <optional>
#include <string>
#include <string_view>

#include "host/library_session.h"
#include "host/node.h"
#include "host/picture.h"

namespace velmarhost {

// The names that a thumbnail can have. Which one is really the largest is the order of the pictures in the
// file of iTunes: the driver does not compare.
enum class ThumbnailSize { kSmall, kMiddle, kLarge };

std::string_view ThumbnailName(ThumbnailSize size);

// True when the driver knows of a picture; whether it can be read shows when it is read. For a track this
// holds once any path walk has gone into a file.
bool HasThumbnail(const Node &node);

// Reads a picture into memory. `path` names a file of the tree, its "thumb" node or one thumbnail. Without
// `size` it is the largest that there is. Throws HostError, whose code is kNoPath when nothing has the path.
Picture ReadThumbnail(LibrarySession &session, const std::string &path, std::optional<ThumbnailSize> size);

}  // namespace velmarhost

#endif
