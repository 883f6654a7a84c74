// The three readers. Each gives the root of exactly one whole list, or nothing for any damage. They keep
// nothing of their input: what a value needs is copied into the document. All may throw std::bad_alloc.
#ifndef PLATFORM_CORE_FOUNDATION_READER_H
#define PLATFORM_CORE_FOUNDATION_READER_H

#include <optional>
#include <string_view>

#include "platform/core_foundation/dictionary_watch.h"
#include "platform/core_foundation/document.h"
#include "platform/core_foundation/input_window.h"

namespace core_foundation {

// `watch` may be null.
std::optional<Value> ReadXml(InputWindow &window, Document &document, const DictionaryWatch *watch);
std::optional<Value> ReadOldStyle(std::string_view text, Document &document);
std::optional<Value> ReadBinary(std::string_view bytes, Document &document);

// Whether a text is XML, by its beginning: data of the old-style form begins with '<' too.
bool LooksLikeXml(std::string_view text);

}  // namespace core_foundation

#endif
