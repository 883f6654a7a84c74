#include "artwork/thumb_node.h"

#include <utility>

#include "driver/attributes.h"

DriverPath *AddThumbNode(DriverPath *file, int32_t subcategory, const char *location) {
    LoosePath thumb =
        CreateDriverPath(file->owner, node_kind::kFolder, node_category::kThumbnail, subcategory);
    AddAttribute(thumb.get(), "location", location);
    return AppendChild(file, "thumb", std::move(thumb));
}

bool IsThumbNode(const DriverPath *path) {
    return path != nullptr && path->kind == node_kind::kFolder &&
           path->category == node_category::kThumbnail && path->attributes != nullptr;
}

DriverPath *AddThumbnail(DriverPath *thumb, const char *name, const Thumbnail &thumbnail) {
    LoosePath path = CreateDriverPath(thumb->owner, node_kind::kFile, node_category::kThumbnail,
                                      node_subcategory::kThumbnail);
    if (!thumbnail.type.empty()) AddAttribute(path.get(), "thumb_type", thumbnail.type.c_str());
    AddAttribute(path.get(), "location", thumbnail.location.c_str());
    AddAttribute(path.get(), "st_size", std::to_string(thumbnail.size).c_str());
    path->thumb_offset = thumbnail.offset;
    return AppendChild(thumb, name, std::move(path));
}
