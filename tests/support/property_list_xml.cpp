#include "tests/support/property_list_xml.h"

#include <cstddef>

const std::string_view kPropertyListHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
const std::string_view kPropertyListTail = "</plist>\n";

std::string EscapeXml(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '&' || c == '<' || c == '>') {
            escaped.append("&#").append(std::to_string(c)).append(";");
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string XmlText(std::string_view text) {
    return "<string>" + EscapeXml(text) + "</string>";
}

std::string XmlInteger(std::int64_t number) {
    return "<integer>" + std::to_string(number) + "</integer>";
}

std::string XmlReal(std::string_view digits) {
    return "<real>" + std::string(digits) + "</real>";
}

std::string XmlFlag(bool flag) {
    return flag ? "<true/>" : "<false/>";
}

std::string XmlDate(std::string_view moment) {
    return "<date>" + std::string(moment) + "</date>";
}

std::string XmlData(std::string_view bytes, int depth) {
    constexpr std::size_t kLineWidth = 68;
    const std::string new_line = std::string("\n").append(static_cast<std::size_t>(depth), '\t');
    const std::string digits = Base64(bytes);
    std::string element = new_line + "<data>";
    for (std::size_t start = 0; start < digits.size(); start += kLineWidth) {
        element += new_line + digits.substr(start, kLineWidth);
    }
    return element + new_line + "</data>";
}

std::string XmlLine(const XmlEntry &entry, int depth) {
    return std::string(static_cast<std::size_t>(depth), '\t') + "<key>" + EscapeXml(entry.key) + "</key>" +
           entry.value + "\n";
}

std::string Base64(std::string_view bytes) {
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string digits;
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        const std::string_view group = bytes.substr(start, 3);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            digits += i <= group.size() ? kDigits[bits >> (18 - 6 * i) & 63U] : '=';
        }
    }
    return digits;
}
