#ifndef ARTWORK_TAG_ATTRIBUTES_H
#define ARTWORK_TAG_ATTRIBUTES_H

#include <taglib/tag.h>

#include <optional>
#include <string>

#include "platform/velmar_path/velmar_path.h"

// Adds what a tag says to the attributes of a file: texts that are not empty, numbers that are not 0. A null
// tag says nothing.
void CopyTagAttributes(const TagLib::Tag *tag, VelmarAttribute *attributes);

// UTF-8. A text that Latin-1 could hold is taken for bytes of the system's ANSI code page: old programs wrote
// tags in the encoding of their machine and called it Latin-1. Empty if the conversion fails.
std::optional<std::string> TagStringToUtf8(const TagLib::String &string);

// UTF-8 of a text in the system's ANSI code page; empty for null and if the conversion fails.
std::optional<std::string> AnsiToUtf8(const char *text);

#endif
