#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>

#include "tests/host/fake_pictures.h"
#include "tests/host/host_process.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Get : public testing::Test {
  protected:
    HostResult Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "get");
        arguments.insert(arguments.end(), {"--to", Target().string()});
        return host_.Run(arguments);
    }
    fs::path Target() const { return host_.folder() / "target"; }

    // Every file below the target, by its path there.
    std::set<std::string> Files() const {
        std::set<std::string> files;
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(Target())) {
            if (entry.is_regular_file()) files.insert(fs::relative(entry.path(), Target()).string());
        }
        return files;
    }

    HostProcess host_;
};

TEST_F(Get, SubtreeBecomesFoldersOfWholeFiles) {
    const HostResult result = Run({"library/good"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "got 3 files (700.0 kB), 0 already there\n");
    EXPECT_THAT(Files(),
                ElementsAre("good/AC_DC - What_ A _title_.mp3", "good/Björk - Jóga.mp3", "good/Plain.mp3"));
    EXPECT_EQ(ReadWholeFile(Target() / "good" / "Plain.mp3"), std::string(700000, 'p'));
    const auto time = fs::last_write_time(Target() / "good" / "Plain.mp3");
    EXPECT_EQ(std::chrono::file_clock::to_sys(time).time_since_epoch() / std::chrono::seconds(1), 1262304000);
    EXPECT_EQ(host_.LeftBehind(), 0U);
}

TEST_F(Get, ListsHoldTheirFilesOnceAndUnreachableOnesAreTold) {
    const HostResult result = Run({"playlist"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(Files(), ElementsAre("playlist/Evil_[31m_Name_/Björk - Jóga.mp3",
                                     "playlist/Mix/AC_DC - What_ A _title_.mp3", "playlist/Mix/Plain.mp3",
                                     "playlist/Twice/Plain.mp3"));
    EXPECT_THAT(result.errors, AllOf(HasSubstr("its name contains \"/\"\n    playlist/AC/DC\n"),
                                     HasSubstr("an earlier entry has the same name\n    playlist/Twice\n")));
}

TEST_F(Get, TwoRequestsNeverShareAFolderByChance) {
    EXPECT_EQ(Run({"library/good", "playlist/Mix", "library/good", "library/good/12.mp3"}).exit_code, 0);
    EXPECT_EQ(Files().size(), 6U);
    EXPECT_TRUE(fs::exists(Target() / "Björk - Jóga.mp3"));
}

TEST_F(Get, FailuresAreGroupedByReason) {
    const HostResult result = Run({"library/music"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.errors, StartsWith("got 2 files (21 B), 0 already there\n"));
    EXPECT_THAT(result.errors, HasSubstr("1 entry: no file on this machine"));
    EXPECT_THAT(result.errors,
                HasSubstr("2 files not found under \"C:/Music\"\n    library/music/gone-a.mp3\n"));
    EXPECT_THAT(result.errors,
                HasSubstr("1 entry: could not be read to the end\n    library/music/breaks.mp3\n"));
    EXPECT_THAT(Files(), ElementsAre("music/Queen - SONG (2).mp3", "music/Queen - Song.mp3"))
        << "names differ in more than case, and nothing stays of the broken file";
}

TEST_F(Get, SecondRunGoesOnWhereTheFirstOneStopped) {
    Run({"library/music", "library/good"});
    fs::remove(Target() / "music" / "Queen - SONG (2).mp3");
    const HostResult result = Run({"library/music", "library/good"});
    EXPECT_THAT(result.errors, StartsWith("got 1 file (11 B), 4 already there\n"));
    EXPECT_EQ(ReadWholeFile(Target() / "music" / "Queen - SONG (2).mp3"), "second song");
}

TEST_F(Get, OtherFilesAreNeverLostWithoutTheOption) {
    host_.files().Write("target/Plain.mp3", "mine");
    const HostResult kept = Run({"library/good/10.mp3"});
    EXPECT_EQ(kept.exit_code, 1);
    EXPECT_THAT(kept.errors, HasSubstr("--overwrite"));
    EXPECT_EQ(ReadWholeFile(Target() / "Plain.mp3"), "mine");
    EXPECT_EQ(Run({"--overwrite", "library/good/10.mp3"}).exit_code, 0);
    EXPECT_EQ(ReadWholeFile(Target() / "Plain.mp3").size(), 700000U);
}

TEST_F(Get, NamesOfTheTreeOnDemand) {
    EXPECT_EQ(Run({"--names", "path", "library/good"}).exit_code, 0);
    EXPECT_THAT(Files(), ElementsAre("good/10.mp3", "good/11.mp3", "good/12.mp3"));
}

TEST_F(Get, CoversStandBesideTheirFiles) {
    const HostResult result = Run({"library/art", "--with-artwork"});
    EXPECT_EQ(result.exit_code, 0) << "a cover that cannot be read is no failure";
    EXPECT_THAT(result.errors, StartsWith("got 7 files (68 B), 0 already there\n"
                                          "got 3 covers, 0 already there, 3 could not be read\n"));
    EXPECT_THAT(result.errors, HasSubstr("library/art/23.mp3/thumb"));
    EXPECT_THAT(Files(),
                ElementsAre("art/Band - Cover (2).png", "art/Band - Cover.m4a", "art/Band - Cover.mp3",
                            "art/Band - Cover.png", "art/Band - Damaged.mp3", "art/Band - Lost.mp3",
                            "art/Band - Plain.mp3", "art/E. Author - Book.epub", "art/E. Author - Book.jpg",
                            "art/Game.ipa"));
    EXPECT_EQ(ReadWholeFile(Target() / "art" / "E. Author - Book.jpg"), FakeJpeg());
    fs::remove(Target() / "art" / "E. Author - Book.jpg");
    EXPECT_THAT(Run({"library/art", "--with-artwork"}).errors,
                StartsWith("got 0 files (0 B), 7 already there\n"
                           "got 1 cover, 2 already there, 3 could not be read\n"));
    EXPECT_THAT(Run({"library/good", "--with-artwork"}).errors, Not(HasSubstr("cover")));
}

TEST_F(Get, UnknownPathStopsBeforeAnythingIsWritten) {
    EXPECT_EQ(Run({"library/good", "library/bad"}).exit_code, 4);
    EXPECT_FALSE(fs::exists(Target()));
}

TEST_F(Get, TargetThatCannotBeWrittenIsTold) {
    host_.files().Write("target", "a file");
    const HostResult result = Run({"library/good/12.mp3"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.errors, AllOf(HasSubstr("could not be"), Not(HasSubstr("not found under"))));
}

}  // namespace
