#include "artwork/tag_attributes.h"

#include <cstdint>
#include <cstring>

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
    if (text == nullptr) return std::nullopt;
    constexpr int kUpToTerminator = -1;
    // In no code page does a byte stand for more than one character.
    std::wstring wide(std::strlen(text) + 1, L'\0');
    const int room = static_cast<int>(wide.size());
    if (MultiByteToWideChar(CP_ACP, 0, text, kUpToTerminator, wide.data(), room) <= 0) return std::nullopt;
    return WideToUtf8(wide.c_str());
}
