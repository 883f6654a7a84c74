#include "artwork/thumb_node.h"

#include "driver/attributes.h"

DriverPath *AddThumbNode(DriverPath *file, int32_t subcategory, const char *location) {
    DriverPath *thumb =
        CreateDriverPath(file->owner, node_kind::kFolder, node_category::kThumbnail, subcategory);
    AddAttribute(thumb, "location", location);
    AppendChild(file, "thumb", thumb);
    return thumb;
}

bool IsThumbNode(const DriverPath *path) {
    return path != nullptr && path->kind == node_kind::kFolder &&
           path->category == node_category::kThumbnail && path->attributes != nullptr;
}

DriverPath *AddThumbnail(DriverPath *thumb, const char *name, const Thumbnail &thumbnail) {
    DriverPath *path = CreateDriverPath(thumb->owner, node_kind::kFile, node_category::kThumbnail,
                                        node_subcategory::kThumbnail);
    if (!thumbnail.type.empty()) AddAttribute(path, "thumb_type", thumbnail.type.c_str());
    AddAttribute(path, "location", thumbnail.location.c_str());
    AddAttribute(path, "st_size", std::to_string(thumbnail.size).c_str());
    path->thumb_offset = thumbnail.offset;
    AppendChild(thumb, name, path);
    return path;
}
