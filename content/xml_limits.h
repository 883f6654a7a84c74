#ifndef CONTENT_XML_LIMITS_H
#define CONTENT_XML_LIMITS_H

#include <string_view>

// The XML library calls itself for each level of elements, when it reads a document and again when it frees
// one, and spends some hundred bytes on each node. So a document is measured before the library sees it.

// True when the XML library, which reads up to the first zero byte, meets no more than the limits. Where the
// text is not well-formed, only what comes before the fault counts for certain.
bool IsWithinXmlLimits(std::string_view text);

#endif
