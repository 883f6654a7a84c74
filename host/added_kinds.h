#ifndef HOST_ADDED_KINDS_H
#define HOST_ADDED_KINDS_H

#include <optional>
#include <string_view>

namespace velmarhost {

// Where files of a kind show in the tree once they are added: the path of a category root. Empty for a name
// whose extension tells of no kind that iTunes takes.
std::optional<std::string_view> TreePathOfKind(std::string_view file_name);

}  // namespace velmarhost

#endif
