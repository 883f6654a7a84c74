#include "content/location_url.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::string_view kPrefixes[] = {"file://localhost/", "file:///"};

std::string_view WithoutPrefix(std::string_view url) {
    for (const std::string_view prefix : kPrefixes) {
        if (url.starts_with(prefix)) return url.substr(prefix.size());
    }
    return url;
}

// -1 for no hexadecimal digit.
int HexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    const char small = static_cast<char>(letter | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

char EscapedByte(const char *digits) {
    const int high = HexDigit(digits[0]);
    const int low = HexDigit(digits[1]);
    if (high >= 0 && low >= 0) return static_cast<char>(high * 16 + low);
    // As strtoul reads them, so a blank or a sign in the place of the first digit is no fault.
    const char text[] = {digits[0], digits[1], '\0'};
    return static_cast<char>(std::strtoul(text, nullptr, 16) & 0xFF);
}

}  // namespace

std::string LocationUrlToPath(std::string_view url) {
    std::string room;
    return std::string(LocationUrlToPath(url, room));
}

std::string_view LocationUrlToPath(std::string_view url, std::string &room) {
    std::string_view rest = WithoutPrefix(url);
    // A URL that lies in the room itself must not move; the NUL has its place behind the room.
    if (room.size() < rest.size()) room.resize(rest.size());
    // What is written never overtakes what is read.
    char *out = room.data();
    while (!rest.empty()) {
        const size_t plain = std::min(rest.find('%'), rest.size());
        std::memmove(out, rest.data(), plain);
        out += plain;
        rest.remove_prefix(plain);
        if (rest.size() < 2) break;
        const bool is_escape = rest[1] != '%';
        if (is_escape && rest.size() < 3) break;
        const char byte = is_escape ? EscapedByte(rest.data() + 1) : '%';
        if (byte == '\0') break;
        *out++ = byte;
        rest.remove_prefix(is_escape ? 3 : 2);
    }
    *out = '\0';
    return {room.data(), static_cast<size_t>(out - room.data())};
}
