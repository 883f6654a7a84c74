#include "artwork/media_info.h"

#include <gtest/gtest.h>

#include <string>

#include "artwork/local_file.h"
#include "content/path_text.h"
#include "tests/artwork/thumb_tree.h"
#include "tests/support/media_files.h"

namespace {

using namespace media_info;

struct MediaInfoTree : ThumbTree {
    std::string Duration(const std::string &name, const std::string &bytes) {
        EXPECT_EQ(ImportLocalFile(&driver, Write(name, bytes)), 0);
        return Text(ChildAt(music, ChildCount(music) - 1), "duration");
    }
};

TEST(MediaInfo, TellsTheDurationThatNoTagTells) {
    if (!MediaInfoFile().IsReady()) GTEST_SKIP() << "MediaInfo is not installed here";
    MediaInfoTree tree;
    EXPECT_EQ(tree.Duration("a.wav", WavFile(2)), "2000");
    // A test program, too, runs in the locale "C".
    EXPECT_EQ(tree.Duration("\xC3\xA9 \xE5\xA4\x9C.wav", WavFile(1)), "1000");
    const std::string sound = tree.Duration("a.m4a", M4aFile(3, MediaTags()));
    EXPECT_EQ(sound.size(), 4U) << sound;
    EXPECT_EQ(sound[0], '3') << sound;
    EXPECT_EQ(tree.Duration("garbage.wav", "garbage"), "(none)");
    MediaInfoFile file;
    EXPECT_EQ(file.Open(Utf8ToWide(tree.Location("gone.wav"))), 0U);
    ASSERT_NE(file.Open(Utf8ToWide(tree.Location("A.WAV"))), 0U);
    EXPECT_EQ(file.Get(kGeneralStream, 0, L"Format", kText, kByName), L"Wave");
    file.Close();
}

}  // namespace
