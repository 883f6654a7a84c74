#include "platform/core_foundation/tree_walk.h"

#include "platform/limits.h"

namespace core_foundation {

bool TreeWalk::Next() {
    if (value_ == nullptr) return Visit(*root_, false);
    if (open_.empty()) return false;
    OpenContainer &innermost = open_.back();
    if (innermost.next == innermost.children.size()) {
        value_ = innermost.container;
        event_ = Event::kClose;
        open_.pop_back();
        return true;
    }
    const bool is_key = innermost.container->type == ValueType::kDictionary && innermost.next % 2 == 0;
    return Visit(*innermost.children[innermost.next++], is_key);
}

bool TreeWalk::Visit(const Value &value, bool is_key) {
    value_ = &value;
    event_ = is_key ? Event::kKey : Event::kScalar;
    if (!IsContainer(value)) return true;
    event_ = Event::kOpen;
    is_too_deep_ = limits::kListDepth.IsPassedBy(open_.size() + 1);
    if (is_too_deep_) return false;
    open_.push_back({&value, ChildrenOf(value)});
    return true;
}

}  // namespace core_foundation
