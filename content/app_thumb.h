#ifndef CONTENT_APP_THUMB_H
#define CONTENT_APP_THUMB_H

#include <string>

#include "content/app_info.h"
#include "driver/driver_path.h"

// Hangs the icon of an application under its node, as "thumb" with the picture "small", and sets
// `media_has_thumb`. Does nothing without an icon. `location` is the archive, with "\" as separator; the
// icon's bytes stay in it, or on the net.
void AddAppThumb(DriverPath *app, const AppInfo &info, const std::string &location);

#endif
