#ifndef HOST_NODE_WORDS_H
#define HOST_NODE_WORDS_H

#include <cstdint>
#include <string_view>

#include "host/node.h"

namespace velmarhost {

// A word for each number that types a node, and "unknown" for one that has none.
std::string_view KindWord(int32_t kind);
std::string_view CategoryWord(int32_t category);
std::string_view SubcategoryWord(int32_t category, int32_t subcategory);

// The one word for a node that lists show: what a file is, or which sort of list a folder is.
std::string_view TypeWord(const Node &node);

}  // namespace velmarhost

#endif
