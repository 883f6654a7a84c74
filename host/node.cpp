#include "host/node.h"

#include "host/text.h"

namespace velmarhost {
namespace {

std::size_t AsSize(int32_t count) {
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::string_view TextOrEmpty(const char *text) {
    return text != nullptr ? text : std::string_view();
}

}  // namespace

Node::Node(const DriverModule &driver, DriverPath *path) : driver_(&driver), path_(path) {
    driver_->get_info(path_, &info_);
}

Node::Node(Node &&other) noexcept
    : driver_(other.driver_), path_(std::exchange(other.path_, nullptr)), info_(other.info_) {}

Node::~Node() {
    if (path_ != nullptr) driver_->close_path(path_);
}

std::size_t Node::ChildCount() const {
    return AsSize(GetVelmarArraySize(info_.names));
}

std::string_view Node::ChildName(std::size_t index) const {
    void *name = nullptr;
    if (GetVelmarArrayItem(info_.names, static_cast<int32_t>(index), &name) != 0) return {};
    return TextOrEmpty(static_cast<const char *>(name));
}

std::string_view Node::Attribute(const char *key) const {
    const char *value = nullptr;
    if (FindVelmarAttributeValue(info_.attributes, key, &value) != 0) return {};
    return TextOrEmpty(value);
}

std::optional<int64_t> Node::NumberAttribute(const char *key) const {
    return ParseNumber(Attribute(key));
}

std::vector<std::pair<std::string_view, std::string_view>> Node::Attributes() const {
    std::vector<std::pair<std::string_view, std::string_view>> attributes;
    const int32_t count = GetVelmarAttributeSize(info_.attributes);
    for (int32_t i = 0; i < count; ++i) {
        const char *key = nullptr;
        const char *value = nullptr;
        if (GetVelmarAttributeItem(info_.attributes, i, &key, &value) != 0) continue;
        attributes.emplace_back(TextOrEmpty(key), TextOrEmpty(value));
    }
    return attributes;
}

std::string NodeTitle(const Node &node) {
    const std::string_view artist = node.Attribute("artist");
    const std::string_view name = node.Attribute("name");
    if (name.empty() || artist.empty()) return std::string(name);
    return std::string(artist) + " - " + std::string(name);
}

}  // namespace velmarhost
