#include "content/text_file.h"

#include <optional>
#include <string_view>
#include <vector>

#include "content/glib_owner.h"
#include "platform/limits.h"
#include "platform/windows/file_handle.h"

namespace {

constexpr int32_t kNotOpened = -1;
constexpr int32_t kDamagedMark = -2;
constexpr int32_t kNothingReadable = -3;

constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8MarkStart = "\xEF\xBB";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::optional<std::string> ReadBytes(FILE *file) {
    if (_fseeki64(file, 0, SEEK_END) != 0) return std::nullopt;
    const int64_t size = _ftelli64(file);
    if (size < 0 || limits::kTextFileBytes.IsPassedBy(static_cast<uint64_t>(size))) return std::nullopt;
    if (_fseeki64(file, 0, SEEK_SET) != 0) return std::nullopt;
    std::string bytes(static_cast<size_t>(size), '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    return bytes;
}

// What GLib made, or nothing if it could not.
std::string TakeText(char *glib_text) {
    const GTextOwner owner(glib_text);
    return owner ? owner.get() : std::string();
}

// A half unit at the end is dropped.
std::string FromUtf16(std::string_view bytes, bool big_endian) {
    std::vector<gunichar2> units;
    units.reserve(bytes.size() / 2 + 1);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        const int unit = big_endian ? first << 8 | second : second << 8 | first;
        units.push_back(static_cast<gunichar2>(unit));
    }
    units.push_back(0);
    return TakeText(g_utf16_to_utf8(units.data(), -1, nullptr, nullptr, nullptr));
}

std::string FromUnmarked(std::string bytes) {
    if (g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr) != FALSE) return bytes;
    std::string converted = TakeText(g_locale_to_utf8(bytes.c_str(), -1, nullptr, nullptr, nullptr));
    return converted.empty() ? bytes : converted;
}

}  // namespace

int32_t ReadTextFileAsUtf8(const std::string &path, std::string &text) {
    const FileHandle file(path, L"rb");
    if (!file) return kNotOpened;
    std::optional<std::string> bytes = ReadBytes(file.get());
    if (!bytes) return kNothingReadable;
    const std::string_view all = *bytes;
    if (all.starts_with(kLittleEndianMark) || all.starts_with(kBigEndianMark)) {
        text = FromUtf16(all.substr(kLittleEndianMark.size()), all.starts_with(kBigEndianMark));
    } else if (all.starts_with(kUtf8MarkStart)) {
        if (!all.starts_with(kUtf8Mark)) return kDamagedMark;
        text = all.substr(kUtf8Mark.size());
    } else {
        text = FromUnmarked(std::move(*bytes));
    }
    return text.empty() ? kNothingReadable : 0;
}
