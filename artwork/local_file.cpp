#include "artwork/local_file.h"

#include <optional>
#include <string_view>
#include <utility>

#include "artwork/file_attributes.h"
#include "artwork/media_info.h"
#include "artwork/tag_attributes.h"
#include "artwork/tagged_mp3.h"
#include "artwork/thumb_node.h"
#include "content/application.h"
#include "content/book.h"
#include "content/file_kinds.h"
#include "content/file_stamp.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/driver_log.h"
#include "driver/limit_log.h"
#include "driver/path_lookup.h"
#include "driver/scanned_entries.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

// `extension` ends its text, so it is followed by a NUL.
bool IsExtension(std::string_view extension, const char *wanted) {
    return _stricmp(extension.data(), wanted) == 0;
}

std::string BaseName(std::string_view path) {
    const std::string_view name = FileNameOfPath(path);
    return std::string(name.substr(0, name.rfind('.')));
}

DriverPath *FindCategory(LibraryDriver *driver, const std::string &path) {
    const auto category = GetFileCategory(path);
    DriverPath *root =
        category ? FindCategoryRoot(driver, category->category, category->subcategory) : nullptr;
    if (root == nullptr)
        WriteDriverLog("File \"%s\" format is not support or visible by iTunes", path.c_str());
    return root;
}

// The node is known by its id, as two files may have one name.
DriverPath *HangEntry(DriverPath *root, LoosePath entry, const std::string &path) {
    const std::string id = std::to_string(TakeScannedId(root->owner));
    SetAttribute(entry.get(), "id", id.c_str());
    return AppendChild(root, (id + std::string(ExtensionOfPath(path))).c_str(), std::move(entry));
}

// The picture stays in the file until someone asks for it.
void AddThumb(DriverPath *entry, const std::string &path) {
    AddAttribute(entry, "media_has_thumb", "true");
    DriverPath *thumb = AddThumbNode(entry, node_subcategory::kThumbOfScannedFile, path.c_str());
    AddAttribute(thumb, "thumb_mode", "id3");
}

void AddTag(DriverPath *entry, const std::string &path) {
    const LimitLog limit_log(path);
    TaggedMp3 file(path, TaggedMp3::Length::kRead);
    CopyTagAttributes(file.tag(), entry->attributes);
    if (file.UsePicture([](const TagLib::ByteVector &) { return true; })) AddThumb(entry, path);
    if (const auto length = file.Milliseconds()) AddDuration(entry, *length);
}

std::wstring MediaInfoDuration(const std::string &path) {
    using namespace media_info;
    MediaInfoFile file;
    if (!file.IsReady() || file.Open(Utf8ToWide(path)) == 0) return {};
    const std::wstring duration = file.Get(kGeneralStream, 0, L"Duration", kText, kByName);
    file.Close();
    return duration;
}

void AddMediaInfoDuration(DriverPath *entry, const std::string &path) {
    // A pipe would keep MediaInfo waiting.
    if (!IsPlainFile(path)) return;
    const std::wstring duration = MediaInfoDuration(path);
    if (!duration.empty()) AddAttribute(entry, "duration", AnsiFromWide(duration).c_str());
}

// An entry with all that the file tells. It hangs nowhere yet, and its id, which comes first, is still empty.
LoosePath ReadFile(DriverPath *root, const std::string &path) {
    LoosePath entry = CreateScannedEntry(root->owner, node_kind::kFile, root->category, root->subcategory);
    AddAttribute(entry.get(), "id", "");
    AddAttribute(entry.get(), "location", path.c_str());
    AddFileSize(entry.get(), path);
    if (IsExtension(ExtensionOfPath(path), ".mp3")) AddTag(entry.get(), path);
    if (!FindAttribute(entry.get(), "name")) AddAttribute(entry.get(), "name", BaseName(path).c_str());
    if (!FindAttribute(entry.get(), "duration")) AddMediaInfoDuration(entry.get(), path);
    return entry;
}

}  // namespace

int32_t ImportLocalFile(LibraryDriver *driver, const std::string &path) {
    const auto stamp = StampOfFile(path);
    if (!stamp && !PathExists(path)) return -1;
    DriverPath *root = FindCategory(driver, path);
    if (root == nullptr) return -1;
    const std::string_view extension = ExtensionOfPath(path);
    if (IsExtension(extension, ".epub") || IsExtension(extension, ".pdf")) return AddLocalBook(root, path);
    if (IsExtension(extension, ".ipa")) return AddLocalApp(root, path);
    if (IsLocationKnown(root, path)) return -3;
    LoosePath kept = stamp ? TakeKeptEntry(driver, path, *stamp) : nullptr;
    DriverPath *entry = HangEntry(root, kept != nullptr ? std::move(kept) : ReadFile(root, path), path);
    if (stamp) KeepEntry(entry, path, *stamp);
    return 0;
}
