#include "tests/support/preference_file.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>
#include <stdexcept>

#include "tests/support/property_list_xml.h"

namespace {

char32_t NextCodePoint(std::string_view &utf8) {
    const auto first = static_cast<unsigned char>(utf8.front());
    const auto length = static_cast<std::size_t>(std::max(1, std::countl_one(first)));
    if (length > 4 || length > utf8.size()) throw std::invalid_argument("text is not UTF-8");
    char32_t point = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
        point = point << 6 | (static_cast<unsigned char>(utf8[i]) & 0x3FU);
    utf8.remove_prefix(length);
    return point;
}

void AppendUnit(std::string &bytes, char32_t unit) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8 & 0xFFU);
}

}  // namespace

std::string Utf16Bytes(std::string_view utf8) {
    std::string bytes;
    while (!utf8.empty()) {
        const char32_t point = NextCodePoint(utf8);
        if (point < 0x10000) {
            AppendUnit(bytes, point);
        } else {
            AppendUnit(bytes, 0xD800 + ((point - 0x10000) >> 10));
            AppendUnit(bytes, 0xDC00 + ((point - 0x10000) & 0x3FF));
        }
    }
    return bytes;
}

std::string BackslashPath(const std::filesystem::path &path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

std::string PreferenceFile::Xml() const {
    constexpr int kDepth = 2;
    std::string xml = std::string(kPropertyListHead) + "<dict>\n\t<key>User Preferences</key>\n\t<dict>\n";
    if (block_length) {
        std::string block(*block_length, '\x5A');
        if (block.size() > kPreferenceFlagIndex) block[kPreferenceFlagIndex] = flag_byte;
        xml += XmlLine({"Preferences:130", XmlData(block, kDepth)}, kDepth);
    }
    if (media_folder) {
        xml += XmlLine({"Music Folder Location:11345", XmlData(Utf16Bytes(*media_folder), kDepth)}, kDepth);
    }
    if (library_xml) {
        xml += XmlLine({"iTunes Library XML Location:1", XmlData(Utf16Bytes(*library_xml), kDepth)}, kDepth);
    }
    return xml + "\t</dict>\n</dict>\n" + std::string(kPropertyListTail);
}

std::filesystem::path PreferenceFile::WriteUnder(const std::filesystem::path &app_data) const {
    std::filesystem::path file = app_data / "Apple Computer" / "iTunes" / "iTunesPrefs.xml";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << Xml();
    return file;
}
