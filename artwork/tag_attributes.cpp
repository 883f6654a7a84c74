#include "artwork/tag_attributes.h"

#include <cstdint>

#include "content/path_text.h"
#include "platform/windows/windows_api.h"

namespace {

void AddText(VelmarAttribute *attributes, const char *key, const TagLib::String &string) {
    if (string.isEmpty()) return;
    if (const auto text = TagStringToUtf8(string)) AddVelmarAttributeItem(attributes, key, text->c_str());
}

// A tag may hold a negative number, which TagLib hands on as a large one.
void AddNumber(VelmarAttribute *attributes, const char *key, unsigned number) {
    if (number == 0) return;
    const std::string text = std::to_string(static_cast<int32_t>(number));
    AddVelmarAttributeItem(attributes, key, text.c_str());
}

}  // namespace

void CopyTagAttributes(const TagLib::Tag *tag, VelmarAttribute *attributes) {
    if (tag == nullptr || tag->isEmpty()) return;
    AddText(attributes, "name", tag->title());
    AddText(attributes, "artist", tag->artist());
    AddText(attributes, "album", tag->album());
    AddText(attributes, "comments", tag->comment());
    AddText(attributes, "genre", tag->genre());
    AddNumber(attributes, "year", tag->year());
    AddNumber(attributes, "track", tag->track());
}

std::optional<std::string> TagStringToUtf8(const TagLib::String &string) {
    if (string.isLatin1()) return AnsiToUtf8(string.toCString(false));
    return string.toCString(true);
}

std::optional<std::string> AnsiToUtf8(const char *text) {
    constexpr int kUpToTerminator = -1;
    if (text == nullptr) return std::nullopt;
    const int size = MultiByteToWideChar(CP_ACP, 0, text, kUpToTerminator, nullptr, 0);
    if (size <= 0) return std::nullopt;
    std::wstring wide(static_cast<size_t>(size), L'\0');
    if (MultiByteToWideChar(CP_ACP, 0, text, kUpToTerminator, wide.data(), size) <= 0) return std::nullopt;
    return WideToUtf8(wide.c_str());
}
