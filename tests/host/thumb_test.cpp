#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/host/decoded_png.h"
#include "tests/host/fake_pictures.h"
#include "tests/host/host_process.h"

namespace {

using testing::HasSubstr;

// The six pixels in a PNG file; empty when it holds no picture of 2 x 3.
std::string DecodedPixels(const std::string &png) {
    const DecodedPng picture = DecodePng(png);
    return picture.width == 2 && picture.height == 3 ? picture.pixels : std::string();
}

class Thumb : public testing::Test {
  protected:
    // What the program writes to standard output for these arguments behind "thumb".
    std::string Bytes(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "thumb");
        arguments.insert(arguments.end(), {"-o", "-"});
        const HostResult result = host_.Run(arguments);
        EXPECT_EQ(result.exit_code, 0) << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }
    void ExpectFailure(std::vector<std::string> arguments, int exit_code, const std::string &words) {
        const std::string target = (host_.folder() / "picture").string();
        arguments.insert(arguments.begin(), "thumb");
        arguments.insert(arguments.end(), {"-o", target});
        const HostResult result = host_.Run(arguments);
        EXPECT_EQ(result.exit_code, exit_code) << words;
        EXPECT_THAT(result.errors, HasSubstr(words));
        EXPECT_FALSE(std::filesystem::exists(target)) << words;
    }

    HostProcess host_;
    const std::string pixels_ = FakePixels({0, 1, 2, 3});
};

TEST_F(Thumb, PictureComesAsItIsAndTheLargestByDefault) {
    EXPECT_EQ(Bytes({"library/art/20.mp3"}), FakePixels(kAlphaFirst));
    EXPECT_EQ(Bytes({"library/art/20.m4a"}), FakePixels(kBlueFirst)) << "the only one is small";
    EXPECT_EQ(Bytes({"library/art/20.mp3", "--size", "middle"}), FakePng("middle"));
    EXPECT_EQ(Bytes({"library/art/20.mp3/thumb", "--size", "small"}), FakePng("small"));
    EXPECT_EQ(Bytes({"library/art/20.mp3/thumb/small"}), FakePng("small"));
    EXPECT_EQ(Bytes({"library/art/22.epub"}), FakeJpeg());
}

TEST_F(Thumb, RawPixelsOfBothOrdersBecomePng) {
    EXPECT_EQ(DecodedPixels(Bytes({"library/art/20.mp3", "--png"})), pixels_);
    EXPECT_EQ(DecodedPixels(Bytes({"library/art/20.m4a", "--png"})), pixels_);
    EXPECT_EQ(Bytes({"library/art/20.mp3", "--size", "small", "--png"}), FakePng("small")) << "PNG already";
}

TEST_F(Thumb, FileTakesThePlaceOfAnOlderOne) {
    const std::filesystem::path target = host_.files().Write("cover.any", "older");
    const HostResult result = host_.Run({"thumb", "library/art/20.mp3", "--png", "-o", target.string()});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("large: PNG, 2 x 3 pixels, "));
    EXPECT_EQ(DecodedPixels(ReadWholeFile(target)), pixels_);
    EXPECT_EQ(host_.LeftBehind(), 0U);
    EXPECT_EQ(host_.Run({"thumb", "library/art/22.epub", "-o", "/dev/null"}).exit_code, 1) << "no file";
    EXPECT_EQ(host_.Run({"thumb", "library/art/22.epub", "-o", "/nowhere/at/all"}).exit_code, 1);
}

TEST_F(Thumb, MissingPicturesAreExplained) {
    ExpectFailure({"library/art/26.mp3"}, 1, "has no picture");
    ExpectFailure({"library/art/26.mp3/thumb/small"}, 4, "no such path");
    ExpectFailure({"library/art/99.mp3"}, 4, "no such path");
    ExpectFailure({"library/art"}, 1, "is a folder");
    ExpectFailure({"library/art/20.m4a", "--size", "large"}, 1, "There is: small");
    ExpectFailure({"library/art/20.mp3/thumb/small", "--size", "large"}, 2, "Leave --size out");
    ExpectFailure({"library/art/20.mp3", "--size", "huge"}, 2, "--size");
    ExpectFailure({"library/art/23.mp3"}, 1, "C:/Artwork/1.itc");
    ExpectFailure({"library/art/25.ipa"}, 1, "could not be had from its application");
}

TEST_F(Thumb, DamagedAndForeignPicturesAreNotConverted) {
    ExpectFailure({"library/art/24.mp3", "--png", "--size", "small"}, 1,
                  "2 x 4 pixels take 32 bytes, and it has 24");
    ExpectFailure({"library/art/24.mp3", "--png", "--size", "middle"}, 1, "4294967296 x 4294967296 pixels");
    ExpectFailure({"library/art/24.mp3", "--png"}, 1, "? x 3 pixels is no size");
    ExpectFailure({"library/art/22.epub", "--png"}, 1, "JPEG. Leave --png out");
}

TEST_F(Thumb, ListsMarkWhatHasAPicture) {
    const std::string list = host_.Run({"ls", "-l", "library/art"}).output;
    EXPECT_THAT(list, HasSubstr("2010-01-01 00:00  *  20.mp3  Band - Cover\n"));
    EXPECT_THAT(list, HasSubstr("2010-01-01 00:00     26.mp3  Band - Plain\n"));
    const auto json = nlohmann::json::parse(host_.Run({"ls", "--json", "library/art"}).output);
    ASSERT_EQ(json.size(), 7U);
    EXPECT_EQ(json[0]["has_thumbnail"], true) << "of the first entry too";
    EXPECT_EQ(json[6]["has_thumbnail"], false);
    const auto node = nlohmann::json::parse(host_.Run({"stat", "--json", "library/art/22.epub"}).output);
    EXPECT_EQ(node["has_thumbnail"], true);
    EXPECT_THAT(host_.Run({"stat", "library/art/22.epub"}).output, HasSubstr("media_has_thumb   true\n"));
}

}  // namespace
