#ifndef DRIVER_ATTRIBUTES_H
#define DRIVER_ATTRIBUTES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "driver/driver_path.h"

// The first value of a key, or empty. The text lies in the node's container and is valid until its attributes
// change; it is followed by a NUL.
std::optional<std::string_view> FindAttribute(const DriverPath *path, const char *key);

// The same of a container that the host handed in; a null one has no keys.
std::optional<std::string_view> FindAttribute(VelmarAttribute *attributes, const char *key);

// True when the attribute exists and is "true", in any letter case.
bool IsAttributeTrue(const DriverPath *path, const char *key);

// Adds a key that the node does not have yet.
void AddAttribute(DriverPath *path, const char *key, const char *value);

// Replaces the value of a key, or adds it.
void SetAttribute(DriverPath *path, const char *key, const char *value);

#endif
