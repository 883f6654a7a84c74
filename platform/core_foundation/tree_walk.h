// A walk over a whole list, for the writers.
#ifndef PLATFORM_CORE_FOUNDATION_TREE_WALK_H
#define PLATFORM_CORE_FOUNDATION_TREE_WALK_H

#include <vector>

#include "platform/core_foundation/container.h"
#include "platform/core_foundation/value.h"

namespace core_foundation {

// Gives the values in the order of the text forms:
//
//   TreeWalk walk(root);
//   while (walk.Next()) ... walk.event(), walk.value(), walk.depth()
class TreeWalk {
  public:
    enum class Event { kScalar, kKey, kOpen, kClose };

    explicit TreeWalk(const Value &root) : root_(&root) {}

    // False at the end, and when containers lie deeper than limits::kListDepth: a mutable one may hold
    // itself.
    bool Next();

    Event event() const { return event_; }
    // The scalar, the key, or the container that is opened or closed.
    const Value &value() const { return *value_; }
    // How many containers the value lies in.
    size_t depth() const { return open_.size() - (event_ == Event::kOpen ? 1 : 0); }
    bool is_too_deep() const { return is_too_deep_; }

  private:
    struct OpenContainer {
        const Value *container;
        std::vector<const Value *> children;
        size_t next = 0;
    };

    bool Visit(const Value &value, bool is_key);

    const Value *root_;
    const Value *value_ = nullptr;
    Event event_ = Event::kScalar;
    std::vector<OpenContainer> open_;
    bool is_too_deep_ = false;
};

}  // namespace core_foundation

#endif
