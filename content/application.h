#ifndef CONTENT_APPLICATION_H
#define CONTENT_APPLICATION_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

int32_t AddLocalApp(DriverPath *app_category, const std::string &path);

#endif
