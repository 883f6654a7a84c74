#include "host/file_url.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

namespace velmarhost {
namespace {

constexpr std::string_view kUrlStart = "file://";
constexpr std::string_view kHostName = "localhost";

// The character of an entity name, without "&" and ";". Only ASCII is looked for: a URL holds nothing else.
std::optional<char> EntityCharacter(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, char>, 5> kNamed = {
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto &[known, character] : kNamed) {
        if (name == known) return character;
    }
    if (!name.starts_with('#')) return std::nullopt;
    name.remove_prefix(1);
    const bool hexadecimal = name.starts_with('x');
    if (hexadecimal) name.remove_prefix(1);
    uint32_t code = 0;
    const auto [end, error] =
        std::from_chars(name.data(), name.data() + name.size(), code, hexadecimal ? 16 : 10);
    if (error != std::errc{} || end != name.data() + name.size() || code == 0 || code > 0x7F)
        return std::nullopt;
    return static_cast<char>(code);
}

std::optional<std::string> DecodeEntities(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&') {
            decoded.push_back(text[i]);
            continue;
        }
        const std::size_t end = text.find(';', i);
        if (end == std::string_view::npos) return std::nullopt;
        const std::optional<char> character = EntityCharacter(text.substr(i + 1, end - i - 1));
        if (!character) return std::nullopt;
        decoded.push_back(*character);
        i = end;
    }
    return decoded;
}

std::optional<std::string> DecodePercents(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded.push_back(text[i]);
            continue;
        }
        if (text.size() - i < 3) return std::nullopt;
        unsigned byte = 0;
        const char *digits = text.data() + i + 1;
        const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
        if (error != std::errc{} || end != digits + 2 || byte == 0) return std::nullopt;
        decoded.push_back(static_cast<char>(byte));
        i += 2;
    }
    return decoded;
}

bool StandsUnescaped(char character) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:!$()*,;=@+";
    return kPlain.find(character) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> DecodeFileUrl(std::string_view xml_text) {
    if (!xml_text.starts_with(kUrlStart)) return std::nullopt;
    xml_text.remove_prefix(kUrlStart.size());
    if (xml_text.starts_with(kHostName)) xml_text.remove_prefix(kHostName.size());
    if (!xml_text.starts_with('/')) return std::nullopt;
    while (xml_text.starts_with('/'))
        xml_text.remove_prefix(1);
    const std::optional<std::string> url = DecodeEntities(xml_text);
    return url ? DecodePercents(*url) : std::nullopt;
}

std::string EncodeFileUrl(std::string_view path) {
    constexpr std::string_view kHexadecimal = "0123456789ABCDEF";
    std::string url = std::string(kUrlStart) + std::string(kHostName);
    for (const char character : path) {
        if (StandsUnescaped(character)) {
            url.push_back(character);
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        url.push_back('%');
        url.push_back(kHexadecimal[byte >> 4]);
        url.push_back(kHexadecimal[byte & 0xF]);
    }
    return url;
}

}  // namespace velmarhost
