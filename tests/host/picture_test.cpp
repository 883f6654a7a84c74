#include "host/picture.h"

#include <gtest/gtest.h>

#include "tests/host/decoded_png.h"
#include "tests/support/temp_folder.h"

namespace velmarhost {
namespace {

// A cache file of iTunes itself shows a blue heart on white. Its first picture is 128 x 128 raw pixels under
// the tag "ARGb", behind a header of 284 bytes and a head of 208.
TEST(Picture, RealRawPixelsKeepTheirColours) {
    const std::filesystem::path sample = SAMPLES_FOLDER "/itc/java-itc-argb-test.itc";
    if (!std::filesystem::exists(sample)) GTEST_SKIP() << sample << " is not there";
    constexpr std::size_t kSide = 128;
    const std::string pixels = ReadWholeFile(sample).substr(284 + 208, kSide * kSide * 4);
    const DecodedPng png = DecodePng(AsPng({"", pixels, "bgra", kSide, kSide}));
    ASSERT_EQ(png.width, kSide);
    ASSERT_EQ(png.height, kSide);
    const auto byte = [&png](std::size_t x, std::size_t y, std::size_t index) {
        return static_cast<unsigned char>(png.pixels[(y * kSide + x) * 4 + index]);
    };
    EXPECT_EQ(byte(0, 0, 0), 255) << "white around it";
    EXPECT_EQ(byte(0, 0, 2), 255);
    EXPECT_LT(byte(64, 70, 0), 100) << "little red in the heart";
    EXPECT_GT(byte(64, 70, 2), 200) << "much blue";
    for (std::size_t i = 0; i < kSide * kSide; ++i)
        ASSERT_EQ(byte(i % kSide, i / kSide, 3), 255) << "alpha";
}

TEST(Picture, FormatIsToldByTheBytesButForRawPixels) {
    EXPECT_EQ(FormatOf({"", "\xFF\xD8\xFF\xE0", "png", {}, {}}), PictureFormat::kJpeg);
    EXPECT_EQ(FormatOf({"", "\x89PNG\r\n\x1A\n", ".jpg", {}, {}}), PictureFormat::kPng);
    EXPECT_EQ(FormatOf({"", "\xFF\xD8\xFF\xE0", "bgra", 1, 1}), PictureFormat::kRawArgb);
    EXPECT_EQ(FormatOf({"", "<svg/>", "", {}, {}}), PictureFormat::kUnknown);
}

}  // namespace
}  // namespace velmarhost
