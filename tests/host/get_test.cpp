#include <sys/stat.h>

#include <csignal>

#include "tests/host/host_test.h"
#include "tests/support/artwork_file.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Get = HostTest;

TEST_F(Get, SubtreesBecomeFoldersOfWholeFiles) {
    const HostResult result = Run("get 'playlist/Rain & Sun' --to t");
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "got 3 files (36.8 kB), 0 already there\n");
    EXPECT_THAT(FilesBelow(path_ + "t/Rain & Sun"),
                ElementsAre("The Lanterns - RAIN & THUNDER (2).mp3", "The Lanterns - Rain & Thunder.mp3",
                            "東京四重奏 - 夜の音.mp3"));
    const std::string file = path_ + "t/Rain & Sun/東京四重奏 - 夜の音.mp3";
    EXPECT_EQ(ReadWholeFile(file),
              ReadWholeFile(place_.media_folder / "Music/東京四重奏/静けさ/03 夜の音.mp3"));
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mtime, 1367662830);
    Rename("Genius", "Rain &#38; Sun");
    EXPECT_EQ(Run("get 'genius/Rain & Sun' 'playlist/Rain & Sun' 'playlist/Rain & Sun' --to u").exit_code, 0);
    EXPECT_EQ(FilesBelow(path_ + "u/Rain & Sun").size(), 2U) << "two requests never share a folder by chance";
    EXPECT_EQ(FilesBelow(path_ + "u/Rain & Sun (2)").size(), 3U);
    EXPECT_EQ(Run("get --names path genius --to g").exit_code, 0);
    EXPECT_THAT(FilesBelow(path_ + "g"),
                ElementsAre("genius/Rain & Sun/103.mp3", "genius/Rain & Sun/104.m4a"));
}

TEST_F(Get, FailuresAreGroupedByReason) {
    const HostResult lists = Run("get playlist --to t");
    EXPECT_EQ(lists.exit_code, 1);
    EXPECT_THAT(lists.errors, HasSubstr("its name contains \"/\"\n    playlist/AC/DC\n"));
    EXPECT_THAT(lists.errors,
                HasSubstr("an earlier entry has the same name\n    playlist/Road Trip/Day One\n"));
    EXPECT_THAT(
        lists.errors,
        HasSubstr(
            "1 entry: no file on this machine (kept in the cloud, or lost)\n    playlist/Library/108\n"));
    EXPECT_THAT(
        lists.errors,
        HasSubstr(
            "1 file not found under \"C:/Music/iTunes/iTunes Media/Music/The Lanterns/Wind & Weather\"\n"
            "    playlist/Library/107.mp3\n"));
    EXPECT_TRUE(fs::exists(path_ + "t/playlist/Evil_[31m_Name_/Åsa Öberg - Fjäll och sjö.m4a"));
    Set("FAIL_READ", "1");
    const HostResult broken = Run("get library/music/101.mp3 library/music/102.mp3 --to b");
    EXPECT_EQ(broken.exit_code, 1);
    EXPECT_EQ(broken.errors,
              "got 1 file (8.3 kB), 0 already there\n"
              "  1 entry: could not be read to the end\n    library/music/101.mp3\n");
    EXPECT_THAT(FilesBelow(path_ + "b"), ElementsAre("The Lanterns - RAIN & THUNDER (2).mp3"))
        << "no part of the broken one";
    EXPECT_EQ(Run("get genius library/bad --to n").exit_code, 4);
    EXPECT_FALSE(fs::exists(path_ + "n")) << "nothing is written";
    EXPECT_THAT(Run("get genius --to host").errors,
                AllOf(HasSubstr("could not be"), Not(HasSubstr("not found"))));
}

TEST_F(Get, WhatIsThereStaysWithoutTheOption) {
    const fs::path file = folder_.Write("t/Radio Silence - Episode 1.mp3", "mine");
    const HostResult kept = Run("get library/podcast/113.mp3 library/music/105.wav --to t");
    EXPECT_EQ(kept.exit_code, 1);
    EXPECT_THAT(kept.errors,
                AllOf(StartsWith("got 1 file (44.1 kB), 0 already there\n"), HasSubstr("--overwrite")));
    EXPECT_EQ(ReadWholeFile(file), "mine");
    EXPECT_EQ(Run("get library/podcast/113.mp3 --overwrite --to t").exit_code, 0);
    EXPECT_EQ(ReadWholeFile(file),
              ReadWholeFile(place_.media_folder / "Podcasts/Radio Silence/Episode 1.mp3"));
    EXPECT_EQ(Run("get library/podcast/113.mp3 library/music/105.wav --to t").errors,
              "got 0 files (0 B), 2 already there\n");
}

TEST_F(Get, CoversStandBesideTheirFiles) {
    const HostResult result = Run("get library/book --with-artwork genius --to t");
    EXPECT_EQ(result.exit_code, 0) << "a cover that cannot be read is no failure";
    EXPECT_THAT(result.errors, StartsWith("got 6 files (24.2 kB), 0 already there\n"
                                          "got 4 covers, 0 already there, 2 could not be read\n"
                                          "    \"library/book/114.pdf/thumb\" holds no picture"));
    EXPECT_THAT(FilesBelow(path_ + "t/book"),
                ElementsAre("A. Nother - Salt & Stars.epub", "A. Nother - Salt & Stars.png",
                            "E. Author - A Field Guide.pdf", "E. Author - The Lighthouse Keeper.epub",
                            "E. Author - The Lighthouse Keeper.png", "Tide Tables.pdf"));
    const std::string genius = path_ + "t/genius/Genius/";
    EXPECT_EQ(ReadWholeFile(genius + "東京四重奏 - 夜の音.png"), PngPicture(128));
    EXPECT_EQ(ReadWholeFile(genius + "Åsa Öberg - Fjäll och sjö.png").substr(0, 4), "\x89PNG")
        << "of raw pixels";
    fs::remove(genius + "東京四重奏 - 夜の音.png");
    EXPECT_EQ(Run("get genius --with-artwork --to t").errors,
              "got 0 files (0 B), 2 already there\ngot 1 cover, 1 already there, 0 could not be read\n");
}

TEST_F(Get, ProgressIsDrawnAndTakenAway) {
    EXPECT_THAT(OnTerminal("get genius --to t", 40),
                AllOf(HasSubstr("\r["), HasSubstr("\r\x1b[Kgot 2 files")));
    EXPECT_THAT(Run("get genius --to u").errors, Not(HasSubstr("\r")));
    Set("TERM", "dumb");
    EXPECT_THAT(OnTerminal("get genius --to v"), AllOf(HasSubstr("got 2 files"), Not(HasSubstr("\r["))));
}

TEST_F(Get, NothingStaysOfAnInterruptedOne) {
    Set("PAUSE", "1000");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const HostResult result =
            Interrupt("get library/music/105.wav --to t", "t", "^[.]velmarhost-.*[.]part$", signal);
        EXPECT_EQ(result.exit_code, 128 + signal);
        EXPECT_THAT(FilesBelow(path_ + "t"), ElementsAre());
    }
}

TEST_F(Get, ClosedPipeEndsACatWithoutAWord) {
    const fs::path wave = place_.media_folder / "Music/Test Bench/Tones/01 440 Hertz.wav";
    folder_.Write(wave, std::string(700000, 'p'));
    const HostResult result = Shell("host cat library/music/105.wav | head -c 100");
    EXPECT_EQ(result.output, std::string(100, 'p'));
    EXPECT_EQ(result.errors, "");
}

}  // namespace
