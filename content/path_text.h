// Text operations on paths. The driver's paths are UTF-8 text whose separators are "\" and "/", both of which
// count.
#ifndef CONTENT_PATH_TEXT_H
#define CONTENT_PATH_TEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "platform/windows/text.h"

// Puts `put` in the place of every byte `find`. Meant for ASCII characters, so that UTF-8 text keeps its
// meaning.
void ReplaceChar(std::string &text, char find, char put);

// The text before the last separator of either kind, which is empty for a path whose only separator comes
// first. No value for a path without a separator: it names no folder.
std::optional<std::string> DirectoryOfPath(std::string_view path);

// The text behind the last backslash, or all of it. A forward slash does not count here: a location from the
// library keeps its forward slashes, and then stands for its own name as a whole. The result points into
// `path`.
std::string_view FileNameOfPath(std::string_view path);

// The text from the last "." on, dot included, or an empty one. The dot is searched in the whole text,
// folders included. The result points into `path`.
std::string_view ExtensionOfPath(std::string_view path);

// A path below the temporary folder: "TEMP\folder\name", or "TEMP\name" without a folder. Nothing is created.
// Where the environment names no folder by "TEMP", the system's temporary folder stands in its place.
std::string BuildTempPath(std::optional<std::string_view> folder, std::string_view name);

// The same in wide text. Here an empty folder, too, gives the short form.
std::wstring BuildTempPathW(std::optional<std::wstring_view> folder, std::wstring_view name);

// Removes a file where a scope ends and nothing may be thrown: one for whose path there is no memory stays.
void RemoveFileQuietly(const std::wstring &path) noexcept;
void RemoveFileQuietly(std::string_view utf8_path) noexcept;

#endif
