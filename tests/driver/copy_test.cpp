// One copy after another: what the host is told, what lies in the folder afterwards, and the end of a batch.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <utility>

#include "tests/driver/copy_fixture.h"
#include "tests/driver/fake_windows.h"
#include "tests/library/loaded_library.h"

namespace {

using Files = std::map<std::string, std::string>;

const std::string kTen = "0123456789";

// No file of this process grows beyond some bytes.
void LimitFiles(rlim_t bytes) {
    const rlimit limit{bytes, RLIM_INFINITY};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, SIG_IGN);
}

TEST(Copy, IsToldAndLeavesNothingHalfWritten) {
    struct Case {
        std::vector<int32_t> answers;
        const char *reports;
        int32_t result;
        std::string stream = kTen;
        int32_t stream_end = 0;
        rlim_t room = RLIM_INFINITY;
    };
    const Case kCases[] = {
        {{0}, "0:0 1:4 1:8 1:10 2:10", 0},
        {{7}, "0:0 1:4 1:8 1:10", 7},
        {{7, 7, 7, 0}, "0:0 1:4 1:8 1:10 2:10", 0},
        // Stopped at the start, in the middle, and behind the last chunk.
        {{2}, "0:0", 2},
        {{0, 2}, "0:0 1:4", 2},
        {{0, 0, 0, -1}, "0:0 1:4 1:8 1:10", -1},
        // A source that ends early, even if the host goes on, that has an error, or gives more than was asked
        // for.
        {{0, 0, 0, 8}, "0:0 1:4 1:6 3:6!5", 8, "012345"},
        {{0}, "0:0 1:4 3:4!5 2:4!5", 0, "0123"},
        {{0, 0, 6}, "0:0 1:4 3:4!5", 6, "0123", -3},
        {{0, 0, 6}, "0:0 1:4 3:4!5", 6, "0123", 5},
        // A full disk, also at the last byte.
        {{0, 0, 9}, "0:0 1:4 3:4!6", 9, kTen, 0, 6},
        {{0, 0, 0, 0}, "0:0 1:4 1:8 3:8!6 2:8!6", 0, kTen, 0, 9},
    };
    for (const auto &[answers, reports, result, stream, stream_end, room] : kCases) {
        for (const bool has_callback : {true, false}) {
            SCOPED_TRACE(testing::Message() << reports << " answered by " << answers.back());
            CopyFixture copy;
            copy.Write("Automatically Add to iTunes/kept.mp3", "kept");
            copy.TakeStream(stream, 10);
            copy.Put("name", "ten.mp3");
            copy.stream_end = stream_end;
            copy.answers = answers;
            StartPathCopy(&copy.driver, 0, has_callback ? CopyFixture::Report : nullptr, &copy, 4);
            LimitFiles(room);
            const int32_t own_result = CopyDriverPath(&copy.driver, 0, "library/music", &copy.source);
            LimitFiles(RLIM_INFINITY);
            EXPECT_EQ(own_result, has_callback ? result : 0);
            EXPECT_EQ(copy.reports, has_callback ? reports : "");
            Files expected = {{"kept.mp3", "kept"}};
            // It is there if the host has been told of all bytes, or if nobody could stop the copy.
            const std::string told = reports;
            const bool is_there =
                has_callback ? told.find(" 1:10") != told.npos : told.find('!') == told.npos;
            if (is_there) expected["ten.mp3"] = kTen;
            EXPECT_EQ(copy.Files(), expected);
            EXPECT_TRUE(copy.log.Lines().empty());
        }
    }
}

TEST(Copy, NeedsASourceAndANameThatWindowsCouldHold) {
    for (const auto &[type, path] :
         {std::pair(0, "x"), {1, "/nowhere/ten.mp3"}, {1, nullptr}, {2, "x"}, {3, "x"}}) {
        CopyFixture copy;
        copy.TakeFile(path, 10);
        copy.source.source_type = type;
        copy.answers = {9};
        EXPECT_EQ(copy.Copy(), 9) << type;
        EXPECT_EQ(copy.reports, "0:0 3:0!2") << type;
        StartPathCopy(&copy.driver, 0, nullptr, nullptr, 4);
        EXPECT_EQ(CopyDriverPath(&copy.driver, 0, "", &copy.source), -1) << type;
    }
    // The part of the location that becomes the name.
    for (const auto &[location, name] :
         {std::pair("C:\\t.mp3", "C:\\t.mp3"), {"b.c/..", ".."}, {"a/", ""}, {"why?", "why?"}}) {
        CopyFixture copy;
        copy.TakeStream(kTen, 10);
        copy.Put("location", location);
        copy.answers = {4};
        EXPECT_EQ(copy.Copy(), 4) << location;
        EXPECT_EQ(copy.reports, "0:0 3:0!3") << location;
        EXPECT_TRUE(copy.log.Lines().at(0).ends_with(std::string("\\") + name + "\" failed")) << location;
        EXPECT_EQ(copy.Files(), Files());
    }
}

TEST(Copy, EachSourceGivesItsNameAndItsBytes) {
    CopyFixture copy;
    const std::string file = copy.folder.Write("source/a b.m4a", kTen).string();
    const auto check = [&copy](int32_t chunk, const char *reports) {
        EXPECT_EQ(copy.Copy(chunk), 0);
        EXPECT_EQ(copy.reports, reports);
    };
    // Only as many bytes as the host has said, though the file has more.
    copy.TakeFile(file.c_str(), 5);
    check(4, "0:0 1:4 1:5 2:5");
    copy.TakeFile(file.c_str(), 0);
    check(4, "0:0 2:0");
    copy.TakeStream(kTen, 0);
    copy.Put("name", "AC/DC: \"Live\" <1>|*\\");
    copy.Put("location", "/x/y.z.m4a");
    copy.Put("st_size", "10");
    check(INT32_MAX, "0:0 1:10 2:10");
    const std::string block(3000, 'x');
    copy.Take(2, 3000, block.data());
    check(1600, "0:0 1:1600 1:3000 2:3000");
    // A chunk of no size is of 1024 bytes.
    check(0, "0:0 1:1024 1:2048 1:3000 2:3000");
    check(-5, "0:0 1:1024 1:2048 1:3000 2:3000");
    const std::string stem = testing::PrintToString(static_cast<const void *>(block.data()));
    Files expected = {{"a b.m4a", "01234"}, {"a b1.m4a", ""}, {"AC_DC_ _Live_ _1____.m4a", kTen}};
    for (const char *ending : {".mpg", "1.mpg", "2.mpg"})
        expected[stem + ending] = block;
    EXPECT_EQ(copy.Files(), expected);
}

TEST(Copy, OfProcessesThatAreKilledHarmsNoOtherFile) {
    std::mt19937 random(7);
    CopyFixture copy;
    // What else iTunes has lies beside the folder.
    for (const char *name : {"media/iTunes Library.xml", "media/iTunesPrefs.xml"})
        copy.folder.Write(name, name);
    copy.Write("Automatically Add to iTunes/x1.mp3", "old");
    copy.Put("location", "C:/x.mp3");
    int cut_short = 0;
    unsigned longest_wait = 4000;  // microseconds; more where a copy begins late
    for (int round = 0; round < 100; ++round) {
        std::vector<pid_t> children;
        for (const char letter : {'a', 'b'}) {
            children.push_back(fork());
            while (children.back() == 0) {
                copy.TakeStream(std::string(1 << 20, letter), 1 << 20);
                if (CopyDriverPath(&copy.driver, 0, "", &copy.source) != 0) _exit(1);
            }
        }
        usleep(static_cast<useconds_t>(random() % longest_wait));
        for (const pid_t child : children) {
            ASSERT_EQ(kill(child, SIGKILL), 0);
            ASSERT_EQ(waitpid(child, nullptr, 0), child);
        }
        Files files = copy.Files();
        EXPECT_EQ(std::exchange(files["x1.mp3"], ""), "old");
        int incomplete = -1;  // for the file that is no copy
        for (const auto &[name, bytes] : files) {
            EXPECT_EQ(bytes, std::string(bytes.size(), bytes.empty() ? ' ' : bytes[0])) << name;
            incomplete += bytes.size() != 1 << 20;
            if (name != "x1.mp3") std::filesystem::remove(copy.folder.path() / CopyFixture::kFolder / name);
        }
        EXPECT_LE(incomplete, 2);
        cut_short += incomplete;
        if (cut_short == 0) longest_wait = std::min(longest_wait * 5 / 4, 100'000U);
    }
    EXPECT_GT(cut_short, 0) << "no copy was met while it wrote";
    for (const char *name : {"media/iTunes Library.xml", "media/iTunesPrefs.xml"})
        EXPECT_EQ(ReadWholeFile(copy.folder.path() / name), name);
}

TEST(Copy, OfAnApplicationDeletesItsOtherFiles) {
    CopyFixture copy;
    copy.AddRoot("app", node_category::kApplication, node_subcategory::kApplication);
    const auto app = [](const std::string &id) {
        return Archive({{"Payload/A.app/Info.plist", "{ CFBundleIdentifier = \"" + id + "\"; }"}});
    };
    copy.Write("Mobile Applications/old.ipa", app("com.a"));
    copy.Write("Mobile Applications/OTHER.ipa", app("com.A"));
    copy.Write("Automatically Add to iTunes/GAME.ipa", app("com.a"));
    const FakeWindows windows;
    FinishPathCopy(&copy.driver, 0);
    const std::string file = copy.folder.Write("game.IPA", app("com.a")).string();
    copy.TakeFile(file.c_str(), static_cast<int64_t>(app("com.a").size()));
    // A copy that is stopped deletes nothing; one whose bytes were all there counts.
    copy.answers = {0, 2};
    EXPECT_EQ(copy.Copy(), 2);
    EXPECT_EQ(FolderContents(copy.folder.path() / "media").size(), 5u);
    copy.answers = {2 + 1};
    EXPECT_EQ(copy.Copy(), 3);
    EXPECT_THAT(copy.Files(), testing::ElementsAre(testing::Key("game1.IPA")));
    EXPECT_THAT(FolderContents(copy.folder.path() / "media/Mobile Applications"),
                testing::ElementsAre(testing::Key("OTHER.ipa")));
}

TEST(FinishPathCopy, ReadsTheLibraryAgainWhereItunesHasAWindowAndTheFoldersAnyway) {
    LoadedLibrary library([](LibraryXml &xml) { xml.Track("1", {}); });
    library.Rewrite([](LibraryXml &xml) { xml.Track("2", {}); });
    using Texts = std::vector<std::string>;
    const std::pair<std::wstring, Texts> kCases[] = {
        {L"", {"find ITWindow/iTunes", "sleep 1000"}},
        {L"ITWindow", {"find ITWindow/iTunes", "front ITWindow", "sleep 1000", "front other", "sleep 2000"}},
        {L"iTunes", {"front iTunes", "sleep 1000", "front other", "sleep 2000"}}};
    for (const auto &[window, calls] : kCases) {
        const FakeWindows windows({window});
        const std::string tone = std::to_string(calls.size()) + ".m4r";
        WriteFile(library.place.media_folder / "Ringtones" / tone, "tone");
        library.driver.copy_callback = CopyFixture::Report;
        library.driver.copy_chunk_size = 77;
        EXPECT_EQ(FinishPathCopy(&library.driver, 0), 0);
        EXPECT_EQ(FakeWindows::calls.at(0), "find iTunes/iTunes");
        EXPECT_EQ(Texts(FakeWindows::calls.begin() + 1, FakeWindows::calls.end()), calls);
        EXPECT_EQ(library.NamesUnder("library/music"), window.empty() ? Texts() : Texts{"2"});
        EXPECT_NE(library.At("library/ringtone/" + tone), nullptr);
        EXPECT_EQ(library.driver.copy_callback, nullptr);
        EXPECT_EQ(library.driver.copy_chunk_size, 77);
    }
}

}  // namespace
