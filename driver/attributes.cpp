#include "driver/attributes.h"

#include "platform/windows/windows_api.h"

std::optional<std::string_view> FindAttribute(const DriverPath *path, const char *key) {
    return FindAttribute(path->attributes, key);
}

std::optional<std::string_view> FindAttribute(VelmarAttribute *attributes, const char *key) {
    const char *value = nullptr;
    if (attributes == nullptr || FindVelmarAttributeValue(attributes, key, &value) != 0 || value == nullptr)
        return std::nullopt;
    return value;
}

bool IsAttributeTrue(const DriverPath *path, const char *key) {
    const auto value = FindAttribute(path, key);
    return value && _stricmp(value->data(), "true") == 0;
}

// Results of the container are not read: what cannot be stored for want of memory is left out.
void AddAttribute(DriverPath *path, const char *key, const char *value) {
    AddVelmarAttributeItem(path->attributes, key, value);
}

void SetAttribute(DriverPath *path, const char *key, const char *value) {
    SetVelmarAttributeValue(path->attributes, key, value);
}
