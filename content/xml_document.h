#ifndef CONTENT_XML_DOCUMENT_H
#define CONTENT_XML_DOCUMENT_H

#include <boost/property_tree/detail/rapidxml.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The parser that Boost's property trees are made with. Its nodes point into the text, where a property tree
// would take six times the memory for copies.
using XmlElement = boost::property_tree::detail::rapidxml::xml_node<char>;

// A document with the text that its nodes point into.
class XmlDocument {
  public:
    // Throws what the parser throws.
    explicit XmlDocument(std::string text);
    XmlDocument(const XmlDocument &) = delete;
    XmlDocument &operator=(const XmlDocument &) = delete;

    // The node above the outermost element.
    const XmlElement &top() const { return document_; }

  private:
    std::string text_;
    boost::property_tree::detail::rapidxml::xml_document<char> document_;
};

// Parses UTF-8 text, up to the first zero byte. White space is kept. Null for text that is not well-formed or
// beyond the limits of xml_limits.h.
std::unique_ptr<XmlDocument> ParseXml(std::string text);

// The element at a path of names with "." between them, the first of its name at each step; null if there is
// none.
const XmlElement *FindXmlElement(const XmlElement &above, std::string_view path);

std::string_view XmlName(const XmlElement &element);

// All text that stands directly in an element.
std::string XmlText(const XmlElement &element);

// The value of an attribute of an element.
std::optional<std::string> XmlAttribute(const XmlElement &element, std::string_view name);

#endif
