#ifndef HOST_TREE_WALK_H
#define HOST_TREE_WALK_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/library_session.h"
#include "host/node.h"

namespace velmarhost {

// Whether the path text of an entry leads to it. A path is names joined by "/", and of equal names the first
// wins, so not every entry can be reached.
enum class Reach {
    kReached,
    kSlashInName,
    kHiddenByEarlier,  // an earlier entry of the folder has the same name
    kNoName,
    kNotOpened,
    kTooDeep,
};

// Words for an entry that cannot be reached.
std::string_view ReachWords(Reach reach);

struct WalkEntry {
    std::string path;
    std::string_view name;
    std::size_t depth;  // 0 for the node at which the walk begins
    bool last;          // of its folder
    Reach reach;
    std::optional<Node> node;  // set when reached
};

struct WalkLimits {
    std::size_t max_depth = static_cast<std::size_t>(-1);
    bool enter_files = false;  // goes on to what lies below a file: its thumbnails
};

// Walks a subtree, each node before its children and the children in the driver's order. It keeps one open
// node for each level and needs no more, however large the tree is.
//
// The same file twice in one list is no hidden entry: the path of the second one leads to that file as well.
class TreeWalk {
  public:
    TreeWalk(const LibrarySession &session, std::string path, WalkLimits limits = {});

    // The next entry, valid until the next call; null at the end. The first one is the node at `path` itself,
    // and there is none when nothing has that path.
    const WalkEntry *Next();

  private:
    struct Level {
        Node node;
        std::string path;
        std::size_t next_child = 0;
        std::unordered_set<std::string_view> names;  // of the children so far
    };

    void OpenStart();
    void OpenChild(Level &level);
    Reach ReachOf(const Level &level, std::string_view name) const;
    void Descend();

    const LibrarySession &session_;
    WalkLimits limits_;
    std::vector<Level> levels_;
    WalkEntry entry_;
    bool started_ = false;
};

}  // namespace velmarhost

#endif
