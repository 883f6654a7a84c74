#include "artwork/temporary_path.h"

#include <utility>

#include "content/path_text.h"
#include "content/zip_entry_path.h"
#include "platform/limits.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

bool IsFileName(std::string_view location) {
    return IsWindowsFileName(FileNameOfPath(location));
}

std::optional<std::string> IfItFits(std::string path) {
    return limits::kTempPathBytes.IsPassedBy(path.size()) ? std::nullopt : std::optional(std::move(path));
}

}  // namespace

std::optional<std::wstring> PictureTempPath(std::string_view location) {
    if (!IsFileName(location)) return std::nullopt;
    std::wstring path = BuildTempPathW(std::nullopt, Utf8ToWide(FileNameOfPath(location))) + L".jpg";
    return limits::kTempPathCharacters.IsPassedBy(path.size()) ? std::nullopt
                                                               : std::optional(std::move(path));
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
