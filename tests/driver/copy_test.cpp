// One copy after another: what the host is told, and what lies in the folder afterwards.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <optional>

#include "tests/driver/copy_fixture.h"
#include "tests/driver/fake_windows.h"

namespace {

using testing::ElementsAre;
using Files = std::map<std::string, std::string>;

const Files kBystander = {{"kept.mp3", "kept"}};
const std::string kTen = "0123456789";

// A file system that has room for a few bytes more, as far as this process is concerned.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        old_handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, old_handler_);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

  private:
    rlimit old_ = {};
    void (*old_handler_)(int) = nullptr;
};

// When "ten.mp3" lies in the folder afterwards, with ten bytes.
enum class Copied { kNever, kUnlessStopped, kAlways };

struct Outcome {
    const char *name;
    std::function<void(CopyFixture &)> prepare;
    std::vector<int32_t> answers;
    const char *reports;
    int32_t result;
    int32_t result_without_callback;
    Copied copied = Copied::kNever;
    std::optional<rlim_t> room = {};
    const char *log = nullptr;
};

const auto kTakeTen = [](CopyFixture &copy) { copy.TakeStream(kTen, 10, "ten.mp3"); };
const auto kNamed = [](const char *key, const char *text) {
    return [=](CopyFixture &copy) {
        copy.TakeStream(kTen, 10, "");
        FreeVelmarAttribute(copy.source.source.attributes);
        AllocVelmarAttribute(&copy.source.source.attributes);
        copy.Put(key, text);
    };
};
const auto kFileNamed = [](const char *name) { return [=](CopyFixture &copy) { copy.TakeFile(name, 10); }; };
const auto kStreamEnd = [](const std::string &bytes, int32_t end) {
    return [=](CopyFixture &copy) {
        copy.TakeStream(bytes, 10, "ten.mp3");
        copy.stream_end = end;
    };
};

const Outcome kOutcomes[] = {
    {"complete", kTakeTen, {0}, "0:0 1:4 1:8 1:10 2:10", 0, 0, Copied::kAlways},
    {"answered", kTakeTen, {7}, "0:0 1:4 1:8 1:10", 7, 0, Copied::kAlways},
    {"answered0AtTheEnd", kTakeTen, {7, 7, 7, 0}, "0:0 1:4 1:8 1:10 2:10", 0, 0, Copied::kAlways},
    {"stoppedAtStart", kTakeTen, {-1}, "0:0", -1, 0, Copied::kUnlessStopped},
    {"cancelledAtStart", kTakeTen, {2}, "0:0", 2, 0, Copied::kUnlessStopped},
    {"stoppedInTheMiddle", kTakeTen, {0, 2}, "0:0 1:4", 2, 0, Copied::kUnlessStopped},
    {"stoppedBehindTheLastChunk", kTakeTen, {0, 0, 0, -1}, "0:0 1:4 1:8 1:10", -1, 0, Copied::kAlways},
    {"noHandle", [](CopyFixture &copy) { copy.source.source_size = 10; }, {9}, "0:0 3:0!2", 9, -1},
    {"noFile", kFileNamed("/nowhere/ten.mp3"), {0}, "0:0 3:0!2", 0, -1},
    {"noPath", kFileNamed(nullptr), {0}, "0:0 3:0!2", 0, -1},
    {"unknownType", [](CopyFixture &copy) { copy.source.source_type = 3; }, {0}, "0:0 3:0!2", 0, -1},
    {"nameWithSeparators",
     kNamed("location", "C:\\Music\\ten.mp3"),
     {0},
     "0:0 3:0!3",
     0,
     0,
     Copied::kNever,
     {},
     "\\C:\\Music\\ten.mp3\" failed"},
    {"extensionWithSeparator",
     kNamed("location", "../b.c/.."),
     {4},
     "0:0 3:0!3",
     4,
     0,
     Copied::kNever,
     {},
     "\\..\" failed"},
    {"noName", kNamed("artist", "x"), {0}, "0:0 3:0!3", 0, 0, Copied::kNever, {}, "\\\" failed"},
    {"nameThatWindowsLacks",
     kNamed("name", "why?"),
     {5},
     "0:0 3:0!3",
     5,
     0,
     Copied::kNever,
     {},
     "\\why?\" failed"},
    {"sourceEndsEarly", kStreamEnd("012345", 0), {0, 0, 0, 8}, "0:0 1:4 1:6 3:6!5", 8, 0},
    {"sourceEndsAndGoesOn", kStreamEnd("0123", 0), {0}, "0:0 1:4 3:4!5 2:4!5", 0, 0},
    {"sourceGivesAnError", kStreamEnd("0123", -3), {0, 0, 6}, "0:0 1:4 3:4!5", 6, 0},
    {"sourceGivesTooMuch", kStreamEnd("0123", 5), {0, 0, 6}, "0:0 1:4 3:4!5", 6, 0},
    {"diskFull", kTakeTen, {0, 0, 9}, "0:0 1:4 3:4!6", 9, 0, Copied::kNever, 6},
    {"diskFullAtLastByte", kTakeTen, {0, 0, 0, 0}, "0:0 1:4 1:8 3:8!6 2:8!6", 0, 0, Copied::kNever, 9},
};

class CopyOutcome : public testing::TestWithParam<Outcome> {};

TEST_P(CopyOutcome, IsToldAndLeavesNothingHalfWritten) {
    for (const bool with_callback : {true, false}) {
        const Outcome &outcome = GetParam();
        CopyFixture copy;
        copy.folder.Write(std::string(CopyFixture::kFolder) + "/kept.mp3", "kept");
        outcome.prepare(copy);
        copy.answers = outcome.answers;
        int32_t result = 0;
        {
            std::optional<FullDisk> disk;
            if (outcome.room) disk.emplace(*outcome.room);
            StartPathCopy(&copy.driver, 0, with_callback ? CopyFixture::Report : nullptr, &copy, 4);
            result = CopyDriverPath(&copy.driver, 0, "library/music", &copy.source);
        }
        EXPECT_EQ(result, with_callback ? outcome.result : outcome.result_without_callback);
        EXPECT_EQ(copy.reports, with_callback ? outcome.reports : "");
        Files expected = kBystander;
        const bool copied =
            with_callback ? outcome.copied == Copied::kAlways : outcome.copied != Copied::kNever;
        if (copied) expected["ten.mp3"] = kTen;
        EXPECT_EQ(copy.Files(), expected);
        const auto &lines = copy.log.lines();
        ASSERT_EQ(lines.size(), outcome.log == nullptr ? 0u : 1u);
        if (outcome.log != nullptr) {
            EXPECT_THAT(lines[0], testing::EndsWith(outcome.log));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, CopyOutcome, testing::ValuesIn(kOutcomes),
                         [](const auto &outcome) { return std::string(outcome.param.name); });

TEST(Copy, EachSourceGivesItsNameAndItsBytes) {
    CopyFixture copy;
    const std::string file = copy.folder.Write("source/a b.m4a", kTen).string();
    copy.TakeFile(file.c_str(), 10);
    EXPECT_EQ(copy.Copy(), 0);
    // Only as many bytes as the host has said, though the file has more.
    copy.TakeFile(file.c_str(), 5);
    EXPECT_EQ(copy.Copy(4), 0);
    EXPECT_EQ(copy.reports, "0:0 1:4 1:5 2:5");
    copy.TakeFile(file.c_str(), 0);
    EXPECT_EQ(copy.Copy(), 0);
    EXPECT_EQ(copy.reports, "0:0 2:0");

    copy.TakeStream(kTen, 0, "AC/DC: \"Live\" <1>|*\\");
    copy.Put("location", "/x/y.z.m4a");
    copy.Put("st_size", "10");
    EXPECT_EQ(copy.Copy(INT32_MAX), 0);
    EXPECT_EQ(copy.reports, "0:0 1:10 2:10");

    const std::string block = kTen + kTen;
    copy.TakeMemory(block);
    EXPECT_EQ(copy.Copy(16), 0);
    EXPECT_EQ(copy.reports, "0:0 1:16 1:20 2:20");
    char block_name[64];
    std::snprintf(block_name, sizeof block_name, "%p.mpg", static_cast<const void *>(block.data()));
    EXPECT_EQ(copy.Files(), (Files{{"a b.m4a", kTen},
                                   {"a b1.m4a", "01234"},
                                   {"a b2.m4a", ""},
                                   {"AC_DC_ _Live_ _1____.m4a", kTen},
                                   {block_name, block}}));
}

TEST(Copy, WorksOutsideOfABatchInChunksOf1024) {
    CopyFixture copy;
    const std::string bytes(3000, 'x');
    copy.TakeMemory(bytes);
    for (const int32_t chunk : {0, -5}) {
        EXPECT_EQ(copy.Copy(chunk), 0);
        EXPECT_EQ(copy.reports, "0:0 1:1024 1:2048 1:3000 2:3000");
    }
    CopyFixture fresh;
    fresh.TakeMemory(bytes);
    EXPECT_EQ(CopyDriverPath(&fresh.driver, 0, "", &fresh.source), 0);
    EXPECT_EQ(fresh.Files().size(), 1u);
}

TEST(Copy, RefusesWrongArgumentsWithoutACall) {
    CopyFixture copy;
    StartPathCopy(&copy.driver, 0, CopyFixture::Report, &copy, 4);
    EXPECT_EQ(CopyDriverPath(nullptr, 0, "", &copy.source), -1);
    EXPECT_EQ(CopyDriverPath(&copy.driver, 0, nullptr, &copy.source), -1);
    EXPECT_EQ(CopyDriverPath(&copy.driver, 1, "", nullptr), -1);
    EXPECT_EQ(CopyDriverPath(&copy.driver, 1, "", &copy.source), -1);
    EXPECT_EQ(copy.reports, "");
    EXPECT_THAT(copy.log.lines(), ElementsAre("[iTunes] Local driver is not available",
                                              "[iTunes] Local driver path is not available",
                                              "[iTunes] Copy source info is not available",
                                              "[iTunes] Local driver device index is not zero"));
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
    const auto listed = [&] {
        std::vector<std::string> files;
        for (const auto &entry :
             std::filesystem::recursive_directory_iterator(copy.folder.path() / "media")) {
            if (entry.is_regular_file()) files.push_back(entry.path().filename());
        }
        return files;
    };
    const FakeWindows windows;
    FinishPathCopy(&copy.driver, 0);
    const std::string file = copy.folder.Write("game.IPA", app("com.a")).string();
    const int64_t size = static_cast<int64_t>(std::filesystem::file_size(file));
    // A copy that is stopped deletes nothing; one whose bytes were all there counts.
    copy.TakeFile(file.c_str(), size);
    copy.answers = {0, 2};
    EXPECT_EQ(copy.Copy(), 2);
    EXPECT_EQ(listed().size(), 3u);
    copy.answers = {2 + 1};
    EXPECT_EQ(copy.Copy(), 3);
    EXPECT_THAT(listed(), testing::UnorderedElementsAre("OTHER.ipa", "game1.IPA"));
}

}  // namespace
