#ifndef HOST_FILE_URL_H
#define HOST_FILE_URL_H

#include <optional>
#include <string>
#include <string_view>

namespace velmarhost {

// The path of a file URL as a library XML spells it, between its tags: the entities of XML and the percent
// escapes are decoded, and the host and all leading slashes are gone ("file://localhost/C:/My%20Music/" gives
// "C:/My Music/"). Empty for any other text, and for escapes that are none.
std::optional<std::string> DecodeFileUrl(std::string_view xml_text);

// The URL of an absolute path. It holds no character that XML would want escaped.
std::string EncodeFileUrl(std::string_view path);

}  // namespace velmarhost

#endif
