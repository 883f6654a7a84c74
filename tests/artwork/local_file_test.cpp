#include "artwork/local_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <taglib/tstring.h>

#include <filesystem>
#include <string>

#include "artwork/media_info.h"
#include "artwork/tag_attributes.h"
#include "fixtures/media_files.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"

namespace {

struct LocalFile : ThumbTree, testing::Test {
    ScopedEnvironment locale{"LC_ALL", "en_US.UTF-8"};  // code page 1252
    DriverPath *movies =
        EnsureCategoryPath(&driver, "movie", node_category::kVideo, node_subcategory::kMovie);
    DriverPath *tones =
        EnsureCategoryPath(&driver, "ringtone", node_category::kAudio, node_subcategory::kRingtone);

    int32_t Import(const std::string &location) { return ImportLocalFile(&driver, location); }
    DriverPath *Imported(const std::string &location) {
        EXPECT_EQ(Import(location), 0) << location;
        return ChildAt(music, ChildCount(music) - 1);
    }
};

TEST_F(LocalFile, AnMp3BringsItsTagItsLengthAndItsPicture) {
    const std::string frames = Id3Text("TIT2", "Title") + Id3Text("TPE1", "Ren\xE9 \x80") +
                               Id3Text("TALB", "Album") + Id3Text("TCON", "Jazz") + Id3Text("TYER", "1999") +
                               Id3Text("TRCK", "7/9") +
                               Id3Frame("COMM", '\0' + std::string("eng") + '\0' + "Words") +
                               PictureFrame("") + PictureFrame("one") + PictureFrame("two");
    const std::string bytes = Id3Tag(frames) + SilentSound(5);
    const std::string location = Write("a.b.MP3", bytes);
    const DriverPath *entry = Imported(location);
    EXPECT_EQ(
        TreeText(entry, ChildNameAt(music, 0)),
        "5000000.MP3 4 2 20 id=5000000 location=" + location + " st_size=" + std::to_string(bytes.size()) +
            " name=Title artist=Ren\xC3\xA9 \xE2\x82\xAC album=Album comments=Words genre=Jazz year=1999"
            " track=7 media_has_thumb=true duration=5000\n5000000.MP3/thumb 1 4 44 location=" +
            location + " thumb_mode=id3\n");
    EXPECT_EQ(StreamOf("library/music/5000000.MP3/thumb/small"), "one");
    EXPECT_EQ(TagStringToUtf8(TagLib::String("\xE5\xA4\x9C", TagLib::String::UTF8)), "\xE5\xA4\x9C");
    const ScopedEnvironment russian("LC_ALL", "ru_RU.UTF-8");
    EXPECT_EQ(TagStringToUtf8(TagLib::String("\xCF\xF0\xE8")), "\xD0\x9F\xD1\x80\xD0\xB8");
    EXPECT_EQ(AnsiToUtf8(nullptr), std::nullopt);
}

TEST_F(LocalFile, AnMp3WithLittleInItKeepsItsFileName) {
    const std::string artist = Id3Tag(Id3Text("TPE1", "Artist") + Id3Text("TYER", "0"));
    for (const std::string &bytes :
         {artist, std::string(), Id3Tag("APIC" + std::string(4, '\xFF') + Zeros(20))}) {
        const std::string location = Write("my.song.mp3", bytes);
        const std::string id = std::to_string(5000000 + ChildCount(music));
        EXPECT_EQ(TreeText(Imported(location), ""),
                  " 4 2 20 id=" + id + " location=" + location + " st_size=" + std::to_string(bytes.size()) +
                      (bytes == artist ? " artist=Artist" : "") + " name=my.song\n");
        EXPECT_THAT(log.Lines(), testing::IsEmpty());
    }
}

TEST_F(LocalFile, FilesGoToTheCategoryOfTheirExtensionOrNowhere) {
    EXPECT_EQ(Import(Write("a.m4v", "x")), 0);
    EXPECT_EQ(Import(Write("a.M4R", "x")), 0);
    EXPECT_STREQ(ChildNameAt(movies, 0), "5000000.m4v");
    EXPECT_STREQ(ChildNameAt(tones, 0), "5000001.M4R");
    EXPECT_EQ(FindAttribute(ChildAt(movies, 0), "name"), "a");
    EXPECT_EQ(Import(Location("gone.mp3")), -1);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
    // A picture has a kind but no category, a book has none in this tree.
    for (const char *name : {"a.jpg", "mp3", "a.epub"})
        EXPECT_EQ(Import(Write(name, "x")), -1);
    EXPECT_EQ(log.Last(), "File \"" + Location("a.epub") + "\" format is not support or visible by iTunes");
}

TEST_F(LocalFile, OnlyWhatTheLibraryListsIsKnownAndAPipeIsNotRead) {
    const std::string path = Write("a.wav", WavFile(1));
    EXPECT_EQ(Import(path), 0);
    EXPECT_EQ(Import(path), 0);
    DriverPath *track = AddTrack("1", "");
    AddAttribute(track, "location", (media / "A.WAV").string().substr(1).c_str());
    BareTree::Hold(music, "1.wav", track);
    EXPECT_EQ(Import(path), -3);
    EXPECT_EQ(ChildCount(music), 3);
    // Opening a pipe, or reading it, would wait for its other end.
    for (const char *name : {"pipe.mp3", "pipe.m4a"}) {
        ASSERT_EQ(mkfifo((media / name).c_str(), 0600), 0);
        EXPECT_EQ(FindAttribute(Imported(Location(name)), "duration"), std::nullopt);
    }
}

TEST_F(LocalFile, MediaInfoTellsTheDurationThatNoTagTells) {
    if (!MediaInfoFile().IsReady()) GTEST_SKIP() << "MediaInfo is not installed here";
    // A test program, too, runs in the locale "C".
    EXPECT_EQ(FindAttribute(Imported(Write("\xC3\xA9 \xE5\xA4\x9C.wav", WavFile(2))), "duration"), "2000");
    EXPECT_EQ(FindAttribute(Imported(Write("garbage.wav", "garbage")), "duration"), std::nullopt);
}

}  // namespace
