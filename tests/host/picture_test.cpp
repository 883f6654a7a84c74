#include "host/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <array>

#include "fixtures/temp_folder.h"
#include "host/host_error.h"

namespace velmarhost {
namespace {

// Red, green, blue and alpha of each pixel, as libpng reads them.
std::string DecodedPixels(const std::string &png, std::size_t width, std::size_t height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0);
    EXPECT_EQ(image.width, width);
    EXPECT_EQ(image.height, height);
    image.format = PNG_FORMAT_RGBA;
    std::string pixels(PNG_IMAGE_SIZE(image), '\0');
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    return pixels;
}

// A cache file of iTunes itself shows a blue heart on white. Its first picture is 128 x 128 raw pixels under
// the tag "ARGb", behind a header of 284 bytes and a head of 208.
TEST(Picture, RealRawPixelsKeepTheirColours) {
    const std::filesystem::path sample = SAMPLES_FOLDER "/itc/java-itc-argb-test.itc";
    if (!std::filesystem::exists(sample)) GTEST_SKIP() << sample << " is not there";
    constexpr std::size_t kSide = 128;
    const std::string raw = ReadWholeFile(sample).substr(284 + 208, kSide * kSide * 4);
    const std::string pixels = DecodedPixels(AsPng({"", raw, "bgra", kSide, kSide}), kSide, kSide);
    const auto *middle = reinterpret_cast<const unsigned char *>(pixels.data()) + (70 * kSide + 64) * 4;
    EXPECT_EQ(pixels.substr(0, 4), "\xFF\xFF\xFF\xFF") << "white around it";
    EXPECT_TRUE(middle[0] < 100 && middle[2] > 200 && middle[3] == 255) << "blue in the heart";
}

TEST(Picture, RawPixelsOfBothOrdersBecomePng) {
    const std::string pixels = "RGBARGB\xFFr\x01g\x02\x03\x04\x05\x06qwertyui";
    for (const auto &[type, order] : std::vector<std::pair<std::string, std::array<std::size_t, 4>>>{
             {"bgra", {3, 0, 1, 2}}, {"argb", {2, 1, 0, 3}}}) {
        std::string raw;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            raw += pixels[i / 4 * 4 + order[i % 4]];
        EXPECT_EQ(DecodedPixels(AsPng({"", raw, type, 2, 3}), 2, 3), pixels);
    }
}

TEST(Picture, FormatIsToldByTheBytesButForRawPixels) {
    const std::string png = "\x89PNG\r\n\x1A\n";
    using Case = std::tuple<Picture, PictureFormat, std::string>;
    const std::vector<Case> cases = {{{"", "\xFF\xD8\xFF\xE0", "png", {}, {}}, PictureFormat::kJpeg, ".jpg"},
                                     {{"", png, ".jpg", {}, {}}, PictureFormat::kPng, ".png"},
                                     {{"", "GIF89a", "", {}, {}}, PictureFormat::kGif, ".gif"},
                                     {{"", "BM", "", {}, {}}, PictureFormat::kBmp, ".bmp"},
                                     {{"", png, "bgra", 1, 1}, PictureFormat::kRawArgb, ""},
                                     {{"", png, ".argb", 1, 1}, PictureFormat::kRawBgra, ""},
                                     {{"", "<svg/>", "", {}, {}}, PictureFormat::kUnknown, ""}};
    for (const auto &[picture, format, extension] : cases)
        EXPECT_TRUE(FormatOf(picture) == format && FormatExtension(format) == extension) << extension;
    EXPECT_EQ(AsPng({"", png, "", {}, {}}), png) << "PNG already";
}

TEST(Picture, DamagedAndForeignPicturesAreNotConverted) {
    const std::string raw(24, 'x');
    constexpr int64_t kHuge = int64_t{1} << 32;
    const std::vector<std::pair<Picture, std::string>> cases = {
        {{"p", raw, "bgra", 2, 4}, "the picture \"p\" is damaged: 2 x 4 pixels take 32 bytes, and it has 24"},
        {{"p", raw, "bgra", 2, 2}, "2 x 2 pixels take 16 bytes, and it has 24"},
        {{"p", {1, '\0'}, "bgra", kHuge, kHuge},
         "is raw pixels, but 4294967296 x 4294967296 pixels is no size"},
        {{"p", raw, "bgra", {}, 3}, "? x 3 pixels is no size"},
        {{"p", raw, "bgra", 2, -3}, "2 x -3 pixels is no size"},
        {{"p", "\xFF\xD8\xFF", "", 2, 3}, "a file of its own, JPEG. Leave --png out to get it as it is"}};
    for (const auto &[picture, words] : cases)
        EXPECT_THAT([&] { AsPng(picture); }, testing::ThrowsMessage<HostError>(testing::HasSubstr(words)));
}

}  // namespace
}  // namespace velmarhost
