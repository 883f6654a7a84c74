#include "driver/stream_source.h"

#include <charconv>

#include "content/file_stamp.h"
#include "content/path_text.h"
#include "content/zip_extract.h"
#include "content/zip_write.h"
#include "driver/attributes.h"
#include "driver/driver_log.h"
#include "driver/limit_log.h"
#include "platform/windows/windows_api.h"

namespace {

int64_t ToNumber(std::string_view text) {
    int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// Neither way of fetching tells of its outcome: whether the cache file is there afterwards does.
void FetchIcon(const DriverPath *path, const std::string &location, const std::string &icon,
               const std::string &cache) {
    const LimitLog limit_log(location);
    if (IsAttributeTrue(path, "is_artwork")) {
        ExtractEntryToFile(location, icon, cache);
    } else {
        URLDownloadToFileW(nullptr, Utf8ToWide(icon).c_str(), Utf8ToWide(cache).c_str(), 0, nullptr);
    }
}

// The size of the path becomes that of the icon.
void TakeSizeOf(DriverPath *path, const std::string &file) {
    struct _stat64 status = {};
    if (_wstat64(Utf8ToWide(file).c_str(), &status) != 0) return;
    SetAttribute(path, "st_size", std::to_string(status.st_size).c_str());
}

// The cache file of an application's icon, fetched at the first use and kept; the application file itself
// when there is no icon to be had.
std::string IconFile(DriverPath *path, const std::string &location, const std::string &icon) {
    const std::string cache = BuildTempPath(std::nullopt, FileNameOfPath(location)) + ".jpg";
    if (!PathExists(cache)) FetchIcon(path, location, icon, cache);
    if (!PathExists(cache)) return location;
    TakeSizeOf(path, cache);
    return cache;
}

}  // namespace

std::optional<StreamSource> FindStreamSource(DriverPath *path, const char *path_text) {
    const auto location = FindAttribute(path, "location");
    if (!location) {
        WriteDriverLog("iTunes path \"%s\" has no \"location\" attribute", path_text);
        return std::nullopt;
    }
    StreamSource source;
    source.file = *location;
    const auto icon = FindAttribute(path, "icon_image");
    if (icon && IsAttributeTrue(path, "is_ipa"))
        source.file = IconFile(path, source.file, std::string(*icon));
    const auto size = FindAttribute(path, "st_size");
    source.size = size ? ToNumber(*size) : 0;
    source.offset = path->thumb_offset;
    source.is_folder = IsAttributeTrue(path, "is_directory");
    return source;
}

std::optional<std::string> PackFolder(const std::string &folder) {
    std::string archive = BuildTempPath(std::nullopt, FileNameOfPath(folder));
    if (ZipFolder(folder, archive) != 0) return std::nullopt;
    return archive;
}
