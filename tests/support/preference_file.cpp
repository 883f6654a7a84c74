#include "tests/support/preference_file.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "platform/core_foundation/utf_text.h"
#include "tests/support/property_list_xml.h"

std::string Utf16Bytes(std::string_view utf8) {
    if (!core_foundation::IsUtf8(utf8)) throw std::invalid_argument("text is not UTF-8");
    std::string units = core_foundation::Utf8ToUtf16BigEndian(utf8);
    for (std::size_t i = 0; i < units.size(); i += 2)
        std::swap(units[i], units[i + 1]);
    return units;
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
