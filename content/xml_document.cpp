#include "content/xml_document.h"

#include <algorithm>
#include <utility>

#include "content/xml_limits.h"

namespace rapidxml = boost::property_tree::detail::rapidxml;

XmlDocument::XmlDocument(std::string text) : text_(std::move(text)) {
    document_.parse<0>(text_.data());
}

std::unique_ptr<XmlDocument> ParseXml(std::string text) {
    if (!IsWithinXmlLimits(text)) return nullptr;
    try {
        return std::make_unique<XmlDocument>(std::move(text));
    } catch (const rapidxml::parse_error &) {
        return nullptr;
    }
}

const XmlElement *FindXmlElement(const XmlElement &above, std::string_view path) {
    const XmlElement *element = &above;
    while (element != nullptr && !path.empty()) {
        const std::string_view name = path.substr(0, path.find('.'));
        element = element->first_node(name.data(), name.size());
        path.remove_prefix(std::min(name.size() + 1, path.size()));
    }
    return element;
}

std::string_view XmlName(const XmlElement &element) {
    return {element.name(), element.name_size()};
}

std::string XmlText(const XmlElement &element) {
    std::string text;
    for (const XmlElement *part = element.first_node(); part != nullptr; part = part->next_sibling()) {
        if (part->type() == rapidxml::node_data || part->type() == rapidxml::node_cdata)
            text.append(part->value(), part->value_size());
    }
    return text;
}

std::optional<std::string> XmlAttribute(const XmlElement &element, std::string_view name) {
    const auto *attribute = element.first_attribute(name.data(), name.size());
    if (attribute == nullptr) return std::nullopt;
    return std::string(attribute->value(), attribute->value_size());
}
