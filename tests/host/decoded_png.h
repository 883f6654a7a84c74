#ifndef TESTS_HOST_DECODED_PNG_H
#define TESTS_HOST_DECODED_PNG_H

#include <png.h>

#include <cstddef>
#include <string>

// What libpng reads from a PNG file.
struct DecodedPng {
    std::size_t width = 0;  // 0 when it is none
    std::size_t height = 0;
    std::string pixels{};  // red, green, blue and alpha of each
};

inline DecodedPng DecodePng(const std::string &png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0) return {};
    image.format = PNG_FORMAT_RGBA;
    std::string pixels(PNG_IMAGE_SIZE(image), '\0');
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) return {};
    return {image.width, image.height, pixels};
}

#endif
