#include "artwork/local_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <taglib/tstring.h>

#include <filesystem>
#include <string>

#include "artwork/media_folder_walk.h"
#include "artwork/tag_attributes.h"
#include "tests/artwork/id3_builder.h"
#include "tests/artwork/thumb_tree.h"
#include "tests/support/collected_log.h"
#include "tests/support/media_files.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct ImportTree : ThumbTree {
    ScopedEnvironment locale{"LC_ALL", "en_US.UTF-8"};  // code page 1252
    CollectedLog log;
    DriverPath *movies =
        EnsureCategoryPath(&driver, "movie", node_category::kVideo, node_subcategory::kMovie);
    DriverPath *tones =
        EnsureCategoryPath(&driver, "ringtone", node_category::kAudio, node_subcategory::kRingtone);

    int32_t Import(const std::string &name, const std::string &bytes) {
        return ImportLocalFile(&driver, Write(name, bytes));
    }
    DriverPath *Imported(const std::string &name, const std::string &bytes) {
        EXPECT_EQ(Import(name, bytes), 0) << name;
        return ChildAt(music, ChildCount(music) - 1);
    }
};

TEST(ImportLocalFile, AnMp3BringsItsTagItsLengthAndItsPicture) {
    ImportTree tree;
    const std::string frames = Id3Text("TIT2", "Title") + Id3Text("TPE1", "Ren\xE9 \x80") +
                               Id3Text("TALB", "Album") + Id3Text("TCON", "Jazz") + Id3Text("TYER", "1999") +
                               Id3Text("TRCK", "7/9") +
                               Id3Frame("COMM", '\0' + std::string("eng") + '\0' + "Words") +
                               PictureFrame("") + PictureFrame("one") + PictureFrame("two");
    const DriverPath *entry = tree.Imported("a.b.MP3", Id3Tag(frames) + SilentSound(5));
    EXPECT_STREQ(ChildNameAt(tree.music, 0), "5000000.MP3");
    EXPECT_EQ(std::vector({entry->kind, entry->category, entry->subcategory, entry->from_folder_scan}),
              std::vector({4, 2, 20, 1}));
    std::string texts;
    for (const char *key : {"id", "name", "artist", "album", "comments", "genre", "year", "track",
                            "media_has_thumb", "duration"})
        texts += ThumbTree::Text(entry, key) + "|";
    EXPECT_EQ(texts, "5000000|Title|Ren\xC3\xA9 \xE2\x82\xAC|Album|Words|Jazz|1999|7|true|5000|");
    EXPECT_EQ(ThumbTree::Text(entry, "location"), tree.Location("a.b.MP3"));
    EXPECT_EQ(ThumbTree::Text(entry, "st_size"),
              std::to_string(std::filesystem::file_size(tree.files.path() / "a.b.MP3")));
    EXPECT_THAT(ThumbTree::Names(entry), ElementsAre("thumb"));
    const DriverPath *thumb = ChildAt(entry, 0);
    EXPECT_EQ(std::vector({thumb->kind, thumb->category, thumb->subcategory}), std::vector({1, 4, 44}));
    EXPECT_EQ(ChildCount(thumb), 0);
    EXPECT_EQ(tree.StreamOf("library/music/5000000.MP3/thumb/small"), "one");
}

TEST(ImportLocalFile, Latin1IsReadInTheCodePageOfTheMachine) {
    const TagLib::String cyrillic("\xCF\xF0\xE8");
    EXPECT_EQ(TagStringToUtf8(TagLib::String("\xE5\xA4\x9C", TagLib::String::UTF8)), "\xE5\xA4\x9C");
    const ScopedEnvironment locale("LC_ALL", "ru_RU.UTF-8");
    EXPECT_EQ(TagStringToUtf8(cyrillic), "\xD0\x9F\xD1\x80\xD0\xB8");
    EXPECT_EQ(AnsiToUtf8(nullptr), std::nullopt);
}

TEST(ImportLocalFile, AnMp3WithLittleInItKeepsItsFileName) {
    ImportTree tree;
    const DriverPath *entry =
        tree.Imported("my.song.mp3", Id3Tag(Id3Text("TPE1", "Artist") + Id3Text("TYER", "0")));
    EXPECT_EQ(ThumbTree::Text(entry, "name"), "my.song");
    EXPECT_EQ(ThumbTree::Text(entry, "artist"), "Artist");
    for (const char *key : {"year", "track", "album", "media_has_thumb", "duration"})
        EXPECT_EQ(FindAttribute(entry, key), std::nullopt) << key;
    int count = 1;
    for (const std::string &bytes :
         {std::string(), std::string(5000, '\xFF'), std::string("ID3\4\0\0\x7F\x7F\x7F\x7F", 10),
          Id3Tag(std::string("APIC\xFF\xFF\xFF\xFF", 8) + Zeros(20)), Id3Tag(Id3Frame("APIC", "\3"))}) {
        entry = tree.Imported("odd.mp3", bytes);
        EXPECT_EQ(ThumbTree::Text(entry, "name"), "odd");
        EXPECT_EQ(ChildCount(entry), 0);
        ++count;
    }
    EXPECT_EQ(tree.driver.next_scanned_id, kFirstScannedId + count);
    EXPECT_THAT(tree.log.Lines(), IsEmpty());
}

TEST(ImportLocalFile, FilesGoToTheCategoryOfTheirExtensionOrNowhere) {
    ImportTree tree;
    EXPECT_EQ(tree.Import("a.m4v", "x"), 0);
    EXPECT_EQ(tree.Import("a.M4R", "x"), 0);
    EXPECT_STREQ(ChildNameAt(tree.movies, 0), "5000000.m4v");
    EXPECT_STREQ(ChildNameAt(tree.tones, 0), "5000001.M4R");
    EXPECT_EQ(ThumbTree::Text(ChildAt(tree.movies, 0), "name"), "a");
    EXPECT_EQ(ImportLocalFile(&tree.driver, tree.Location("gone.mp3")), -1);
    EXPECT_THAT(tree.log.Lines(), IsEmpty());
    // A picture has a kind but no category, a book has none in this tree.
    for (const char *name : {"a.jpg", "a.txt", "mp3", "a.epub", "a.audible"}) {
        EXPECT_EQ(tree.Import(name, "x"), -1);
        EXPECT_EQ(tree.log.Last(),
                  "File \"" + tree.Location(name) + "\" format is not support or visible by iTunes");
    }
    EXPECT_EQ(ChildCount(tree.music), 0);
}

TEST(ImportLocalFile, OnlyWhatTheLibraryListsIsKnown) {
    ImportTree tree;
    const std::string path = tree.Write("a.wav", WavFile(1));
    EXPECT_EQ(ImportLocalFile(&tree.driver, path), 0);
    EXPECT_EQ(ImportLocalFile(&tree.driver, path), 0);
    EXPECT_EQ(ChildCount(tree.music), 2);
    DriverPath *track = tree.AddTrack("1", "");
    std::string location = (tree.files.path() / "A.WAV").string().substr(1);
    AddAttribute(track, "location", location.c_str());
    BareTree::Hold(tree.music, "1.wav", track);
    EXPECT_EQ(ImportLocalFile(&tree.driver, path), -3);
    EXPECT_EQ(ChildCount(tree.music), 3);
}

// Opening a pipe, or reading it, would wait for its other end.
TEST(ImportLocalFile, APipeIsNotRead) {
    ImportTree tree;
    for (const char *name : {"pipe.mp3", "pipe.m4a"}) {
        ASSERT_EQ(mkfifo((tree.files.path() / name).c_str(), 0600), 0);
        EXPECT_EQ(ImportLocalFile(&tree.driver, tree.Location(name)), 0);
    }
    EXPECT_EQ(FindAttribute(ChildAt(tree.music, 0), "duration"), std::nullopt);
}

TEST(WalkMediaFolder, EntersSubfoldersOnlyIfTold) {
    ImportTree tree;
    tree.Write("a.mp3", SilentSound(1));
    tree.Write("sub/deeper/b.mp3", SilentSound(1));
    std::filesystem::create_directory_symlink("..", tree.files.path() / "sub/up");
    EXPECT_EQ(WalkMediaFolder(&tree.driver, std::nullopt, true), -1);
    EXPECT_EQ(WalkMediaFolder(&tree.driver, BackslashPath(tree.files.path()), false), 0);
    EXPECT_EQ(ChildCount(tree.music), 1);
    EXPECT_EQ(WalkMediaFolder(&tree.driver, BackslashPath(tree.files.path()), true), 0);
    EXPECT_EQ(ChildCount(tree.music), 3);
    EXPECT_EQ(WalkMediaFolder(&tree.driver, tree.Location("nowhere"), true), 0);
}

}  // namespace
