#include "platform/itl_parser/kept_memory.h"

#include <cstring>

namespace itl_parser {

std::string_view KeptMemory::Keep(std::string_view text, std::string_view same) {
    if (text == same) return same;
    Charge(text.size() + 1);
    char *copy = texts_.Allocate(text.size() + 1);
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return {copy, text.size()};
}

void KeptMemory::Refuse() {
    limits::kItlKeptExpansion.Hit();
    throw std::bad_alloc();
}

}  // namespace itl_parser
