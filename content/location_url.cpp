#include "content/location_url.h"

#include <charconv>
#include <cstdlib>

namespace {

constexpr std::string_view kPrefixes[] = {"file://localhost/", "file:///"};

std::string_view WithoutPrefix(std::string_view url) {
    for (const std::string_view prefix : kPrefixes) {
        if (url.starts_with(prefix)) return url.substr(prefix.size());
    }
    return url;
}

char EscapedByte(std::string_view digits) {
    unsigned byte = 0;
    if (std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2) {
        return static_cast<char>(byte);
    }
    // As strtoul reads them, so a blank or a sign in the place of the first digit is no fault.
    const char text[] = {digits[0], digits[1], '\0'};
    return static_cast<char>(std::strtoul(text, nullptr, 16) & 0xFF);
}

}  // namespace

std::string LocationUrlToPath(std::string_view url) {
    std::string path;
    std::string_view rest = WithoutPrefix(url);
    path.reserve(rest.size());
    while (!rest.empty()) {
        const size_t plain = rest.find('%');
        path += rest.substr(0, plain);
        if (plain == std::string_view::npos) break;
        rest.remove_prefix(plain + 1);
        if (rest.starts_with('%')) {
            path += '%';
            rest.remove_prefix(1);
            continue;
        }
        if (rest.size() < 2) break;
        const char byte = EscapedByte(rest);
        if (byte == '\0') break;
        path += byte;
        rest.remove_prefix(2);
    }
    return path;
}
