// What a host may rely on: the thirteen exports on a real library. Runs on either host library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "driver/itunes_driver.h"
#include "tests/driver/open_library.h"
#include "tests/support/artwork_file.h"
#include "tests/support/collected_log.h"
#include "tests/support/sample_library.h"
#include "tests/support/temp_folder.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Optional;

class Exports : public testing::Test {
  protected:
    TempFolder folder_;
    LibraryPlace place_ = MakeSampleLibrary(folder_.path());
    ScopedEnvironmentValues environment_{place_.environment};
    CollectedLog log_;
    OpenLibrary library_;
    LibraryDriver *driver_ = library_.driver();
};

struct Calls {
    std::atomic<int> count{0};
    std::atomic<bool> record_is_zero{false};
    LibraryDriver *to_close = nullptr;
};

int32_t CountCall(const DriverStartupRecord *record, void *context) {
    auto *calls = static_cast<Calls *>(context);
    calls->record_is_zero = (record->words[0] | record->words[1] | record->words[2] | record->words[3]) == 0;
    ++calls->count;
    return -7;
}

int32_t CloseFromCall(const DriverStartupRecord *, void *context) {
    auto *calls = static_cast<Calls *>(context);
    UninitializeDriverPath(calls->to_close);
    ++calls->count;
    return 0;
}

bool WaitForCall(const Calls &calls) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (calls.count == 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(milliseconds(5));
    return calls.count != 0;
}

TEST_F(Exports, NullHandlesGiveTheResultAndTheMessageOfEachExport) {
    char byte = 0;
    DriverStream *stream = nullptr;
    const auto check = [&](int32_t result, int32_t expected, const char *message) {
        EXPECT_EQ(result, expected) << message;
        EXPECT_EQ(log_.Last(), message);
    };
    check(InitializeDriverPath(nullptr, nullptr, 0, nullptr), -1, "Receive iTunes driver address is zero");
    check(UninitializeDriverPath(nullptr), 1, "iTunes driver is not available");
    check(CloseDriverPath(nullptr), -1, "iTunes path is not available");
    check(GetDriverPathInfo(nullptr, nullptr), -1, "iTunes path is not available");
    check(GetDriverPathInfo(OpenedPath(driver_, "").get(), nullptr), -1, "Path info is zero");
    check(OpenDriverPath(nullptr, 0, "", nullptr), -1, "iTunes driver is not available");
    check(OpenDriverPath(driver_, 0, "", nullptr), -1, "Receive iTunes path address is zero");
    check(StartPathCopy(nullptr, 0, nullptr, nullptr, 0), -1, "Local driver is not available");
    check(FinishPathCopy(nullptr, 0), -1, "Local driver is not available");
    check(CopyDriverPath(driver_, 0, "library", nullptr), -1, "Copy source info is not available");
    check(OpenDriverStream(nullptr, 0, "", &stream), -1, "Local driver is not available");
    check(OpenDriverStream(driver_, 0, nullptr, &stream), -1, "Local driver path is not available");
    check(OpenDriverStream(driver_, 0, "", nullptr), -1, "Receive local stream address is zero");
    check(OpenDriverStream(driver_, 1, "", &stream), -1, "iTunes driver device index is not zero");
    check(CloseDriverStream(nullptr), 1, "iTunes stream is not available");
    check(ReadDriverStream(nullptr, &byte, 1), 1, "iTunes stream is not available");
    check(WriteDriverStream(nullptr, &byte, 1), 1, "iTunes stream is not available");
    check(SeekDriverStream(nullptr, 0, 0), 1, "iTunes stream is not available");
}

TEST_F(Exports, TheTreeHasItsFixedShape) {
    ASSERT_EQ(library_.result, 0);
    const OpenedPath root(driver_, "");
    EXPECT_THAT(root.Numbers(), ElementsAre(0, 0, 0));
    EXPECT_THAT(root.Names(), ElementsAre("library", "genius", "playlist"));
    EXPECT_THAT(root.Attribute("terminal_type"), Optional(std::string("iTunes")));
    EXPECT_TRUE(root.Attribute("application_version"));
    EXPECT_EQ(root.Attribute("persistent_id")->size(), 16u);

    const OpenedPath library(driver_, "library");
    EXPECT_THAT(library.Numbers(), ElementsAre(1, 1, 1));
    EXPECT_THAT(library.Names(),
                testing::IsSupersetOf({"music", "movie", "tvshow", "podcast", "book", "Purchased"}));
    EXPECT_THAT(OpenedPath(driver_, "library/music").Numbers(), ElementsAre(1, 2, 20));
    EXPECT_THAT(OpenedPath(driver_, "library/movie").Numbers(), ElementsAre(1, 3, 30));
    EXPECT_THAT(OpenedPath(driver_, "library/tvshow").Numbers(), ElementsAre(1, 3, 31));
    EXPECT_THAT(OpenedPath(driver_, "library/podcast").Numbers(), ElementsAre(1, 3, 9));
    EXPECT_THAT(OpenedPath(driver_, "library/book").Numbers(), ElementsAre(1, 5, 50));
    EXPECT_THAT(OpenedPath(driver_, "genius/Genius").Numbers(), ElementsAre(1, 1, 12));
    EXPECT_THAT(OpenedPath(driver_, "playlist/iTunes DJ").Numbers(), ElementsAre(1, 1, 13));
    EXPECT_THAT(OpenedPath(driver_, "playlist/Recently Added").Numbers(), ElementsAre(1, 1, 3));
    EXPECT_THAT(OpenedPath(driver_, "playlist/Rain & Sun").Numbers(), ElementsAre(1, 1, 4));
    EXPECT_THAT(OpenedPath(driver_, "playlist/Rain & Sun").Names(),
                ElementsAre("101.mp3", "103.mp3", "102.mp3"));
    // A folder shows its own items and the lists inside it, which have none.
    EXPECT_THAT(OpenedPath(driver_, "playlist/Road Trip").Names(),
                ElementsAre("101.mp3", "102.mp3", "104.m4a", "Day One", "Evenings"));
    EXPECT_THAT(OpenedPath(driver_, "playlist/Road Trip/Evenings/Fireplace").Names(), ElementsAre());
    EXPECT_EQ(OpenedPath(driver_, "playlist/####!####").get(), nullptr);
    // The film that only the master list holds comes under "movie" as well.
    EXPECT_THAT(OpenedPath(driver_, "library/movie").Names(), testing::IsSupersetOf({"110.m4v", "111.m4v"}));
}

TEST_F(Exports, PathTextsAreWalkedExactly) {
    for (const char *nowhere : {"Library", "library//music", "/library", "library/musi", "library/music2",
                                "thumb", "library/music/107.mp3/thumb/small"}) {
        auto *path = reinterpret_cast<DriverPath *>(this);
        EXPECT_EQ(OpenDriverPath(driver_, 5, nowhere, &path), -2) << nowhere;
        EXPECT_EQ(path, nullptr) << nowhere;
    }
    EXPECT_EQ(OpenedPath(driver_, "library/").get(), OpenedPath(driver_, "library").get());

    DriverPath *root = nullptr;
    ASSERT_EQ(OpenDriverPath(driver_, 0, nullptr, &root), 0);
    DriverPathInfo info = {};
    ASSERT_EQ(GetDriverPathInfo(root, &info), 0);
    EXPECT_EQ(info.open_path, nullptr);
    CloseDriverPath(root);
}

TEST_F(Exports, ThumbnailsComeFromTheArtworkCache) {
    EXPECT_THAT(OpenedPath(driver_, "library/music/101.mp3/thumb").Names(),
                ElementsAre("small", "middle", "large"));
    for (const char *name : {"small", "middle", "large"}) {
        const std::string path = std::string("playlist/Rain & Sun/101.mp3/thumb/") + name;
        const OpenedPath thumbnail(driver_, path.c_str());
        EXPECT_THAT(thumbnail.Attribute("thumb_type"), Optional(std::string("png")));
        EXPECT_EQ(StreamBytes(driver_, path, 1000), PngPicture(std::stoi(*thumbnail.Attribute("width"))));
    }
}

TEST_F(Exports, ATrackIsOneNodeThatKeepsTheTextOfItsFirstOpen) {
    const OpenedPath first(driver_, "playlist/Rain & Sun/101.mp3");
    {
        const OpenedPath second(driver_, "library/music/101.mp3");
        EXPECT_EQ(first.get(), second.get());
        EXPECT_STREQ(second.Info().open_path, "playlist/Rain & Sun/101.mp3");
    }
    EXPECT_STREQ(first.Info().open_path, "playlist/Rain & Sun/101.mp3");
    EXPECT_EQ(first.Info().reserved4, 0u);
    EXPECT_EQ(first.Info().reserved7, 0u);
    EXPECT_THAT(first.Attribute("name"), Optional(std::string("Rain & Thunder")));
    EXPECT_THAT(first.Attribute("duration"), Optional(std::string("3000")));
    EXPECT_EQ(first.Attribute("is_movie"), std::nullopt);
}

TEST_F(Exports, StreamsGiveTheFilesOfTheirTracks) {
    const OpenedPath track(driver_, "library/music/101.mp3");
    const std::string file = ReadWholeFile("/" + track.Attribute("location").value_or(""));
    ASSERT_FALSE(file.empty());
    EXPECT_THAT(StreamBytes(driver_, "library/music/101.mp3", 1000), Optional(file));
    EXPECT_THAT(track.Attribute("st_size"), Optional(std::to_string(file.size())));

    DriverStream *stream = nullptr;
    ASSERT_EQ(OpenDriverStream(driver_, 0, "library/music/101.mp3", &stream), 0);
    char bytes[16] = {};
    // A whole file takes any offset, and the driver has no word on it.
    EXPECT_EQ(SeekDriverStream(stream, 1 << 30, 0), 0);
    EXPECT_EQ(ReadDriverStream(stream, bytes, 16), 0);
    EXPECT_EQ(SeekDriverStream(stream, -10, 2), 0);
    EXPECT_EQ(ReadDriverStream(stream, bytes, 16), 10);
    EXPECT_EQ(std::string(bytes, 10), file.substr(file.size() - 10));
    EXPECT_EQ(SeekDriverStream(stream, 3, 0), 0);
    EXPECT_EQ(SeekDriverStream(stream, 2, 1), 0);
    EXPECT_EQ(ReadDriverStream(stream, bytes, 4), 4);
    EXPECT_EQ(std::string(bytes, 4), file.substr(5, 4));
    EXPECT_EQ(ReadDriverStream(stream, bytes, -1), 0);
    EXPECT_EQ(WriteDriverStream(stream, bytes, 4), 0);
    EXPECT_EQ(CloseDriverStream(stream), 0);
    EXPECT_EQ(ReadWholeFile("/" + *track.Attribute("location")), file);
}

TEST_F(Exports, StreamsThatCannotOpenSayWhyAndCloseTheirPath) {
    DriverStream *stream = nullptr;
    EXPECT_EQ(OpenDriverStream(driver_, 0, "library/no", &stream), -1);
    EXPECT_EQ(log_.Last(), "Open iTunes path \"library/no\" failed");
    EXPECT_EQ(OpenDriverStream(driver_, 0, "library", &stream), -1);
    EXPECT_EQ(log_.Last(), "iTunes path \"library\" has no \"location\" attribute");
    EXPECT_EQ(OpenDriverStream(driver_, 0, "library/music/107.mp3", &stream), -1);
    EXPECT_EQ(log_.Last(), "iTunes file stream \"library/music/107.mp3\"open failed");
    EXPECT_EQ(stream, nullptr);
    for (const char *path : {"library", "library/music/107.mp3"}) {
        // Had the failed open left the path open, its first text would still stand.
        const OpenedPath again(driver_, (std::string(path) + "/").c_str());
        EXPECT_EQ(again.Info().open_path, std::string(path) + "/");
    }
}

TEST_F(Exports, AStreamOutlivesItsDriver) {
    const auto expected = StreamBytes(driver_, "library/music/102.mp3", 4096);
    LibraryDriver *other = nullptr;
    ASSERT_EQ(InitializeDriverPath(nullptr, nullptr, 0, &other), 0);
    DriverStream *stream = nullptr;
    ASSERT_EQ(OpenDriverStream(other, 0, "library/music/102.mp3", &stream), 0);
    ASSERT_EQ(UninitializeDriverPath(other), 0);
    std::string bytes(expected->size(), '\0');
    EXPECT_EQ(ReadDriverStream(stream, bytes.data(), static_cast<int32_t>(bytes.size())),
              static_cast<int32_t>(bytes.size()));
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(CloseDriverStream(stream), 0);
}

TEST_F(Exports, TheCallbackComesOnceAndNotAtOnce) {
    Calls calls;
    LibraryDriver *driver = nullptr;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(InitializeDriverPath(CountCall, &calls, 0, &driver), 0);
    ASSERT_TRUE(WaitForCall(calls));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(500));
    EXPECT_TRUE(calls.record_is_zero);
    EXPECT_EQ(UninitializeDriverPath(driver), 0);
    EXPECT_EQ(calls.count, 1);
}

TEST_F(Exports, AStopBeforeTheCallbackDropsIt) {
    Calls calls;
    for (const int delay : {0, 1, 40}) {
        LibraryDriver *driver = nullptr;
        ASSERT_EQ(InitializeDriverPath(CountCall, &calls, 0, &driver), 0);
        std::this_thread::sleep_for(milliseconds(delay));
        EXPECT_EQ(UninitializeDriverPath(driver), 0);
    }
    std::this_thread::sleep_for(milliseconds(700));
    EXPECT_EQ(calls.count, 0);
}

TEST_F(Exports, TheCallbackMayCloseTheLibrary) {
    Calls calls;
    ASSERT_EQ(InitializeDriverPath(CloseFromCall, &calls, 0, &calls.to_close), 0);
    EXPECT_TRUE(WaitForCall(calls));
    // The call ends a moment before its thread does.
    std::this_thread::sleep_for(milliseconds(50));
}

TEST_F(Exports, ALibraryThatCannotBeOpenedGivesNoHandle) {
    Calls calls;
    auto *driver = reinterpret_cast<LibraryDriver *>(this);
    std::filesystem::remove(place_.library_xml);
    EXPECT_EQ(InitializeDriverPath(CountCall, &calls, 0, &driver), -999);
    EXPECT_EQ(driver, reinterpret_cast<LibraryDriver *>(this));
    const auto lines = log_.Lines();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 3], "[iTunes] Open iTunes Library file error!");
    EXPECT_EQ(lines[lines.size() - 2], "[iTunes] Open iTunes Library XML file failed.");
    EXPECT_EQ(lines[lines.size() - 1], "[iTunes] Create iTunes library failed");
}

TEST_F(Exports, ALibraryWithoutAddFolderDoesNotLoad) {
    std::filesystem::remove_all(place_.add_folder);
    LibraryDriver *driver = nullptr;
    EXPECT_EQ(InitializeDriverPath(nullptr, nullptr, 0, &driver), -1);
    EXPECT_TRUE(
        log_.Has("[iTunes] Can't find \"Automatically Add to iTunes\" folder under iTunes Media Folder"));
}

TEST_F(Exports, LogLinesAreCutAt511BytesAndTakeNoFormatFromTheirText) {
    DriverStream *stream = nullptr;
    OpenDriverStream(driver_, 0, "%s%n%d", &stream);
    EXPECT_EQ(log_.Last(), "Open iTunes path \"%s%n%d\" failed");
    constexpr size_t kFixed = std::string_view("[iTunes] Open iTunes path \"\" failed").size();
    for (const size_t excess : {0u, 1u, 700u}) {
        const std::string path(511 - kFixed + excess, 'x');
        OpenDriverStream(driver_, 0, path.c_str(), &stream);
        const std::string line = "[iTunes] Open iTunes path \"" + path + "\" failed";
        EXPECT_EQ(log_.Lines().back(), line.substr(0, 511));
    }
}

TEST_F(Exports, ACopyIsRefusedAndTouchesNothing) {
    EXPECT_EQ(StartPathCopy(driver_, 0, nullptr, nullptr, 4096), 0);
    CopySourceInfo source = {};
    EXPECT_EQ(CopyDriverPath(driver_, 0, "library/music", &source), -1);
    EXPECT_EQ(FinishPathCopy(driver_, 0), 0);
}

}  // namespace
