#include "host/preference_file.h"

#include <algorithm>
#include <cstdint>

#include "host/text.h"

namespace velmarhost {
namespace {

void AppendUnit(std::string &bytes, char32_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>((unit >> 8) & 0xFF));
}

std::string Utf16LittleEndian(std::string_view text) {
    constexpr char32_t kReplacement = 0xFFFD;
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        const DecodedCharacter character = DecodeUtf8(text, i);
        const char32_t code = character.code == kBadByte ? kReplacement : character.code;
        if (code >= 0x10000) {
            AppendUnit(bytes, 0xD800 + ((code - 0x10000) >> 10));
            AppendUnit(bytes, 0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            AppendUnit(bytes, code);
        }
        i += character.length;
    }
    return bytes;
}

std::string Base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = (group << 8) | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text.push_back(k <= count ? kDigits[(group >> (18 - 6 * k)) & 0x3F] : '=');
        }
    }
    return text;
}

std::string LocationEntry(std::string_view key, std::string_view path) {
    std::string location(path);
    std::replace(location.begin(), location.end(), '/', '\\');
    return "\t\t<key>" + std::string(key) + "</key>\n\t\t<data>" + Base64(Utf16LittleEndian(location)) +
           "</data>\n";
}

}  // namespace

std::string PreferenceFileText(std::string_view library_path, std::string_view media_folder) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
           "\t<key>User Preferences</key>\n\t<dict>\n" +
           LocationEntry("iTunes Library XML Location:1", library_path) +
           LocationEntry("Music Folder Location:11345", media_folder) + "\t</dict>\n</dict>\n</plist>\n";
}

}  // namespace velmarhost
