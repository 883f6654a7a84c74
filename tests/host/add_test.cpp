#include <sys/stat.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "tests/host/host_test.h"

namespace {

namespace fs = std::filesystem;
using namespace testing;

class Add : public HostTest {
  protected:
    Add() {
        fs::remove(place_.add_folder / "Waiting Room.mp3");
        fs::create_directory(path_ + "in");
    }
    std::string Added(const std::string &name) const { return ReadWholeFile(place_.add_folder / name); }
};

TEST_F(Add, FoldersAreWalkedInOrderAndOnce) {
    for (const char *name :
         {"b/2.MP3", "b/.hidden.mp3", "b/cover.jpg", "a.m4a", "c/book.pdf", "d/AC\\DC? \xff.mp3", "e.m4v"})
        folder_.Write(std::string("in/") + name, name);
    fs::create_directory_symlink("..", path_ + "in/c/up");
    const HostResult result = Run("add in in/a.m4a -v");
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(
        result.output,
        MatchesRegex("added      in/a.m4a as a.m4a, now library/music/500000..m4a\n"
                     "added      in/b/2.MP3 as 2.MP3, now library/music/500000..MP3\n"
                     "added      in/c/book.pdf as book.pdf, now library/book/book.pdf\n"
                     "added      in/d/AC.DC. .xff.mp3 as AC_DC_ _.mp3, now library/music/500000..mp3\n"
                     "added      in/e.m4v as e.m4v, now library/movie/500000..m4v\n"));
    EXPECT_THAT(result.errors,
                HasSubstr("added 5 files (41 B)\n  passed over 1 entry: hidden\n    in/b/.hidden.mp3\n"));
    EXPECT_THAT(result.errors,
                HasSubstr("1 entry: of a kind that iTunes does not take\n    in/b/cover.jpg\n"));
    EXPECT_THAT(result.errors, HasSubstr("2 entries: there twice\n    in/c/up\n    in/a.m4a"));
    EXPECT_EQ(Added("2.MP3"), "b/2.MP3");
    EXPECT_EQ(Added("AC_DC_ _.mp3"), "d/AC\\DC? \xff.mp3");
}

TEST_F(Add, ReceiptTellsTheNumberedName) {
    for (const fs::path &file : {place_.add_folder, fs::path("in")}) {
        folder_.Write(file / "song.mp3", file.string());
        folder_.Write(file / "taken.mp3", "bytes");
    }
    folder_.Write("in/song1.mp3", "bytes");
    Set("LOST_BEHIND_COPIES", place_.add_folder / "taken1.mp3");
    const HostResult result = Run("add in/song.mp3 in/song1.mp3 in/taken.mp3 --json --to /library/movie/");
    EXPECT_EQ(result.exit_code, 0);
    const auto receipts = nlohmann::json::parse(result.output);
    EXPECT_EQ(receipts[0]["name"], "song1.mp3");
    EXPECT_THAT(receipts[0].dump(),
                AllOf(HasSubstr(R"("bytes":2,)"), HasSubstr(R"("path":"library/music/500000)")));
    EXPECT_THAT(receipts[1].dump(), HasSubstr(R"(\\song11.mp3","name":"song11.mp3")"));
    EXPECT_THAT(receipts[2].dump(), AllOf(HasSubstr(R"("name":null)"), HasSubstr(R"("result":"added")")))
        << "iTunes has it already";
    EXPECT_EQ(Added("song.mp3"), place_.add_folder);
}

TEST_F(Add, DryRunTouchesNothing) {
    folder_.Write("in/What? A \"song\".mp3", "bytes");
    const HostResult result = Run("add --dry-run in none.mp3");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.output,
              "would add  in/What? A \"song\".mp3 as What_ A _song_.mp3\n"
              "not added  none.mp3: No such file or directory\n");
    EXPECT_EQ(result.errors, "would add 1 file (5 B), 1 not\n");
    EXPECT_THAT(FilesBelow(place_.add_folder), ElementsAre());
}

TEST_F(Add, EveryFailureHasItsReasonAndLeavesNothing) {
    fs::create_directories(path_ + "in/x.epub");
    for (const char *name : {"1 lost?", "2 bad", "3 odd", "4 short", "6 good", "7 full", "8 later"})
        folder_.Write("in/" + std::string(name) + ".mp3", "x");
    folder_.Write("in/5 empty.mp3", "");
    mkfifo((path_ + "in/pipe.mp3").c_str(), 0600);
    Set("LOST_BEFORE_COPIES", path_ + "in/1 lost?.mp3");
    Set("COPY_ERRORS", "2 bad.mp3=2 3 odd.mp3=9 4 short.mp3=5 7 full.mp3=6");
    const HostResult result = Run("add in host");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.output,
                MatchesRegex("not added  in/1 lost..mp3: cannot be opened: No such file or directory\n"
                             "not added  in/2 bad.mp3: cannot be opened by the driver\n"
                             "not added  in/3 odd.mp3: was refused by the driver\n"
                             "not added  in/4 short.mp3: ended after 0 B of 1 B. Add it again .*\n"
                             "not added  in/5 empty.mp3: is empty\n"
                             "added      in/6 good.mp3 as 6 good.mp3, now library/music/5000001.mp3\n"
                             "not added  in/7 full.mp3: does not fit: the disk of the folder .* is full. .*\n"
                             "not added  in/8 later.mp3: was not tried, as the disk is full\n"
                             "not added  in/pipe.mp3: is no regular file. .*\n"
                             "not added  in/x.epub: is a book in form of a folder. .*\n"
                             "not added  host: is of a kind that iTunes does not take\n"));
    EXPECT_EQ(result.errors, "added 1 file (1 B), 10 not\n");
    EXPECT_THAT(FilesBelow(place_.add_folder), ElementsAre("6 good.mp3"));
    Set("LOST_BEFORE_COPIES", place_.add_folder);
    EXPECT_THAT(Run("add 'in/6 good.mp3'").output,
                HasSubstr("the file \"C:\\Music\\iTunes\\iTunes Media\\Automatically Add to iTunes\\6 "
                          "good.mp3\" could not be made"));
}

TEST_F(Add, StandardInputGetsItsName) {
    folder_.Write("file", "head\nrest");
    EXPECT_THAT(Shell("printf piped | host add - --name 'a/b: c.mp3'").output,
                StartsWith("added      - as a_b_ c.mp3, now library/music/"));
    EXPECT_EQ(Added("a_b_ c.mp3"), "piped");
    EXPECT_EQ(Shell("{ read head; host add - --name rest.pdf; } <file").exit_code, 0);
    EXPECT_EQ(Added("rest.pdf"), "rest") << "read from where the file stands";
    EXPECT_EQ(Run("add - --name file.pdf <file").exit_code, 0);
    EXPECT_EQ(Added("file.pdf"), "head\nrest");
    EXPECT_EQ(Run("add - --name none.mp3 </dev/null").output, "not added  -: is empty\n");
    EXPECT_EQ(FilesBelow(place_.add_folder).size(), 3U);
}

TEST_F(Add, WrongOptionsAreExplained) {
    Expect({{"add -", 2, "--name \"Song.mp3\""},
            {"add host host --name x.mp3", 2, "single FILE"},
            {"add in --name x.mp3", 2, "no folder"},
            {"add host --name x.txt", 2, "no extension that iTunes takes"},
            {"add x.mp3 --to playlist/Mix", 2, "--to"},
            {"add x.mp3 --library host", 2, "--media"}});
}

TEST_F(Add, ProgressTellsThePace) {
    Set("PAUSE", "100");
    folder_.Write("song.mp3", std::string(8 << 20, 's'));
    EXPECT_THAT(OnTerminal("add song.mp3", 120),
                AllOf(HasSubstr(" of 8.4 MB  "), HasSubstr("MB/s, 0:0"), HasSubstr("\r\x1b[Kadded")));
}

TEST_F(Add, InterruptedOneLeavesNoHalfFileAndTellsHowFarItCame) {
    Set("PAUSE", "20");
    for (const char *name : {"1", "2", "3"})
        folder_.Write("in/" + std::string(name) + ".mp3", name);
    fs::resize_file(path_ + "in/2.mp3", uint64_t{1} << 30);
    for (const int signal : {SIGINT, SIGTERM}) {
        const HostResult result = Interrupt("add --json in", place_.add_folder, "2.mp3", signal);
        EXPECT_EQ(result.exit_code, 128 + signal);
        EXPECT_THAT(FilesBelow(place_.add_folder), ElementsAre("1.mp3"));
        const auto receipts = nlohmann::json::parse(result.output);
        EXPECT_EQ(receipts.at(0).at("name"), "1.mp3");
        EXPECT_EQ(receipts.at(1).at("result"), "interrupted");
        EXPECT_EQ(receipts.at(2).at("problem"), "was not tried");
        fs::remove(place_.add_folder / "1.mp3");
    }
}

}  // namespace
