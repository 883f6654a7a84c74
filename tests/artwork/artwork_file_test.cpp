#include "artwork/artwork_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "artwork/track_thumbnails.h"
#include "fixtures/byte_text.h"
#include "platform/limits.h"
#include "tests/artwork/thumb_tree.h"

namespace {

constexpr std::uint32_t kDataOffset = 208;
const std::string kJpegTag("\x0D\0\0\0", 4);

// A box for the end of a file; it claims its real length unless told otherwise.
std::string Box(const std::string &picture, const std::string &format, const std::string &tags = "itemdata",
                std::uint32_t data_offset = kDataOffset, std::int64_t length = -1) {
    const auto real = static_cast<std::uint32_t>(kDataOffset + picture.size());
    std::string box = BigEndian(length < 0 ? real : static_cast<std::uint32_t>(length)) + tags.substr(0, 4) +
                      BigEndian(data_offset) + Zeros(36) + format + Zeros(4) + BigEndian(11) + BigEndian(12) +
                      Zeros(12) + BigEndian(13) + BigEndian(14);
    box.resize(kDataOffset - 4, '\0');
    return box + tags.substr(4) + picture;
}

std::string Header(std::uint32_t length = 284) {
    return BigEndian(length) + "itch" + Zeros(276);
}

struct ArtworkFile : ThumbTree, testing::Test {};

TEST_F(ArtworkFile, PicturesAreNamedByTheirOrderAndReadInPlace) {
    const std::string location = Write(
        "a.itc", Header() + Box("first, and largest", "ARGb") + Box("2nd", "bGRA") + Box("third", kJpegTag) +
                     Box("4", std::string("\0\0\0\x0D", 4)) + Box("4th", "PNGf"));
    DriverPath *thumb = AddThumb("a", location);
    ASSERT_EQ(LoadTrackThumbnails(&driver, thumb), 0);
    EXPECT_EQ(LoadTrackThumbnails(&driver, thumb), 1);
    EXPECT_THAT(Names(thumb), testing::ElementsAre("small", "middle", "large", "(none)"));
    const char *types[] = {"bgra", "argb", "jpg", "png"};
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(FindAttribute(ChildAt(thumb, i), "thumb_type"), types[i]);
    EXPECT_EQ(TreeText(ChildAt(thumb, 0), ""), " 4 4 44 thumb_type=bgra location=" + location +
                                                   " st_size=18 width=11 height=12 display_width=13"
                                                   " display_height=14\n");
    EXPECT_EQ(StreamOf("library/music/a/thumb/small"), "first, and largest");
    EXPECT_EQ(StreamOf("library/music/a/thumb/large"), "third");
}

TEST_F(ArtworkFile, WhatIsNoCacheFileMakesNoThumbnails) {
    std::string steps = Header();
    for (uint64_t i = 0; i <= limits::kArtworkBoxes.value; ++i)
        steps += BigEndian(84) + "item" + BigEndian(84) + Zeros(36) + "PNGf" + Zeros(28) + "data";
    const std::tuple<std::string, int32_t, size_t> rows[] = {
        {"", -1, 0},
        {Header().substr(0, 27), -1, 0},
        {Header().substr(0, 28), 0, 0},
        {BigEndian(284) + "ITCH" + Zeros(300), -1, 0},
        {(Header() + Box("cut short", "PNGf")).substr(0, 284 + kDataOffset + 3), 0, 1},
        // One step forward at a time.
        {steps.substr(0, steps.size() - 84), 0, limits::kArtworkBoxes.value},
        {steps, 0, limits::kArtworkBoxes.value}};
    const auto load = [&](DriverPath *thumb) { return LoadTrackThumbnails(&driver, thumb); };
    for (const auto &[bytes, result, pictures] : rows) {
        DriverPath *thumb = AddThumb("x", Write("x.itc", bytes));
        EXPECT_EQ(load(thumb), result) << bytes.size();
        EXPECT_EQ(Names(thumb).size(), pictures) << bytes.size();
    }
    EXPECT_EQ(load(AddThumb("gone", Location("gone.itc"))), -1);
    EXPECT_EQ(load(AddThumb("folder", Location(""))), -1);
    EXPECT_EQ(load(music), -1);
}

TEST_F(ArtworkFile, PicturesOfRealFilesAreWhole) {
    const std::filesystem::path samples = SAMPLES_FOLDER;
    if (!std::filesystem::is_directory(samples)) GTEST_SKIP() << "no files of others";
    size_t pictures = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(samples)) {
        if (entry.path().extension() != ".itc") continue;
        const std::string file = ReadWholeFile(entry.path());
        const auto images = ReadArtworkFile(BackslashPath(entry.path()));
        ASSERT_TRUE(images) << entry;
        for (const ArtworkImage &image : *images) {
            const std::string bytes =
                file.substr(static_cast<size_t>(image.offset), static_cast<size_t>(image.size));
            EXPECT_EQ(bytes.size(), static_cast<size_t>(image.size)) << entry;
            const std::map<std::string, bool> is_whole = {
                {"png", bytes.starts_with("\x89PNG") && bytes.find("IEND", bytes.size() - 8) != bytes.npos},
                {"jpg", bytes.starts_with("\xFF\xD8") && bytes.ends_with("\xFF\xD9")},
                {"argb", image.size == image.width * image.height * 4},
                {"bgra", image.size == image.width * image.height * 4}};
            EXPECT_TRUE(is_whole.at(image.type)) << entry << " " << image.type;
            ++pictures;
        }
    }
    EXPECT_GT(pictures, 0U);
}

// The walk as it is told, with texts cut out of the whole file.
std::vector<std::int64_t> OffsetsByTheLetter(const std::string &file) {
    std::vector<std::int64_t> offsets;
    const auto text = [&](std::int64_t at) {
        return file.substr(std::min(static_cast<size_t>(at), file.size()), 4);
    };
    const auto number = [&](std::int64_t at) {
        std::int64_t value = 0;
        for (const char byte : text(at))
            value = value * 256 + static_cast<unsigned char>(byte);
        return value;
    };
    const std::vector<std::string> known = {"PNGf", kJpegTag, "ARGb", "bGRA"};
    const auto size = static_cast<std::int64_t>(file.size());
    std::int64_t length = 0;
    for (std::int64_t start = number(0); start + 84 <= size; start += length) {
        length = number(start);
        const bool is_item = text(start + 4) == "item";
        const std::int64_t data = start + number(start + 8);
        if (length == 0 || (is_item && data > start + length)) break;
        const bool is_known = std::find(known.begin(), known.end(), text(start + 48)) != known.end();
        if (is_item && is_known && data >= 4 && text(data - 4) == "data") offsets.push_back(data);
    }
    return offsets;
}

TEST_F(ArtworkFile, AgreesWithTheWalkByTheLetterOnAnyRowOfBoxes) {
    std::mt19937 engine(20240607);
    const auto pick = [&](const auto &values) { return values[engine() % values.size()]; };
    // Mostly as it should be, so that the walk comes far.
    const auto rarely = [&](auto usual, auto odd) { return engine() % 8 == 0 ? odd : usual; };
    const std::vector<std::string> formats = {"PNGf", kJpegTag, "bGRA", "PNGf", "what"};
    const std::vector<std::string> odd_tags = {"infodata", "itemData"};
    const std::vector<std::uint32_t> odd_offsets = {88, 84, 3, 2, 400, 0xFFFFFFFF};
    size_t images = 0;
    for (int round = 0; round < 600; ++round) {
        std::string file = Header(pick(std::vector{284U, 284U, 284U, 28U, 300U, 0U}));
        for (size_t boxes = 1 + engine() % 6; boxes > 0; --boxes) {
            const std::string picture(engine() % 300, 'p');
            const auto whole = static_cast<std::int64_t>(kDataOffset + picture.size());
            const std::vector<std::int64_t> odd = {0, 1, 85, 207, 208, whole - 100, whole + 100, 0xFFFFFFFE};
            file += Box(picture, pick(formats), rarely(std::string("itemdata"), pick(odd_tags)),
                        rarely(kDataOffset, pick(odd_offsets)), rarely(whole, pick(odd)));
        }
        if (engine() % 4 == 0) file.resize(file.size() - engine() % file.size() / 2);
        std::vector<std::int64_t> found;
        const auto read = ReadArtworkFile(folder.Write("a.itc", file).string());
        for (const ArtworkImage &image : read.value())
            found.push_back(image.offset);
        ASSERT_EQ(found, OffsetsByTheLetter(file)) << "round " << round;
        images += found.size();
    }
    EXPECT_GT(images, 400U);
}

}  // namespace
