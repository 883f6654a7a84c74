#include "artwork/track_thumbnails.h"

#include <array>
#include <string>

#include "artwork/artwork_file.h"
#include "artwork/id3_picture.h"
#include "artwork/thumb_node.h"
#include "driver/attributes.h"
#include "platform/windows/windows_api.h"

namespace {

// By their order in the file, whatever their sizes.
constexpr std::array kNames = {"small", "middle", "large"};

void AddNumber(DriverPath *path, const char *key, int32_t number) {
    AddAttribute(path, key, std::to_string(number).c_str());
}

void AddImage(DriverPath *thumb, size_t position, const std::string &location, const ArtworkImage &image) {
    const char *name = position < kNames.size() ? kNames[position] : nullptr;
    DriverPath *path = AddThumbnail(thumb, name, {image.type, location, image.size, image.offset});
    AddNumber(path, "width", image.width);
    AddNumber(path, "height", image.height);
    AddNumber(path, "display_width", image.display_width);
    AddNumber(path, "display_height", image.display_height);
}

int32_t LoadFromCache(DriverPath *thumb, const std::string &location) {
    const auto images = ReadArtworkFile(location);
    if (!images) return -1;
    for (size_t i = 0; i < images->size(); ++i)
        AddImage(thumb, i, location, (*images)[i]);
    return 0;
}

// The picture's own format is not looked at: nearly all are JPEG.
int32_t LoadFromTag(DriverPath *thumb, const std::string &location) {
    if (const auto picture = ExtractId3Picture(location))
        AddThumbnail(thumb, kNames[0], {"jpg", picture->path, picture->size, 0});
    return 0;
}

bool IsFromTag(const DriverPath *thumb) {
    const auto mode = FindAttribute(thumb, "thumb_mode");
    return mode && _stricmp(mode->data(), "id3") == 0;
}

}  // namespace

int32_t LoadTrackThumbnails(LibraryDriver * /*driver*/, DriverPath *thumb) {
    if (!IsThumbNode(thumb)) return -1;
    if (ChildCount(thumb) > 0) return 1;
    const auto location = FindAttribute(thumb, "location");
    if (!location) return 0;
    const std::string path(*location);
    return IsFromTag(thumb) ? LoadFromTag(thumb, path) : LoadFromCache(thumb, path);
}
