#include "artwork/temporary_path.h"

#include <utility>

#include "content/path_text.h"
#include "content/zip_entry_path.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

// The room of a path, with its terminator, in characters and in bytes of UTF-8.
constexpr size_t kWideRoom = MAX_PATH;
constexpr size_t kUtf8Room = size_t{2} * MAX_PATH;

bool IsFileName(std::string_view location) {
    return IsWindowsFileName(FileNameOfPath(location));
}

std::optional<std::string> IfItFits(std::string path) {
    return path.size() < kUtf8Room ? std::optional(std::move(path)) : std::nullopt;
}

}  // namespace

std::optional<std::wstring> PictureTempPath(std::string_view location) {
    if (!IsFileName(location)) return std::nullopt;
    std::wstring path = BuildTempPathW(std::nullopt, Utf8ToWide(FileNameOfPath(location))) + L".jpg";
    return path.size() < kWideRoom ? std::optional(std::move(path)) : std::nullopt;
}

std::optional<std::string> BookTempFolder(std::string_view location) {
    if (!IsFileName(location)) return std::nullopt;
    return IfItFits(BuildTempPath(std::nullopt, FileNameOfPath(location)));
}

std::optional<std::string> BookTempFile(std::string_view location, std::string_view entry_name) {
    const auto folder = BookTempFolder(location);
    if (!folder || !ZipEntryTarget(NativePath(*folder), entry_name)) return std::nullopt;
    return IfItFits(BuildTempPath(FileNameOfPath(location), entry_name));
}
