#ifndef CONTENT_XML_DOCUMENT_H
#define CONTENT_XML_DOCUMENT_H

#include <boost/property_tree/ptree.hpp>

#include <optional>
#include <string>

using XmlTree = boost::property_tree::ptree;

// Parses UTF-8 text. White space is kept, and the text of an element is the data of its node. Empty for text
// that is not well-formed or beyond the limits of xml_limits.h.
std::optional<XmlTree> ParseXml(const std::string &text);

// The value of an attribute of an element.
std::optional<std::string> XmlAttribute(const XmlTree &element, const std::string &name);

// The element at a path of names with "." between them, the first of its name at each step; null if there is
// none.
const XmlTree *FindXmlElement(const XmlTree &tree, const std::string &path);

#endif
