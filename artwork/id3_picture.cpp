#include "artwork/id3_picture.h"

#include "artwork/tagged_mp3.h"
#include "artwork/temporary_path.h"
#include "content/path_text.h"
#include "driver/limit_log.h"
#include "platform/windows/atomic_file.h"
#include "platform/windows/windows_api.h"

namespace {

// What lies under the name may be a link that someone else has put into the common folder.
void RemoveLink(const std::wstring &path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool is_link =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (is_link) DeleteFileW(path.c_str());
}

bool WritePicture(const std::string &path, const TagLib::ByteVector &picture) {
    std::optional<AtomicFile> file = AtomicFile::Create(path);
    return file && file->Write(picture.data(), picture.size()) && file->Commit();
}

}  // namespace

std::optional<ExtractedPicture> ExtractId3Picture(const std::string &location) {
    const LimitLog limit_log(location);
    const auto path = PictureTempPath(location);
    if (!path) return std::nullopt;
    ExtractedPicture extracted = {WideToUtf8(*path), 0};
    RemoveLink(*path);
    TaggedMp3 file(location, TaggedMp3::Length::kLeaveOut);
    const bool written = file.UsePicture([&](const TagLib::ByteVector &picture) {
        extracted.size = static_cast<int32_t>(picture.size());
        return WritePicture(extracted.path, picture);
    });
    return written ? std::optional(extracted) : std::nullopt;
}
