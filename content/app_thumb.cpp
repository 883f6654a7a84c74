#include "content/app_thumb.h"

#include "driver/attributes.h"

namespace {

DriverPath *CreatePicture(LibraryDriver *driver, const AppInfo &info, const std::string &location) {
    DriverPath *picture =
        CreateDriverPath(driver, node_kind::kFile, node_category::kThumbnail, node_subcategory::kThumbnail);
    AddAttribute(picture, "thumb_type", "png");  // whatever the icon really is
    AddAttribute(picture, "location", location.c_str());
    AddAttribute(picture, "icon_image", info.icon->c_str());
    AddAttribute(picture, "is_ipa", "true");
    AddAttribute(picture, "is_artwork", info.is_artwork ? "true" : "false");
    AddAttribute(picture, "st_size", std::to_string(info.icon_size).c_str());
    return picture;
}

}  // namespace

void AddAppThumb(DriverPath *app, const AppInfo &info, const std::string &location) {
    if (!info.icon) return;
    SetAttribute(app, "media_has_thumb", "true");
    DriverPath *thumb = CreateDriverPath(app->owner, node_kind::kFolder, node_category::kThumbnail,
                                         node_subcategory::kThumbOfTrack);
    AddAttribute(thumb, "location", location.c_str());
    AppendChild(thumb, "small", CreatePicture(app->owner, info, location));
    AppendChild(app, "thumb", thumb);
}
