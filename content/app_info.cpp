#include "content/app_info.h"

#include <array>
#include <string_view>
#include <utility>

#include "content/glib_owner.h"
#include "content/plist_values.h"
#include "content/zip_entry.h"
#include "driver/limit_log.h"
#include "platform/limits.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr int32_t kNoArchive = -1;
constexpr int32_t kNoBundle = -3;
constexpr int32_t kNoDictionary = -4;

constexpr const char *kArtwork = "iTunesArtwork";
constexpr const char *kMetadata = "iTunesMetadata.plist";
constexpr const char *kBundle = "^Payload/[^/]+/Info.plist$";

// The size that stands for the unknown one of a picture on the net.
constexpr uint32_t kUrlIconSize = 1;

struct LanguageRow {
    const char *language;
    const char *folder;
};

// Systems name these by country, applications by script.
constexpr std::array kLanguages = std::to_array<LanguageRow>({
    {"zh_CN", "zh-Hans"},
    {"zh_TW", "zh-Hant"},
    {"zh_HK", "zh-Hant"},
});

std::optional<std::string> FindText(const CFOwner &dictionary, const char *key) {
    return CFStringToUtf8(PlistString(dictionary.get(), key));
}

// Null for an entry that is no dictionary.
CFOwner ReadEntryDictionary(unzFile zip) {
    CFOwner value = ReadEntryPropertyList(zip);
    return value && IsDictionary(value.get()) ? std::move(value) : nullptr;
}

// Takes the entry at the cursor as the icon. One that could not be read later is none.
void TakeIconEntry(unzFile zip, const std::string &name, AppInfo &info) {
    const std::optional<ZipEntry> entry = CurrentZipEntry(zip);
    if (!entry || limits::kZipEntryBytes.IsPassedBy(entry->size) || !ZipEntryStream(zip, *entry)) return;
    info.icon = name;
    info.icon_size = static_cast<uint32_t>(entry->size);
    info.is_artwork = true;
}

void ReadMetadata(const CFOwner &metadata, AppInfo &info) {
    info.bundle_id = FindText(metadata, "softwareVersionBundleId");
    info.display_name = FindText(metadata, "bundleDisplayName");
    info.bundle_version = FindText(metadata, "bundleVersion");
    info.genre = FindText(metadata, "genre");
    if (info.icon) return;
    info.icon = FindText(metadata, "softwareIcon57x57URL");
    if (info.icon) info.icon_size = kUrlIconSize;
}

// The icon lies beside the bundle's own document.
void ReadBundleIcon(unzFile zip, const std::string &bundle_entry, const CFOwner &bundle, AppInfo &info) {
    const std::optional<std::string> file = FindText(bundle, "CFBundleIconFile");
    if (!file) return;
    const std::string name = bundle_entry.substr(0, bundle_entry.rfind('/') + 1) + *file;
    if (!limits::kEntryPathBytes.IsPassedBy(name.size()) && LocateZipEntry(zip, name))
        TakeIconEntry(zip, name, info);
}

// Fills what the metadata have left open.
int32_t ReadBundle(unzFile zip, AppInfo &info) {
    const std::optional<std::string> entry = FindEntryByRegex(zip, kBundle);
    if (!entry) return kNoBundle;
    const CFOwner bundle = ReadEntryDictionary(zip);
    if (!bundle) return kNoDictionary;
    if (PlistString(bundle.get(), "CFBundleIdentifier") == nullptr) return 0;
    if (!info.bundle_id) info.bundle_id = FindText(bundle, "CFBundleIdentifier");
    if (!info.display_name) info.display_name = FindText(bundle, "CFBundleDisplayName");
    if (info.icon_size == 0) ReadBundleIcon(zip, *entry, bundle, info);
    return 0;
}

// The folder of the user's first language, without its ending, as part of a pattern. The name comes from the
// environment, and may hold anything.
std::string LanguagePattern() {
    const std::string first = g_get_language_names()[0];
    std::string language = first.substr(0, first.find('.'));
    for (const LanguageRow &row : kLanguages) {
        if (_stricmp(language.c_str(), row.language) == 0) language = row.folder;
    }
    return GTextOwner(g_regex_escape_string(language.c_str(), -1)).get();
}

void ReadLanguageFile(unzFile zip, AppInfo &info) {
    const std::string pattern = "^Payload/[^/]+/" + LanguagePattern() + ".lproj/InfoPlist.strings$";
    if (!FindEntryByRegex(zip, pattern)) return;
    const CFOwner names = ReadEntryDictionary(zip);
    std::optional<std::string> name = names ? FindText(names, "CFBundleDisplayName") : std::nullopt;
    if (name) info.display_name = std::move(name);
}

}  // namespace

int32_t ReadAppInfo(const std::string &path, AppInfo &info) {
    const LimitLog limit_log(path);
    const ZipReadHandle zip = OpenZipForRead(path);
    if (!zip) return kNoArchive;
    AppInfo found;
    if (FindEntryByRegex(zip.get(), kArtwork)) TakeIconEntry(zip.get(), kArtwork, found);
    if (FindEntryByRegex(zip.get(), kMetadata)) {
        if (const CFOwner metadata = ReadEntryDictionary(zip.get())) ReadMetadata(metadata, found);
    }
    const int32_t result = ReadBundle(zip.get(), found);
    if (result != 0) return result;
    ReadLanguageFile(zip.get(), found);
    info = std::move(found);
    return 0;
}

CFOwner ReadEntryPropertyList(unzFile zip) {
    const std::optional<std::string> bytes = ReadCurrentZipEntry(zip, limits::kEntryListBytes);
    if (!bytes) return nullptr;
    const auto *start = reinterpret_cast<const UInt8 *>(bytes->data());
    const CFOwner data(CFDataCreate(kCFAllocatorDefault, start, static_cast<CFIndex>(bytes->size())));
    if (!data) return nullptr;
    return CFOwner(CFPropertyListCreateWithData(kCFAllocatorDefault, static_cast<CFDataRef>(data.get()),
                                                kCFPropertyListImmutable, nullptr, nullptr));
}
