#ifndef HOST_NODE_H
#define HOST_NODE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/driver_module.h"

namespace velmarhost {

// The node kinds that this host tells apart.
constexpr int32_t kFolderKind = 1;
constexpr int32_t kApplicationKind = 2;
constexpr int32_t kFileKind = 4;

// An open node of the tree, closed at the end of the scope. Texts that it gives out are the driver's own and
// live as long as the library is open.
class Node {
  public:
    // Takes over an open handle.
    Node(const DriverModule &driver, DriverPath *path);
    ~Node();
    Node(Node &&other) noexcept;
    Node &operator=(Node &&) = delete;
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    int32_t kind() const { return info_.kind; }
    int32_t category() const { return info_.category; }
    int32_t subcategory() const { return info_.subcategory; }
    bool IsFile() const { return kind() == kFileKind || kind() == kApplicationKind; }
    // The same for every path that leads to this node.
    const void *identity() const { return path_; }

    std::size_t ChildCount() const;
    // Empty for an entry that cannot be read.
    std::string_view ChildName(std::size_t index) const;

    // The first attribute with this key; empty when there is none.
    std::string_view Attribute(const char *key) const;
    std::optional<int64_t> NumberAttribute(const char *key) const;
    // All of them in the driver's order, a key twice if it stands there twice.
    std::vector<std::pair<std::string_view, std::string_view>> Attributes() const;

  private:
    const DriverModule *driver_;
    DriverPath *path_;
    DriverPathInfo info_{};
};

// "Artist - Title", or what there is of it; empty for a node without a title.
std::string NodeTitle(const Node &node);

}  // namespace velmarhost

#endif
