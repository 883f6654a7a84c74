#include "artwork/id3_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#include "artwork/track_thumbnails.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"

using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

struct Id3Tree : ThumbTree {
    DriverPath *AddScannedThumb(const std::string &name, const std::string &bytes) {
        DriverPath *thumb = AddThumb(name, Write(name, bytes));
        AddAttribute(thumb, "thumb_mode", "ID3");
        return thumb;
    }
    // The bytes of the thumbnail that the file gives.
    std::string Picture(const std::string &name, const std::string &bytes) {
        DriverPath *thumb = AddScannedThumb(name, bytes);
        EXPECT_EQ(LoadTrackThumbnails(&driver, thumb), 0);
        return ChildCount(thumb) == 0 ? "(none)" : StreamOf("library/music/" + name + "/thumb/small");
    }
};

TEST(Id3Picture, TheFirstPictureThatIsNotEmptyBecomesAFileOfItsOwn) {
    Id3Tree tree;
    const std::string frames =
        Id3Text("TIT2", "title") + PictureFrame("") + PictureFrame("first") + PictureFrame("second, longer");
    DriverPath *thumb = tree.AddScannedThumb("my.song.mp3", Id3Tag(frames) + SilentSound(1));
    EXPECT_EQ(tree.StreamOf("library/music/my.song.mp3/thumb/small"), "first");
    EXPECT_THAT(ThumbTree::Names(thumb), ElementsAre("small"));
    const DriverPath *small = ChildAt(thumb, 0);
    EXPECT_EQ(ThumbTree::Text(small, "thumb_type"), "jpg");
    EXPECT_EQ(ThumbTree::Text(small, "st_size"), "5");
    EXPECT_EQ(ThumbTree::Text(small, "location"), tree.temp.path().string() + "\\my.song.mp3.jpg");
    EXPECT_EQ(FindAttribute(small, "width"), std::nullopt);
    EXPECT_EQ(small->thumb_offset, 0);
    // A file of the same name in another folder takes the same place; no other file is left behind.
    DriverPath *other =
        tree.AddThumb("other", tree.Write("folder/my.song.mp3", Id3Tag(PictureFrame("later"))));
    AddAttribute(other, "thumb_mode", "id3");
    EXPECT_EQ(tree.StreamOf("library/music/other/thumb/small"), "later");
    EXPECT_EQ(tree.StreamOf("library/music/my.song.mp3/thumb/small"), "later");
    EXPECT_EQ(std::distance(fs::directory_iterator(tree.temp.path()), {}), 1);
}

TEST(Id3Picture, AFileWithoutOneMakesNoThumbnail) {
    Id3Tree tree;
    const std::string picture = Id3Tag(PictureFrame("picture"));
    EXPECT_EQ(tree.Picture("empty.mp3", ""), "(none)");
    EXPECT_EQ(tree.Picture("untagged.mp3", SilentSound(1)), "(none)");
    EXPECT_EQ(tree.Picture("text.mp3", Id3Tag(Id3Text("TIT2", "APIC"))), "(none)");
    EXPECT_EQ(tree.Picture("cut.mp3", picture.substr(0, 12)), "(none)");
    EXPECT_EQ(tree.Picture("not at the start.mp3", "junk" + picture + SilentSound(1)), "(none)");
    EXPECT_EQ(tree.Picture("beyond the end.mp3", "ID3\3" + Zeros(2) + SynchSafe((256 << 20) - 1) +
                                                     PictureFrame("picture").substr(0, 20)),
              "(none)");
    DriverPath *gone = tree.AddThumb("gone.mp3", tree.Location("gone.mp3"));
    AddAttribute(gone, "thumb_mode", "id3");
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, gone), 0);
    EXPECT_EQ(ChildCount(gone), 0);
}

TEST(Id3Picture, NoPlaceForTheCopyIsNoThumbnail) {
    Id3Tree tree;
    const std::string file = Id3Tag(PictureFrame("picture"));
    EXPECT_EQ(tree.Picture(std::string(250, 'n') + ".mp3", file), "(none)") << "too long";
    fs::create_directory(tree.temp.path() / "taken.mp3.jpg");
    EXPECT_EQ(tree.Picture("taken.mp3", file), "(none)");
    // The name of a location may lead elsewhere if its separators are slashes.
    DriverPath *thumb = tree.AddThumb("x", tree.files.path().string() + "\\../" + "x.mp3");
    tree.files.Write("../x.mp3", file);
    AddAttribute(thumb, "thumb_mode", "id3");
    EXPECT_EQ(LoadTrackThumbnails(&tree.driver, thumb), 0);
    EXPECT_EQ(ChildCount(thumb), 0);
    fs::remove(tree.files.path() / "../x.mp3");
    // A link that someone has put there is not written through.
    fs::create_symlink(tree.files.Write("precious", "kept"), tree.temp.path() / "link.mp3.jpg");
    EXPECT_EQ(tree.Picture("link.mp3", file), "picture");
    EXPECT_EQ(ReadWholeFile(tree.files.path() / "precious"), "kept");
}

// A frame's content may hold a frame, and so on: TagLib would call itself for each.
TEST(Id3Picture, NestedChaptersDoNotUseUpTheStack) {
    constexpr int kDepth = 200000;
    std::string heads;
    size_t inner = 0;
    for (int i = 0; i < kDepth; ++i) {
        std::string head =
            "CHAP" + BigEndian(static_cast<std::uint32_t>(inner + 18)) + Zeros(2) + "a" + Zeros(17);
        std::reverse(head.begin(), head.end());
        heads += head;
        inner += 28;
    }
    std::reverse(heads.begin(), heads.end());
    Id3Tree tree;
    EXPECT_EQ(tree.Picture("deep.mp3", Id3Tag(heads + PictureFrame("picture"))), "picture");
}

std::string CompressedPictureFrame(const std::string &picture) {
    const std::string body = PictureBody(picture);
    uLongf size = compressBound(body.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef *>(packed.data()), &size, reinterpret_cast<const Bytef *>(body.data()),
             body.size());
    packed.resize(size);
    return Id3Frame("APIC", BigEndian(static_cast<std::uint32_t>(body.size())) + packed,
                    std::string("\0\x80", 2));
}

TEST(Id3Picture, CompressedFramesAreReadWhereTheyCannotGrowTooLarge) {
    Id3Tree tree;
    EXPECT_EQ(tree.Picture("packed.mp3", Id3Tag(CompressedPictureFrame("picture"))), "picture");
    std::string noise(300 << 10, ' ');
    std::generate(noise.begin(), noise.end(), std::mt19937(1));
    const std::string bomb = CompressedPictureFrame(noise);
    ASSERT_GT(bomb.size(), 256U * 1024);
    EXPECT_EQ(tree.Picture("bomb.mp3", Id3Tag(bomb + PictureFrame("behind it"))), "behind it");
}

}  // namespace
