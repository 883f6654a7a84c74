#ifndef CONTENT_APPLICATION_H
#define CONTENT_APPLICATION_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

// Adds an application that a scan has found to the category of applications. `path` is UTF-8 with "\" as
// separator; its extension does not matter. 0, also for a file that is known already; otherwise what
// ReadAppInfo gives for a file that is no application, and nothing is added.
int32_t AddLocalApp(DriverPath *app_category, const std::string &path);

#endif
