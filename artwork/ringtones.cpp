#include "artwork/ringtones.h"

#include <optional>
#include <utility>

#include "artwork/file_attributes.h"
#include "artwork/sound_length.h"
#include "content/file_stamp.h"
#include "content/media_folder.h"
#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/scanned_entries.h"
#include "platform/windows/folder_search.h"

namespace {

// One letter and ".m4r".
constexpr size_t kShortestName = 5;

bool IsTone(const WIN32_FIND_DATAW &entry) {
    const bool is_folder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return !is_folder && std::wstring_view(entry.cFileName).size() >= kShortestName;
}

// An entry is known by its file name, has no id and no tag.
LoosePath ReadTone(DriverPath *root, const std::string &path, const std::string &name) {
    LoosePath tone = CreateScannedEntry(root->owner, node_kind::kFile, root->category, root->subcategory);
    AddFileSize(tone.get(), path);
    if (const auto length = SoundLength(path)) AddDuration(tone.get(), *length);
    AddAttribute(tone.get(), "location", path.c_str());
    AddAttribute(tone.get(), "name", name.substr(0, name.rfind('.')).c_str());
    return tone;
}

void AddTone(DriverPath *root, const std::string &folder, const std::string &name) {
    const std::string path = folder + "\\" + name;
    const auto stamp = StampOfFile(path);
    LoosePath tone = stamp ? TakeKeptEntry(root->owner, path, *stamp) : nullptr;
    if (tone == nullptr) tone = ReadTone(root, path, name);
    DriverPath *entry = AppendChild(root, name.c_str(), std::move(tone));
    if (stamp) KeepEntry(entry, path, *stamp);
}

}  // namespace

int32_t ScanToneFolder(LibraryDriver *driver, const std::string &folder) {
    DriverPath *root =
        EnsureCategoryPath(driver, "ringtone", node_category::kAudio, node_subcategory::kRingtone);
    if (root == nullptr) return -1;
    const auto media_folder = MediaFolder(driver);
    if (!media_folder) return 0;
    const std::string path = *media_folder + "\\" + folder;
    for (const WIN32_FIND_DATAW &entry : FolderSearch(Utf8ToWide(path) + L"\\*.m4r")) {
        if (IsTone(entry)) AddTone(root, path, WideToUtf8(entry.cFileName));
    }
    return 0;
}
