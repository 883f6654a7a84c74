#include <csignal>

#include "fixtures/artwork_file.h"
#include "tests/host/host_test.h"

namespace {

namespace fs = std::filesystem;
using namespace testing;

using Get = HostTest;

TEST_F(Get, SubtreesBecomeFoldersOfWholeFiles) {
    EXPECT_EQ(Run("get 'playlist/Rain & Sun' --to t").errors, "got 3 files (36.8 kB), 0 already there\n");
    EXPECT_THAT(FilesBelow(path_ + "t/Rain & Sun"),
                ElementsAre("The Lanterns - RAIN & THUNDER (2).mp3", "The Lanterns - Rain & Thunder.mp3",
                            "東京四重奏 - 夜の音.mp3"));
    EXPECT_EQ(
        Shell("cmp 't/Rain & Sun/東京四重奏 - 夜の音.mp3' home/Music/iTunes/'iTunes Media'/*/東京四重奏/*/*")
            .exit_code,
        0);
    EXPECT_EQ(Shell("stat -c %Y 't/Rain & Sun/東京四重奏 - 夜の音.mp3'").output, "1367662830\n");
    Rename("Genius", "Rain &#38; Sun");
    Expect(
        {{"get 'genius/Rain & Sun' 'playlist/Rain & Sun' 'playlist/Rain & Sun' --to u", 0, "got 5 files"}});
    EXPECT_EQ(FilesBelow(path_ + "u/Rain & Sun (2)").size(), 3U)
        << "two requests never share a folder by chance";
    Expect({{"get --names path genius --to g", 0, "got 2 files"}});
    EXPECT_THAT(FilesBelow(path_ + "g/genius/Rain & Sun"), ElementsAre("103.mp3", "104.m4a"));
}

TEST_F(Get, FailuresAreGroupedByReason) {
    Expect(
        {{"get playlist --to t", 1, "its name contains \"/\"\n    playlist/AC/DC\n"},
         {"get playlist --to t", 1, "an earlier entry has the same name\n    playlist/Road Trip/Day One\n"},
         {"get playlist --to t", 1,
          "1 entry: no file on this machine (kept in the cloud, or lost)\n    playlist/Library/108\n"},
         {"get library/music --to u", 1,
          "1 file not found under \"C:/Music/iTunes/iTunes Media/Music/The Lanterns/Wind &"},
         {"get genius library/bad --to n", 4, "no such path"},
         {"get genius --to host", 1, "could not be"}});
    EXPECT_FALSE(fs::exists(path_ + "n")) << "nothing is written";
    EXPECT_TRUE(fs::exists(path_ + "t/playlist/Evil_[31m_Name_/Åsa Öberg - Fjäll och sjö.m4a"));
    Set("FAIL_READ", "1");
    EXPECT_EQ(Run("get library/music/101.mp3 library/music/105.wav --to b").errors,
              "got 1 file (44.1 kB), 0 already there\n  1 entry: could not be read to the end\n    "
              "library/music/101.mp3\n");
    EXPECT_THAT(FilesBelow(path_ + "b"), ElementsAre("Test Bench - 440 Hertz _pure_.wav"));
}

TEST_F(Get, WhatIsThereStaysWithoutTheOption) {
    const fs::path file = folder_.Write("t/Radio Silence - Episode 1.mp3", "mine");
    Expect({{"get library/podcast/113.mp3 library/music/105.wav --to t", 1,
             "got 1 file (44.1 kB), 0 already there\n"},
            {"get library/podcast/113.mp3 --to t", 1, "--overwrite"}});
    EXPECT_EQ(ReadWholeFile(file), "mine");
    Expect({{"get library/podcast/113.mp3 --overwrite --to t", 0, "got 1 file"}});
    EXPECT_EQ(fs::file_size(file), 20278U);
    EXPECT_EQ(Run("get library/podcast/113.mp3 library/music/105.wav --to t").errors,
              "got 0 files (0 B), 2 already there\n");
}

TEST_F(Get, CoversStandBesideTheirFiles) {
    Expect({{"get library/book --with-artwork genius --to t", 0,  // a cover that cannot be read is no failure
             "got 6 files (24.2 kB), 0 already there\ngot 4 covers, 0 already there, 2 could not be read\n"
             "    \"library/book/114.pdf/thumb\" holds no picture"}});
    EXPECT_EQ(FilesBelow(path_ + "t/book").size(), 6U);
    EXPECT_EQ(ReadWholeFile(path_ + "t/book/A. Nother - Salt & Stars.png"), PngPicture(120));
    EXPECT_EQ(ReadWholeFile(path_ + "t/genius/Genius/東京四重奏 - 夜の音.png"), PngPicture(128));
    EXPECT_THAT(ReadWholeFile(path_ + "t/genius/Genius/Åsa Öberg - Fjäll och sjö.png"),
                StartsWith("\x89PNG"));
    fs::remove(path_ + "t/genius/Genius/東京四重奏 - 夜の音.png");
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
        EXPECT_EQ(
            Interrupt("get library/music/105.wav --to t", "t", "^[.]velmarhost-.*[.]part$", signal).exit_code,
            128 + signal);
        EXPECT_THAT(FilesBelow(path_ + "t"), IsEmpty());
    }
}

TEST_F(Get, ClosedPipeEndsACatWithoutAWord) {
    folder_.Write(place_.media_folder / "Music/Test Bench/Tones/01 440 Hertz.wav", std::string(700000, 'p'));
    const HostResult result = Shell("host cat library/music/105.wav | head -c 100");
    EXPECT_EQ(result.output, std::string(100, 'p'));
    EXPECT_EQ(result.errors, "");
}

}  // namespace
