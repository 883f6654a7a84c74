#include "content/app_thumb.h"

#include <utility>

#include "driver/attributes.h"

namespace {

LoosePath CreatePicture(LibraryDriver *driver, const AppInfo &info, const std::string &location) {
    LoosePath picture =
        CreateDriverPath(driver, node_kind::kFile, node_category::kThumbnail, node_subcategory::kThumbnail);
    AddAttribute(picture.get(), "thumb_type", "png");  // whatever the icon really is
    AddAttribute(picture.get(), "location", location.c_str());
    AddAttribute(picture.get(), "icon_image", info.icon->c_str());
    AddAttribute(picture.get(), "is_ipa", "true");
    AddAttribute(picture.get(), "is_artwork", info.is_artwork ? "true" : "false");
    AddAttribute(picture.get(), "st_size", std::to_string(info.icon_size).c_str());
    return picture;
}

}  // namespace

void AddAppThumb(DriverPath *app, const AppInfo &info, const std::string &location) {
    if (!info.icon) return;
    SetAttribute(app, "media_has_thumb", "true");
    LoosePath thumb = CreateDriverPath(app->owner, node_kind::kFolder, node_category::kThumbnail,
                                       node_subcategory::kThumbOfTrack);
    AddAttribute(thumb.get(), "location", location.c_str());
    AppendChild(thumb.get(), "small", CreatePicture(app->owner, info, location));
    AppendChild(app, "thumb", std::move(thumb));
}
