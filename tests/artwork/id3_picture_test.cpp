#include "artwork/id3_picture.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#include "artwork/track_thumbnails.h"
#include "content/path_text.h"
#include "platform/limits.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"

namespace {

namespace fs = std::filesystem;

struct Id3Picture : ThumbTree, testing::Test {
    // The bytes of the thumbnail that the file gives.
    std::string PictureAt(const std::string &location) {
        DriverPath *thumb = AddThumb("x", location);
        AddAttribute(thumb, "thumb_mode", "ID3");
        EXPECT_EQ(LoadTrackThumbnails(&driver, thumb), 0);
        if (ChildCount(thumb) == 0) return "(none)";
        last = TreeText(ChildAt(thumb, 0), ChildNameAt(thumb, 0));
        EXPECT_EQ(ChildAt(thumb, 0)->thumb_offset, 0);
        return ReadWholeFile(temp_folder / (std::string(FileNameOfPath(location)) + ".jpg"));
    }
    std::string Picture(const std::string &name, const std::string &bytes) {
        return PictureAt(Write(name, bytes));
    }
    std::string last;  // the thumbnail and its attributes
};

TEST_F(Id3Picture, TheFirstPictureThatIsNotEmptyBecomesAFileOfItsOwn) {
    const std::string frames =
        Id3Text("TIT2", "title") + PictureFrame("") + PictureFrame("first") + PictureFrame("second, longer");
    EXPECT_EQ(Picture("my.song.mp3", Id3Tag(frames) + SilentSound(1)), "first");
    EXPECT_EQ(last, "small 4 4 44 thumb_type=jpg location=" + temp_folder.string() +
                        "\\my.song.mp3.jpg st_size=5\n");
    // A file of the same name in another folder takes the same place; no other file is left behind.
    EXPECT_EQ(Picture("folder/my.song.mp3", Id3Tag(PictureFrame("later"))), "later");
    EXPECT_EQ(std::distance(fs::directory_iterator(temp_folder), {}), 1);
}

TEST_F(Id3Picture, AFileWithoutOneMakesNoThumbnail) {
    const std::string picture = Id3Tag(PictureFrame("picture"));
    for (const std::string &bytes :
         {std::string(), std::string(5000, '\xFF'), SilentSound(1), Id3Tag(Id3Frame("APIC", "\3")),
          Id3Tag(Id3Text("TIT2", "APIC")), picture.substr(0, 12), "junk" + picture + SilentSound(1),
          "ID3\3" + Zeros(2) + SynchSafe((256 << 20) - 1) + PictureFrame("picture").substr(0, 20)})
        EXPECT_EQ(Picture("a.mp3", bytes), "(none)") << bytes.substr(0, 40);
    EXPECT_EQ(PictureAt(Location("gone.mp3")), "(none)");
}

TEST_F(Id3Picture, NoPlaceForTheCopyIsNoThumbnail) {
    const std::string file = Id3Tag(PictureFrame("picture"));
    const size_t room = limits::kTempPathCharacters.value - (temp_folder.string() + "\\.mp3.jpg").size();
    EXPECT_EQ(Picture(std::string(room, 'n') + ".mp3", file), "picture");
    EXPECT_EQ(Picture(std::string(room + 1, 'n') + ".mp3", file), "(none)");
    fs::create_directory(temp_folder / "taken.mp3.jpg");
    EXPECT_EQ(Picture("taken.mp3", file), "(none)");
    // The name of a location may lead elsewhere if its separators are slashes.
    Write("x.mp3", file);
    EXPECT_EQ(PictureAt(Location("folder") + "\\../x.mp3"), "(none)");
    // A link that someone has put there is not written through.
    fs::create_symlink(folder.Write("precious", "kept"), temp_folder / "link.mp3.jpg");
    EXPECT_EQ(Picture("link.mp3", file), "picture");
    EXPECT_EQ(ReadWholeFile(folder.path() / "precious"), "kept");
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

// A frame's content may hold a frame, and so on: TagLib would call itself for each.
TEST_F(Id3Picture, FramesThatNestOrSwellArePassedOver) {
    std::string chapters;
    for (std::uint32_t i = 200000; i > 0; --i)
        chapters += "CHAP" + BigEndian(18 + 28 * (i - 1)) + Zeros(2) + "a" + Zeros(17);
    EXPECT_EQ(Picture("deep.mp3", Id3Tag(chapters + PictureFrame("picture"))), "picture");
    EXPECT_EQ(Picture("packed.mp3", Id3Tag(CompressedPictureFrame("picture"))), "picture");
    std::string noise(300 << 10, ' ');
    std::generate(noise.begin(), noise.end(), std::mt19937(1));
    const std::string bomb = CompressedPictureFrame(noise);
    ASSERT_GT(bomb.size(), limits::kCompressedTagBytes.value);
    EXPECT_EQ(Picture("bomb.mp3", Id3Tag(bomb + PictureFrame("behind it"))), "behind it");
}

}  // namespace
