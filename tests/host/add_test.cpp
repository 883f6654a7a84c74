// Files go into a folder of the test's own through a driver that copies as the real one does.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "tests/host/host_process.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Add : public testing::Test {
  protected:
    Add() {
        fs::create_directories(AddFolder());
        fs::create_directories(Source());
        host_.Set("FAKE_DRIVER_ADD_FOLDER", AddFolder().string());
    }
    ~Add() override { EXPECT_EQ(host_.LeftBehind(), 0U); }

    fs::path AddFolder() const { return host_.folder() / "media" / "Automatically Add to iTunes"; }
    fs::path Source() const { return host_.folder() / "in"; }
    std::string Write(const std::string &name, const std::string &bytes) const {
        return host_.files().Write("in/" + name, bytes).string();
    }
    HostResult Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "add");
        HostResult result = host_.Run(arguments);
        EXPECT_THAT(result.errors, Not(HasSubstr("FAULT")));
        return result;
    }
    std::set<std::string> Added() const {
        std::set<std::string> names;
        for (const fs::directory_entry &entry : fs::directory_iterator(AddFolder()))
            names.insert(entry.path().filename().string());
        return names;
    }

    HostProcess host_;
};

TEST_F(Add, FoldersAreWalkedInOrderAndOnce) {
    const std::string folder = Source().string();
    Write("b/2.MP3", "two");
    Write("b/.hidden.mp3", "x");
    Write("b/cover.jpg", "x");
    Write("a.m4a", "one");
    Write("c/book.pdf", "three");
    fs::create_directory_symlink("..", Source() / "c" / "up");
    const HostResult result = Run({folder, folder + "/a.m4a", "-v"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.output, "added      " + folder + "/a.m4a as a.m4a, now library/music/5000001.m4a\n" +
                                 "added      " + folder +
                                 "/b/2.MP3 as 2.MP3, now library/music/5000000.MP3\n" + "added      " +
                                 folder + "/c/book.pdf as book.pdf, now library/book/book.pdf\n");
    EXPECT_THAT(result.errors, HasSubstr("added 3 files (11 B)\n  passed over 1 entry: hidden\n"));
    EXPECT_THAT(result.errors,
                HasSubstr("2 entries: there twice\n    " + folder + "/c/up\n    " + folder + "/a.m4a"));
    EXPECT_THAT(result.errors, HasSubstr("book.pdf of type 1 for library/book\n"));
    EXPECT_EQ(ReadWholeFile(AddFolder() / "2.MP3"), "two");
}

TEST_F(Add, ReceiptTellsTheNumberedName) {
    host_.files().Write("media/Automatically Add to iTunes/song.mp3", "there before");
    host_.files().Write("media/Automatically Add to iTunes/taken.mp3", "there before");
    host_.Set("FAKE_DRIVER_TAKES", "taken1.mp3");
    const HostResult result =
        Run({Write("song.mp3", "bytes"), Write("song1.mp3", "bytes"), Write("taken.mp3", "bytes"), "--json"});
    EXPECT_EQ(result.exit_code, 0);
    const auto receipts = nlohmann::json::parse(result.output);
    ASSERT_EQ(receipts.size(), 3U);
    EXPECT_EQ(receipts[0]["name"], "song1.mp3");
    EXPECT_EQ(receipts[0]["path"], "library/music/5000001.mp3");
    EXPECT_EQ(receipts[0]["bytes"], 5);
    EXPECT_THAT(receipts[1]["location"].get<std::string>(), EndsWith("\\song11.mp3"));
    EXPECT_EQ(receipts[2]["result"], "added");
    EXPECT_EQ(receipts[2]["name"], nullptr) << "iTunes has it already";
    EXPECT_EQ(ReadWholeFile(AddFolder() / "song.mp3"), "there before");
}

TEST_F(Add, DryRunTouchesNothing) {
    const std::string song = Write("What? A \"song\".mp3", "bytes");
    const HostResult result = Run({"--dry-run", song, "none.mp3"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.output,
                StartsWith("would add  " + song + " as What_ A _song_.mp3\nnot added  none.mp3: "));
    EXPECT_EQ(result.errors, "would add 1 file (5 B), 1 not\n");
    EXPECT_THAT(Added(), IsEmpty());
}

TEST_F(Add, NamesThatWindowsCannotHoldAreCleaned) {
    const HostResult result = Run({Write("What? A \"song\".mp3", "one"), Write("AC\\DC.mp3", "two"),
                                   Write("Folder\\Name/x.mp3", "three"), Write("bad\xff.mp3", "four"), "-v",
                                   "--to", "/library/movie/"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(Added(), ElementsAre("AC_DC.mp3", "What_ A _song_.mp3", "bad_.mp3", "x.mp3"));
    EXPECT_THAT(result.errors, HasSubstr("x.mp3 of type 0 for library/movie\n"));
    EXPECT_EQ(ReadWholeFile(AddFolder() / "x.mp3"), "three");
}

TEST_F(Add, EveryFailureHasItsReasonAndLeavesNothing) {
    host_.Set("FAKE_DRIVER_COPY_ERRORS", "lost.mp3=2 wrong.mp3=3 short.mp3=5 full.mp3=6");
    fs::create_directories(Source() / "x.epub");
    mkfifo((Source() / "pipe.mp3").c_str(), 0600);
    const HostResult result =
        Run({Write("lost.mp3", "x"), Write("wrong.mp3", "x"), Write("short.mp3", "x"), Write("empty.mp3", ""),
             Write("words.txt", "x"), (Source() / "x.epub").string(), (Source() / "pipe.mp3").string(),
             Write("good.mp3", "x"), Write("full.mp3", "x"), Write("later.mp3", "x")});
    EXPECT_EQ(result.exit_code, 1);
    for (const char *words :
         {"lost.mp3: cannot be opened", "wrong.mp3\" could not be made. Check",
          "short.mp3: ended after 0 B of 1 B", "empty.mp3: is empty", "words.txt: is of a kind",
          "x.epub: is a book in form", "pipe.mp3: is no regular file", "good.mp3 as good.mp3",
          "full.mp3: does not fit", "later.mp3: was not tried"})
        EXPECT_THAT(result.output, HasSubstr(words));
    EXPECT_EQ(result.errors, "added 1 file (1 B), 9 not\n");
    EXPECT_THAT(Added(), ElementsAre("good.mp3"));
}

TEST_F(Add, StandardInputGetsItsName) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    ASSERT_EQ(write(ends[1], "piped", 5), 5);
    close(ends[1]);
    host_.SetInput(ends[0]);
    EXPECT_THAT(Run({"-", "--name", "a/b: c.mp3"}).output,
                StartsWith("added      - as a_b_ c.mp3, now library/music/"));
    EXPECT_EQ(ReadWholeFile(AddFolder() / "a_b_ c.mp3"), "piped");
    const int file = open(Write("file", "head and rest").c_str(), O_RDONLY);
    lseek(file, 9, SEEK_SET);
    host_.SetInput(file);
    EXPECT_EQ(Run({"-", "--name", "rest.pdf"}).exit_code, 0);
    EXPECT_EQ(ReadWholeFile(AddFolder() / "rest.pdf"), "rest") << "read from where the file stands";
    host_.SetInput(open("/dev/null", O_RDONLY));
    EXPECT_THAT(Run({"-", "--name", "none.mp3"}).output, HasSubstr("-: is empty"));
    EXPECT_EQ(Added().size(), 2U);
}

TEST_F(Add, WrongOptionsAreExplained) {
    const std::string song = Write("song.mp3", "x");
    const auto expect = [this](const std::vector<std::string> &arguments, const std::string &words) {
        const HostResult result = Run(arguments);
        EXPECT_EQ(result.exit_code, 2);
        EXPECT_THAT(result.errors, HasSubstr(words));
    };
    expect({"-"}, "--name");
    expect({song, song, "--name", "x.mp3"}, "single FILE");
    expect({Source().string(), "--name", "x.mp3"}, "no folder");
    expect({song, "--name", "x.txt"}, "no extension that iTunes takes");
    expect({song, "--to", "playlist/Mix"}, "--to");
    expect({song, "--library", song}, "--media");
    EXPECT_THAT(Added(), IsEmpty());
}

TEST_F(Add, FolderThatIsGoneIsTold) {
    fs::remove_all(AddFolder());
    const HostResult result = Run({Write("song.mp3", "x")});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.output,
                HasSubstr("the file \"" + (AddFolder() / "song.mp3").string() + "\" could not be made"));
}

TEST_F(Add, ProgressTellsThePace) {
    host_.Set("FAKE_DRIVER_COPY_PAUSE", "150");
    const std::string shown =
        host_.RunOnTerminal({"add", Write("song.mp3", std::string(8 << 20, 's'))}, 120).output;
    EXPECT_THAT(shown, AllOf(HasSubstr(" of 8.4 MB  "), HasSubstr("MB/s, 0:0"), HasSubstr("\r\x1b[Kadded")));
}

class AddInterrupted : public Add, public testing::WithParamInterface<int> {};

TEST_P(AddInterrupted, LeavesNoHalfFileAndTellsHowFarItCame) {
    host_.Set("FAKE_DRIVER_COPY_PAUSE", "20");
    const std::string first = Write("1.mp3", "whole");
    const std::string second = Write("2.mp3", "");
    fs::resize_file(second, uint64_t{1} << 30);
    const pid_t process = host_.Start({"add", "--json", first, second, Write("3.mp3", "x")});
    for (int i = 0; i < 1000 && !fs::exists(AddFolder() / "2.mp3"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(fs::exists(AddFolder() / "2.mp3"));
    kill(process, GetParam());
    kill(process, GetParam());  // an impatient user does no harm
    const HostResult result = host_.Wait(process);
    EXPECT_EQ(result.exit_code, 128 + GetParam());
    EXPECT_THAT(Added(), ElementsAre("1.mp3"));
    EXPECT_THAT(result.errors, Not(HasSubstr("FAULT"))) << "the batch is finished";
    const auto receipts = nlohmann::json::parse(result.output);
    ASSERT_EQ(receipts.size(), 3U);
    EXPECT_EQ(receipts[0]["name"], "1.mp3");
    EXPECT_EQ(receipts[1]["result"], "interrupted");
    EXPECT_EQ(receipts[2]["problem"], "was not tried");
}

INSTANTIATE_TEST_SUITE_P(Signals, AddInterrupted, testing::Values(SIGINT, SIGTERM));

}  // namespace
