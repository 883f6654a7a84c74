#ifndef TESTS_LIBRARY_DIFFERENTIAL_MODEL_H
#define TESTS_LIBRARY_DIFFERENTIAL_MODEL_H

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/library/differential_reader.h"

// What a host must see of one node of the tree.
struct SlowNode {
    int kind = 0;
    int category = 0;
    int subcategory = 0;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::string> names;  // in step with `children`
    std::vector<std::shared_ptr<SlowNode>> children;

    std::optional<std::string> Attribute(const std::string &key) const;
    void Hang(const std::string &name, const std::shared_ptr<SlowNode> &child);
};
using SlowNodePointer = std::shared_ptr<SlowNode>;

// The whole tree of a library whose media folder is empty, by the rules told one after another and without
// any index.
SlowNodePointer BuildSlowTree(const SlowValue &library);

#endif
