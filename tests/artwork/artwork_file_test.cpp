#include "artwork/artwork_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "artwork/track_thumbnails.h"
#include "tests/artwork/thumb_tree.h"
#include "tests/support/artwork_file.h"
#include "tests/support/byte_text.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kDataOffset = 208;
const std::string kJpegTag("\x0D\0\0\0", 4);

struct Box {
    std::string picture = "picture";
    std::string format = "PNGf";
    std::string type = "item";
    std::string data_tag = "data";
    std::uint32_t data_offset = kDataOffset;
    std::int64_t length = -1;  // what the box claims; by default what it is

    std::string Bytes() const {
        const auto real = static_cast<std::uint32_t>(kDataOffset + picture.size());
        std::string box = BigEndian(length < 0 ? real : static_cast<std::uint32_t>(length)) + type +
                          BigEndian(data_offset) + Zeros(36) + format + Zeros(4) + BigEndian(11) +
                          BigEndian(12) + Zeros(12) + BigEndian(13) + BigEndian(14);
        box.resize(kDataOffset - 4, '\0');
        return box + data_tag + picture;
    }
};

std::string CacheFile(const std::vector<Box> &boxes, std::uint32_t header_length = 284) {
    std::string file = BigEndian(header_length) + "itch";
    file.resize(284, '\0');
    for (const Box &box : boxes)
        file += box.Bytes();
    return file;
}

struct CacheTree : ThumbTree {
    DriverPath *Load(const std::string &bytes, int32_t expected = 0) {
        const std::string name = std::to_string(++count_);
        DriverPath *thumb = AddThumb(name, Write(name + ".itc", bytes));
        EXPECT_EQ(LoadTrackThumbnails(&driver, thumb), expected);
        return thumb;
    }

  private:
    int count_ = 0;
};

TEST(ArtworkFile, PicturesAreNamedByTheirOrderAndReadInPlace) {
    CacheTree tree;
    const DriverPath *thumb = tree.Load(CacheFile({{"skipped", "what"},
                                                   {"first, and largest", "ARGb"},
                                                   {"no data", "PNGf", "item", "dato"},
                                                   {"other box", "PNGf", "info"},
                                                   {"2nd", "bGRA"},
                                                   {"third", kJpegTag},
                                                   {"4", std::string("\0\0\0\x0D", 4)},
                                                   {"fourth"}}));
    EXPECT_THAT(ThumbTree::Names(thumb), ElementsAre("small", "middle", "large"));
    ASSERT_EQ(ChildCount(thumb), 4);
    const char *types[] = {"bgra", "argb", "jpg", "png"};
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(ThumbTree::Text(ChildAt(thumb, i), "thumb_type"), types[i]);
    const DriverPath *small = ChildAt(thumb, 0);
    EXPECT_EQ(std::vector({small->kind, small->category, small->subcategory}), std::vector({4, 4, 44}));
    EXPECT_EQ(ThumbTree::Text(small, "st_size"), "18");
    EXPECT_EQ(ThumbTree::Text(small, "location"), tree.Location("1.itc"));
    std::vector<std::string> sizes;
    for (const char *key : {"width", "height", "display_width", "display_height"})
        sizes.push_back(ThumbTree::Text(small, key));
    EXPECT_THAT(sizes, ElementsAre("11", "12", "13", "14"));
    EXPECT_EQ(tree.StreamOf("library/music/1/thumb/small"), "first, and largest");
    EXPECT_EQ(tree.StreamOf("library/music/1/thumb/large"), "third");
    std::filesystem::remove(tree.files.path() / "1.itc");
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, ChildAt(ChildAt(tree.music, 0), 0)), 1);
}

TEST(ArtworkFile, WhatIsNoCacheFileMakesNoThumbnails) {
    CacheTree tree;
    tree.Load("", -1);
    tree.Load(CacheFile({Box()}).substr(0, 27), -1);
    tree.Load(BigEndian(284) + "ITCH" + Zeros(300), -1);
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, tree.AddThumb("gone", tree.Location("gone.itc"))), -1);
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, tree.AddThumb("folder", BackslashPath(tree.files.path()))),
              -1);
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, tree.AddThumb("no location", "")), 0);
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, nullptr), -1);
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, tree.music), -1);
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({}))), 0);
    const DriverPath *cut = tree.Load(CacheFile({{"cut short"}}).substr(0, 284 + kDataOffset + 3));
    EXPECT_EQ(ThumbTree::Text(ChildAt(cut, 0), "st_size"), "9");
    EXPECT_EQ(tree.At("library/music/gone/thumb/small"), nullptr);
}

TEST(ArtworkFile, BoxesThatLeadBackwardsOrNowhereEndTheWalk) {
    CacheTree tree;
    const Box good;
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({good, {"", "PNGf", "item", "data", kDataOffset, 0}}))), 1);
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({good, {"", "", "info", "data", kDataOffset, 0}, good}))), 1);
    // The picture would have a negative length and the next box be this one.
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({good, {"", "PNGf", "item", "data", kDataOffset, 207}, good}))),
              1);
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({{"x", "PNGf", "item", "data", 0xFFFFFFFF, 0xFFFFFFFE}}))), 0);
    EXPECT_EQ(ChildCount(tree.Load(CacheFile({{"x", "PNGf", "item", "data", 2, 300}, good}, 0))), 0);
    // One byte forward at each step, through a file without end.
    std::string steps = CacheFile({});
    for (int i = 0; i < 100000; ++i)
        steps += BigEndian(84) + "item" + BigEndian(84) + Zeros(36) + "PNGf" + Zeros(28) + "data";
    EXPECT_EQ(ChildCount(tree.Load(steps)), 1024);
}

// The walk as it is told: from place to place, with the position that each step leaves behind.
std::vector<std::int64_t> OffsetsByTheLetter(const std::string &file) {
    std::vector<std::int64_t> offsets;
    const auto number = [&](std::int64_t at) {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(file[static_cast<size_t>(at + i)]);
        return std::int64_t{value};
    };
    const auto text = [&](std::int64_t at) { return file.substr(static_cast<size_t>(at), 4); };
    const auto size = static_cast<std::int64_t>(file.size());
    std::int64_t position = number(0);
    while (position + 84 <= size) {
        const std::int64_t start = position;
        position += 84;
        const std::int64_t length = number(start);
        if (text(start + 4) != "item") {
            if (length == 0) break;
            position += length - 84;
            continue;
        }
        const std::int64_t image = length - number(start + 8);
        position += number(start + 8) - 88;
        if (image < 0 || length == 0) break;
        const bool has_data = position >= 0 && position + 4 <= size && text(position) == "data";
        position += 4;
        const std::string format = text(start + 48);
        const bool known = format == "PNGf" || format == kJpegTag || format == "ARGb" || format == "bGRA";
        if (has_data && known) offsets.push_back(position);
        position += image;
    }
    return offsets;
}

TEST(ArtworkFile, AgreesWithTheWalkByTheLetterOnAnyRowOfBoxes) {
    TempFolder folder;
    std::mt19937 engine(20240607);
    const auto pick = [&](auto... options) {
        const std::vector values{options...};
        return values[engine() % values.size()];
    };
    size_t images = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<Box> boxes(1 + engine() % 6);
        for (Box &box : boxes) {
            box.picture = std::string(engine() % 300, 'p');
            // Mostly as it should be, so that the walk comes far.
            const auto rarely = [&](auto usual, auto odd) { return engine() % 8 == 0 ? odd : usual; };
            box.format =
                rarely(pick(std::string("PNGf"), kJpegTag, std::string("bGRA")), std::string("what"));
            box.type = rarely(std::string("item"), std::string("info"));
            box.data_tag = rarely(std::string("data"), std::string("Data"));
            box.data_offset = rarely(kDataOffset, pick(88U, 84U, 3U, 400U));
            const auto whole = static_cast<std::int64_t>(kDataOffset + box.picture.size());
            box.length = rarely(whole, pick(std::int64_t{85}, std::int64_t{1}, whole - 100, whole + 100));
        }
        std::string file = CacheFile(boxes, pick(284U, 284U, 284U, 28U, 300U));
        if (engine() % 4 == 0) file.resize(file.size() - engine() % file.size() / 2);
        const std::vector<std::int64_t> expected = OffsetsByTheLetter(file);
        const auto read = ReadArtworkFile(folder.Write("a.itc", file).string());
        ASSERT_TRUE(read);
        std::vector<std::int64_t> found;
        for (const ArtworkImage &image : *read)
            found.push_back(image.offset);
        ASSERT_EQ(found, expected) << "round " << round;
        images += found.size();
    }
    EXPECT_GT(images, 200U);
}

}  // namespace
