#include "content/xml_document.h"

#include <boost/property_tree/xml_parser.hpp>

#include <sstream>

#include "content/xml_limits.h"

std::optional<XmlTree> ParseXml(const std::string &text) {
    if (!IsWithinXmlLimits(text)) return std::nullopt;
    constexpr int kNoFlags = 0;
    std::istringstream stream(text);
    XmlTree tree;
    try {
        boost::property_tree::read_xml(stream, tree, kNoFlags);
    } catch (const boost::property_tree::ptree_error &) {
        return std::nullopt;
    }
    return tree;
}

std::optional<std::string> XmlAttribute(const XmlTree &element, const std::string &name) {
    const XmlTree *attribute = FindXmlElement(element, "<xmlattr>." + name);
    return attribute == nullptr ? std::nullopt : std::optional(attribute->data());
}

const XmlTree *FindXmlElement(const XmlTree &tree, const std::string &path) {
    const auto found = tree.get_child_optional(path);
    return found ? &*found : nullptr;
}
