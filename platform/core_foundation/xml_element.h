// The elements of the XML form.
#ifndef PLATFORM_CORE_FOUNDATION_XML_ELEMENT_H
#define PLATFORM_CORE_FOUNDATION_XML_ELEMENT_H

#include <cstdint>

namespace core_foundation {

enum class Element : uint8_t {
    kString,
    kInteger,
    kKey,
    kDate,
    kDict,
    kTrue,
    kFalse,
    kArray,
    kData,
    kReal,
    kPlist,
    kUnknown
};

// A start tag, or an empty element.
struct Tag {
    Element element;
    bool is_empty;
    const char *next;  // behind the tag; null: no tag
};

}  // namespace core_foundation

#endif
