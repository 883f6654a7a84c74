#ifndef HOST_PICTURE_H
#define HOST_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/limits.h"

namespace velmarhost {

// A picture of the library as the driver gives it.
struct Picture {
    std::string path;   // in the tree, for messages
    std::string bytes;  // a whole picture file, or raw pixels
    std::string type;   // `thumb_type`: "png", "jpg", ".jpg", "bgra", "argb", or empty
    // In pixels, as the driver tells them. They matter for raw pixels, which do not say it themselves.
    std::optional<int64_t> width;
    std::optional<int64_t> height;
};

enum class PictureFormat {
    kUnknown,
    kPng,
    kJpeg,
    kGif,
    kBmp,
    // Raw pixels, row by row from the top, four bytes each, named by the order in which their bytes lie.
    kRawArgb,
    kRawBgra,
};

// What the most raw pixels take. A picture file of so many bytes is none either.
constexpr std::size_t kMostPictureBytes = limits::kPicturePixels.value * 4;

PictureFormat FormatOf(const Picture &picture);
bool IsRaw(PictureFormat format);

// "PNG", "JPEG"; for people.
std::string_view FormatName(PictureFormat format);
// ".png", ".jpg"; empty for what has none.
std::string_view FormatExtension(PictureFormat format);

// The bytes of a PNG file: a PNG picture as it is, raw pixels converted. Alpha counts as straight, not
// multiplied into the colours: it is 255 in every cache file that was looked at, where both are the same.
// Throws HostError for other formats and for raw pixels that do not fit their width and height.
std::string AsPng(const Picture &picture);

}  // namespace velmarhost

#endif
