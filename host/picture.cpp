#include "host/picture.h"

#include <png.h>

#include <algorithm>
#include <array>

#include "host/host_error.h"
#include "host/text.h"

namespace velmarhost {
namespace {

struct FormatRow {
    PictureFormat format;
    std::string_view name;
    std::string_view extension;
    std::string_view magic;  // how such a file begins; empty where nothing marks it
};

using namespace std::string_view_literals;

constexpr std::array kFormats = {
    FormatRow{PictureFormat::kPng, "PNG", ".png", "\x89PNG\r\n\x1A\n"sv},
    FormatRow{PictureFormat::kJpeg, "JPEG", ".jpg", "\xFF\xD8\xFF"sv},
    FormatRow{PictureFormat::kGif, "GIF", ".gif", "GIF8"sv},
    FormatRow{PictureFormat::kBmp, "BMP", ".bmp", "BM"sv},
    FormatRow{PictureFormat::kRawArgb, "raw pixels", "", ""},
    FormatRow{PictureFormat::kRawBgra, "raw pixels", "", ""},
    FormatRow{PictureFormat::kUnknown, "unknown format", "", ""},
};

const FormatRow &RowOf(PictureFormat format) {
    return *std::find_if(kFormats.begin(), kFormats.end() - 1,
                         [format](const FormatRow &row) { return row.format == format; });
}

// `thumb_type` without the dot that the one of a book's cover has.
std::string_view TypeWordOf(const Picture &picture) {
    return StripCharacters(picture.type, ".");
}

HostError PictureError(const Picture &picture, const std::string &text) {
    return {ExitCode::kIncomplete, "the picture \"" + picture.path + "\" " + text};
}

std::string SideText(std::optional<int64_t> side) {
    return side ? std::to_string(*side) : "?";
}

bool HasPlausibleSize(const Picture &picture) {
    constexpr auto kMostPixels = static_cast<int64_t>(limits::kPicturePixels.value);
    const int64_t width = picture.width.value_or(0);
    const int64_t height = picture.height.value_or(0);
    // Either side alone is small enough that the product cannot overflow.
    if (width <= 0 || height <= 0 || width > kMostPixels || height > kMostPixels) return false;
    return width * height <= kMostPixels;
}

void CheckRawSize(const Picture &picture) {
    const std::string size = SideText(picture.width) + " x " + SideText(picture.height) + " pixels";
    if (!HasPlausibleSize(picture)) throw PictureError(picture, "is raw pixels, but " + size + " is no size");
    const auto needed = static_cast<std::size_t>(*picture.width * *picture.height * 4);
    if (picture.bytes.size() != needed) {
        throw PictureError(picture, "is damaged: " + size + " take " + std::to_string(needed) +
                                        " bytes, and it has " + std::to_string(picture.bytes.size()));
    }
}

std::string EncodePng(const Picture &picture, png_uint_32 pixel_format) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(*picture.width);
    image.height = static_cast<png_uint_32>(*picture.height);
    image.format = pixel_format;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string png(size, '\0');
    if (png_image_write_to_memory(&image, png.data(), &size, 0, picture.bytes.data(), 0, nullptr) == 0)
        throw PictureError(picture, std::string("could not be converted: ") + image.message);
    png.resize(size);
    return png;
}

}  // namespace

// The word for raw pixels names the bytes of a little-endian 32-bit number from the highest to the lowest,
// which is the order of the bytes in the file turned around: real "bgra" pixels lie as alpha, red, green,
// blue. Raw pixels can begin like a file of any format, so their word goes first. All other words are not
// reliable: the picture in a tag is always "jpg" and an application's icon always "png", whatever they are.
PictureFormat FormatOf(const Picture &picture) {
    const std::string_view word = TypeWordOf(picture);
    if (word == "bgra") return PictureFormat::kRawArgb;
    if (word == "argb") return PictureFormat::kRawBgra;
    for (const FormatRow &row : kFormats) {
        if (!row.magic.empty() && picture.bytes.starts_with(row.magic)) return row.format;
    }
    return PictureFormat::kUnknown;
}

bool IsRaw(PictureFormat format) {
    return format == PictureFormat::kRawArgb || format == PictureFormat::kRawBgra;
}

std::string_view FormatName(PictureFormat format) {
    return RowOf(format).name;
}

std::string_view FormatExtension(PictureFormat format) {
    return RowOf(format).extension;
}

std::string AsPng(const Picture &picture) {
    const PictureFormat format = FormatOf(picture);
    if (format == PictureFormat::kPng) return picture.bytes;
    if (!IsRaw(format)) {
        throw PictureError(picture, "cannot be converted to PNG: it is a file of its own, " +
                                        std::string(FormatName(format)) +
                                        ". Leave --png out to get it as it is");
    }
    CheckRawSize(picture);
    return EncodePng(picture, format == PictureFormat::kRawArgb ? PNG_FORMAT_ARGB : PNG_FORMAT_BGRA);
}

}  // namespace velmarhost
