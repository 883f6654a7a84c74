#include "host/tree_walk.h"

#include <utility>

#include "platform/limits.h"

namespace velmarhost {

std::string_view ReachWords(Reach reach) {
    switch (reach) {
        case Reach::kReached:
            return "reached";
        case Reach::kSlashInName:
            return "cannot be reached: its name contains \"/\"";
        case Reach::kHiddenByEarlier:
            return "cannot be reached: an earlier entry has the same name";
        case Reach::kNoName:
            return "cannot be reached: it has no name";
        case Reach::kNotOpened:
            return "cannot be opened";
        case Reach::kTooDeep:
            return "lies too deep";
    }
    return "unknown";
}

TreeWalk::TreeWalk(const LibrarySession &session, std::string path, WalkLimits limits)
    : session_(session), limits_(limits), entry_{std::move(path),   {},          0, true,
                                                 Reach::kNotOpened, std::nullopt} {}

const WalkEntry *TreeWalk::Next() {
    if (!started_) {
        started_ = true;
        OpenStart();
        return entry_.node ? &entry_ : nullptr;
    }
    Descend();
    while (!levels_.empty() && levels_.back().next_child >= levels_.back().node.ChildCount())
        levels_.pop_back();
    if (levels_.empty()) return nullptr;
    OpenChild(levels_.back());
    return &entry_;
}

void TreeWalk::OpenStart() {
    if (std::optional<Node> node = session_.Open(entry_.path)) {
        entry_.node.emplace(std::move(*node));
        entry_.reach = Reach::kReached;
    }
    entry_.name = std::string_view(entry_.path).substr(entry_.path.rfind('/') + 1);
}

// Makes the entry that was given out last the folder to go on in, if it is one.
void TreeWalk::Descend() {
    if (!entry_.node || entry_.depth >= limits_.max_depth) return;
    if (entry_.node->IsFile() && !limits_.enter_files) return;
    levels_.push_back({*std::exchange(entry_.node, std::nullopt), entry_.path, 0, {}});
}

Reach TreeWalk::ReachOf(const Level &level, std::string_view name) const {
    if (name.empty()) return Reach::kNoName;
    if (name.find('/') != std::string_view::npos) return Reach::kSlashInName;
    if (limits::kTreeDepth.IsPassedBy(levels_.size())) return Reach::kTooDeep;
    return level.names.contains(name) ? Reach::kHiddenByEarlier : Reach::kReached;
}

void TreeWalk::OpenChild(Level &level) {
    const std::string_view name = level.node.ChildName(level.next_child++);
    entry_.name = name;
    entry_.depth = levels_.size();
    entry_.last = level.next_child >= level.node.ChildCount();
    entry_.path = level.path.empty() ? std::string(name) : level.path + "/" + std::string(name);
    entry_.reach = ReachOf(level, name);
    entry_.node.reset();
    level.names.insert(name);
    if (entry_.reach != Reach::kReached && entry_.reach != Reach::kHiddenByEarlier) return;
    std::optional<Node> node = session_.Open(entry_.path);
    if (!node) {
        entry_.reach = Reach::kNotOpened;
    } else if (entry_.reach == Reach::kReached || node->IsFile()) {
        entry_.node.emplace(std::move(*node));
        entry_.reach = Reach::kReached;
    }
}

}  // namespace velmarhost
