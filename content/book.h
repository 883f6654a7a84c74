#ifndef CONTENT_BOOK_H
#define CONTENT_BOOK_H

#include <cstdint>
#include <string>

#include "driver/driver_path.h"

int32_t AddLocalBook(DriverPath *book_category, const std::string &location, DriverPath **book = nullptr);

#endif
