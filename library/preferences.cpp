#include "library/preferences.h"

#include <cstdint>
#include <string_view>

#include "content/environment.h"
#include "content/path_text.h"
#include "content/plist_values.h"
#include "driver/driver_log.h"

namespace {

constexpr wchar_t kPreferenceFile[] = L"\\Apple Computer\\iTunes\\iTunesPrefs.xml";

// The flag lies in an opaque block; shorter blocks, of other versions of iTunes, have none.
constexpr char kFlagBlock[] = "Preferences:130";
constexpr CFIndex kFlagIndex = 14479;
constexpr char kMediaFolder[] = "Music Folder Location:11345";
constexpr char kXmlLocation[] = "iTunes Library XML Location:1";

CFDataRef DataOf(CFTypeRef dictionary, const char *key) {
    const void *value = PlistValue(dictionary, key);
    return IsData(value) ? static_cast<CFDataRef>(value) : nullptr;
}

// True when the flag was clear and now is set.
bool SetFlag(CFTypeRef user_preferences) {
    const CFDataRef block = DataOf(user_preferences, kFlagBlock);
    if (block == nullptr || CFDataGetLength(block) <= kFlagIndex) return false;
    const CFRange range = CFRangeMake(kFlagIndex, 1);
    UInt8 flag = 0;
    CFDataGetBytes(block, range, &flag);
    if (flag != 0) return false;
    flag = 1;
    CFDataReplaceBytes(const_cast<CFMutableDataRef>(block), range, &flag, 1);
    return true;
}

// Little-endian UTF-16 without mark or terminator, up to the first zero unit; an odd byte at the end is a low
// byte.
std::wstring DecodeUtf16(std::string_view bytes) {
    std::wstring text;
    for (size_t at = 0; at < bytes.size(); at += 2) {
        const auto low = static_cast<uint8_t>(bytes[at]);
        const auto high = static_cast<uint8_t>(at + 1 < bytes.size() ? bytes[at + 1] : 0);
        const int unit = low | (high << 8);
        if (unit == 0) break;
        // Pairs of surrogates become characters in the conversion to UTF-8.
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

std::optional<std::string> TextOf(CFTypeRef user_preferences, const char *key) {
    const CFDataRef data = DataOf(user_preferences, key);
    if (data == nullptr) return std::nullopt;
    std::string bytes(static_cast<size_t>(CFDataGetLength(data)), '\0');
    CFDataGetBytes(data, CFRangeMake(0, CFDataGetLength(data)), reinterpret_cast<UInt8 *>(bytes.data()));
    return WideToUtf8(DecodeUtf16(bytes));
}

// Empty without a folder of application data, and then there are no preferences.
std::string PreferencePath() {
    const auto folder = EnvironmentVariable(L"APPDATA");
    return folder ? WideToUtf8(*folder + kPreferenceFile) : std::string();
}

}  // namespace

LibraryPreferences ReadLibraryPreferences() {
    const std::string path = PreferencePath();
    WriteDriverLog("iTunes Preference File: %s", path.c_str());
    const CFOwner preferences = path.empty() ? nullptr : ReadPropertyListFile(path);
    if (!IsDictionary(preferences.get())) {
        WriteDriverLog("Open iTunes Preferences file error!");
        return {};
    }
    const CFTypeRef user_preferences = PlistValue(preferences.get(), "User Preferences");
    // A file that cannot be rewritten is no reason not to load.
    if (SetFlag(user_preferences))
        WritePropertyListFile(path, preferences.get(), kCFPropertyListXMLFormat_v1_0);
    return {TextOf(user_preferences, kMediaFolder), TextOf(user_preferences, kXmlLocation)};
}
