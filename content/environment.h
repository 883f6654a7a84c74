#ifndef CONTENT_ENVIRONMENT_H
#define CONTENT_ENVIRONMENT_H

#include <optional>
#include <string>

// The value of an environment variable; empty if it is not set.
std::optional<std::wstring> EnvironmentVariable(const wchar_t *name);

#endif
