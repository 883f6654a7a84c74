#ifndef HOST_MODIFIED_TIME_H
#define HOST_MODIFIED_TIME_H

#include <cstdint>
#include <optional>

#include "host/node.h"

namespace velmarhost {

// Seconds since 1970 of a `st_mtime`. A library in XML has them there; "iTunes Library.itl" has seconds since
// 1904 in local time, and nothing in the tree tells of which the library is. From 1972 on the latter are
// numbers that the former reach in 2038.
int64_t TimeOfNumber(int64_t number);

// When the file behind a node was changed; empty where nothing is known of that.
std::optional<int64_t> ModifiedTime(const Node &node);

}  // namespace velmarhost

#endif
