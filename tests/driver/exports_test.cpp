// What a host may rely on: the thirteen exports on a real library. Runs on either host library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <semaphore>
#include <thread>

#include "driver/itunes_driver.h"
#include "fixtures/artwork_file.h"
#include "fixtures/media_files.h"
#include "fixtures/sample_library.h"
#include "fixtures/temp_folder.h"
#include "tests/driver/open_library.h"
#include "tests/support/collected_log.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class Exports : public testing::Test {
  protected:
    // What reading `count` bytes gives, and how opening the stream of a path ends.
    std::string Read(int32_t count) {
        std::string piece(static_cast<size_t>(count), '\0');
        piece.resize(static_cast<size_t>(ReadDriverStream(stream_, piece.data(), count)));
        return piece;
    }
    int32_t Open(const std::string &path) { return OpenDriverStream(driver_, 0, path.c_str(), &stream_); }

    TempFolder folder_;
    LibraryPlace place_ = MakeSampleLibrary(folder_.path());
    ScopedEnvironmentValues environment_{place_.environment};
    CollectedLog log_;
    OpenLibrary library_;
    LibraryDriver *driver_ = library_.driver;
    DriverStream *stream_ = nullptr;
};

TEST_F(Exports, NullHandlesGiveTheResultAndTheMessageOfEachExport) {
    char byte = 0;
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
    CopySourceInfo source = {};
    check(CopyDriverPath(nullptr, 0, "", &source), -1, "Local driver is not available");
    check(CopyDriverPath(driver_, 0, nullptr, &source), -1, "Local driver path is not available");
    check(CopyDriverPath(driver_, 1, "", nullptr), -1, "Copy source info is not available");
    check(CopyDriverPath(driver_, 1, "", &source), -1, "Local driver device index is not zero");
    check(OpenDriverStream(nullptr, 0, "", &stream_), -1, "Local driver is not available");
    check(OpenDriverStream(driver_, 0, nullptr, &stream_), -1, "Local driver path is not available");
    check(OpenDriverStream(driver_, 0, "", nullptr), -1, "Receive local stream address is zero");
    check(OpenDriverStream(driver_, 1, "", &stream_), -1, "iTunes driver device index is not zero");
    check(CloseDriverStream(nullptr), 1, "iTunes stream is not available");
    check(ReadDriverStream(nullptr, &byte, 1), 1, "iTunes stream is not available");
    check(WriteDriverStream(nullptr, &byte, 1), 1, "iTunes stream is not available");
    check(SeekDriverStream(nullptr, 0, 0), 1, "iTunes stream is not available");
    // Streams that cannot open say why, in lines of 511 bytes at most.
    check(Open("library/no"), -1, "Open iTunes path \"library/no\" failed");
    check(Open("%s%n%d"), -1, "Open iTunes path \"%s%n%d\" failed");
    check(Open("library"), -1, "iTunes path \"library\" has no \"location\" attribute");
    check(Open("library/music/107.mp3"), -1, "iTunes file stream \"library/music/107.mp3\"open failed");
    for (const size_t excess : {0u, 1u, 700u}) {
        const std::string path(511 - 35 + excess, 'x');
        EXPECT_EQ(Open(path), -1);
        EXPECT_EQ(log_.Lines().back(), ("[iTunes] Open iTunes path \"" + path + "\" failed").substr(0, 511));
    }
    EXPECT_EQ(stream_, nullptr);
    // Had the failed opens left their paths open, the first texts would still stand.
    EXPECT_STREQ(OpenedPath(driver_, "library/").Info().open_path, "library/");
    EXPECT_STREQ(OpenedPath(driver_, "library/music/107.mp3/").Info().open_path, "library/music/107.mp3/");
}

TEST_F(Exports, TheTreeIsWalkedByExactTexts) {
    ASSERT_EQ(library_.result, 0);
    EXPECT_EQ(OpenedPath(driver_, nullptr).Info().open_path, nullptr);
    const OpenedPath root(driver_, "");
    EXPECT_THAT(root.Numbers(), ElementsAre(0, 0, 0));
    EXPECT_THAT(root.Names(), ElementsAre("library", "genius", "playlist"));
    EXPECT_EQ(root.Attribute("terminal_type"), "iTunes");
    for (const char *nowhere : {"Library", "library//music", "/library", "library/musi", "library/music2",
                                "thumb", "library/music/107.mp3/thumb/small", "playlist/####!####"}) {
        auto *path = reinterpret_cast<DriverPath *>(this);
        EXPECT_EQ(OpenDriverPath(driver_, 5, nowhere, &path), -2) << nowhere;
        EXPECT_EQ(path, nullptr) << nowhere;
    }
    EXPECT_EQ(OpenedPath(driver_, "library/").get(), OpenedPath(driver_, "library").get());
    // A track is one node, which keeps the text of its first open.
    const OpenedPath first(driver_, "playlist/Rain & Sun/101.mp3");
    EXPECT_EQ(first.get(), OpenedPath(driver_, "library/music/101.mp3").get());
    EXPECT_STREQ(first.Info().open_path, "playlist/Rain & Sun/101.mp3");
    EXPECT_EQ(first.Info().reserved4 | first.Info().reserved7, 0u);
    EXPECT_EQ(first.Attribute("name"), "Rain & Thunder");
}

TEST_F(Exports, AStreamGivesTheFileOfItsTrackAndOutlivesItsDriver) {
    const OpenedPath track(driver_, "library/music/101.mp3");
    const std::string location = "/" + track.Attribute("location").value_or("");
    const std::string file = ReadWholeFile(location);
    EXPECT_EQ(StreamBytes(driver_, "library/music/101.mp3", 1000), file);
    ASSERT_EQ(OpenDriverStream(OpenLibrary().driver, 0, "library/music/101.mp3", &stream_), 0);
    // A whole file takes any offset, and the driver has no word on it.
    EXPECT_EQ(SeekDriverStream(stream_, 1 << 30, 0), 0);
    EXPECT_EQ(Read(16), "");
    EXPECT_EQ(SeekDriverStream(stream_, -10, 2), 0);
    EXPECT_EQ(Read(16), file.substr(file.size() - 10));
    EXPECT_EQ(SeekDriverStream(stream_, 3, 0), 0);
    EXPECT_EQ(SeekDriverStream(stream_, 2, 1), 0);
    EXPECT_EQ(Read(4), file.substr(5, 4));
    char bytes[4] = {};
    EXPECT_EQ(ReadDriverStream(stream_, bytes, -1), 0);
    EXPECT_EQ(ReadDriverStream(stream_, nullptr, 1), 0);
    EXPECT_EQ(WriteDriverStream(stream_, bytes, 4), 0);
    EXPECT_EQ(CloseDriverStream(stream_), 0);
    EXPECT_EQ(ReadWholeFile(location), file);
}

TEST_F(Exports, AThumbnailIsARangeOfItsFile) {
    EXPECT_THAT(OpenedPath(driver_, "library/music/101.mp3/thumb").Names(),
                ElementsAre("small", "middle", "large"));
    // The one in the middle has others before and behind it.
    const std::string path = "playlist/Rain & Sun/101.mp3/thumb/middle";
    const OpenedPath thumbnail(driver_, path.c_str());
    const std::string picture = PngPicture(std::stoi(*thumbnail.Attribute("width")));
    EXPECT_EQ(StreamBytes(driver_, path, 7), picture);
    std::string location = *thumbnail.Attribute("location");
    std::replace(location.begin(), location.end(), '\\', '/');
    const std::string file = ReadWholeFile(location);
    const size_t start = file.find(picture);
    const auto size = static_cast<int64_t>(picture.size());
    const std::string texts[] = {"size = " + std::to_string(size),
                                 "range: cur = " + std::to_string(start + 8) + ", offset = " +
                                     std::to_string(start) + " and size " + std::to_string(size)};
    ASSERT_EQ(Open(path), 0);
    constexpr int64_t kFar = std::numeric_limits<int64_t>::max();
    // An origin, where it counts from at position 8, and offsets.
    using Case = std::tuple<int32_t, int64_t, std::vector<int64_t>>;
    // From the start there is no lower limit: the bytes in front of the thumbnail are reached. An unknown
    // origin is refused by the file, and nobody says so.
    for (const auto &[origin, base, offsets] :
         {Case{0, 0, {0, size, -10, size + 1, kFar}}, Case{1, 8, {size - 8, -8, size - 7, -9, kFar, -kFar}},
          Case{2, size, {0, -size, 1, -size - 1, kFar, -kFar}}, Case{9, 8, {0}}}) {
        for (const int64_t offset : offsets) {
            SCOPED_TRACE(std::to_string(offset) + " from " + std::to_string(origin));
            const bool refused = offset > size - base || (origin != 0 && offset < -base);
            ASSERT_EQ(SeekDriverStream(stream_, 8, 0), 0);
            EXPECT_EQ(SeekDriverStream(stream_, offset, origin), refused ? -1 : 0);
            const std::string refusal = "Seek operation out of thumb " + texts[origin == 1 ? 1 : 0];
            EXPECT_TRUE(!refused || log_.Last() == refusal) << log_.Last();
            // A refused seek leaves the position alone.
            const int64_t at = refused ? 8 : base + offset;
            const auto left = static_cast<size_t>(std::min<int64_t>(30, size - at));
            EXPECT_EQ(Read(30), file.substr(start + static_cast<size_t>(at), left));
        }
    }
    EXPECT_EQ(CloseDriverStream(stream_), 0);
}

struct Calls {
    LibraryDriver *driver = nullptr;
    bool closes = false;
    int count = 0;
    std::binary_semaphore called{0};

    int32_t Start() { return InitializeDriverPath(Take, this, 0, &driver); }
    static int32_t Take(const DriverStartupRecord *record, void *context) {
        auto *calls = static_cast<Calls *>(context);
        EXPECT_EQ(record->words[0] | record->words[1] | record->words[2] | record->words[3], 0u);
        if (calls->closes) UninitializeDriverPath(calls->driver);
        ++calls->count;
        calls->called.release();
        return -7;
    }
};

TEST_F(Exports, TheCallbackComesOnceAndNotAtOnceAndMayCloseTheLibrary) {
    Calls stopped;
    for (const int delay : {0, 1, 40}) {
        ASSERT_EQ(stopped.Start(), 0);
        std::this_thread::sleep_for(milliseconds(delay));
        EXPECT_EQ(UninitializeDriverPath(stopped.driver), 0);
    }
    EXPECT_FALSE(stopped.called.try_acquire_for(milliseconds(700)));
    for (const bool closes : {false, true}) {
        Calls calls;
        calls.closes = closes;
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(calls.Start(), 0);
        EXPECT_TRUE(calls.called.try_acquire_for(std::chrono::seconds(20)));
        EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(500));
        if (!closes) UninitializeDriverPath(calls.driver);
        // The call ends a moment before its thread does.
        std::this_thread::sleep_for(milliseconds(50));
        EXPECT_EQ(calls.count, 1);
    }
}

TEST_F(Exports, ALibraryThatCannotBeOpenedGivesNoHandle) {
    LibraryDriver *driver = driver_;
    std::filesystem::remove_all(place_.add_folder);
    EXPECT_EQ(InitializeDriverPath(nullptr, nullptr, 0, &driver), -1);
    EXPECT_TRUE(
        log_.Has("[iTunes] Can't find \"Automatically Add to iTunes\" folder under iTunes Media Folder"));
    std::filesystem::remove(place_.library_xml);
    EXPECT_EQ(InitializeDriverPath(nullptr, nullptr, 0, &driver), -999);
    EXPECT_EQ(driver, driver_);
    EXPECT_TRUE(log_.Has("[iTunes] Open iTunes Library XML file failed."));
    EXPECT_EQ(log_.Last(), "Create iTunes library failed");
}

TEST_F(Exports, ACopiedFileShowsInTheTreeWhenTheBatchEnds) {
    const std::string film = M4vFile(1, {"Copied", "", "", "", 0, 0});
    const std::string path = folder_.Write("copied.m4v", film).string();
    CopySourceInfo source = {};
    source.source_type = 1;
    source.source_path = path.c_str();
    source.source_size = static_cast<int64_t>(film.size());
    EXPECT_EQ(StartPathCopy(driver_, 0, nullptr, nullptr, 4096), 0);
    EXPECT_EQ(CopyDriverPath(driver_, 0, "library/movie", &source), 0);
    EXPECT_EQ(FinishPathCopy(driver_, 0), 0);
    EXPECT_EQ(
        StreamBytes(driver_, "library/movie/" + OpenedPath(driver_, "library/movie").Names().back(), 1000),
        film);
}

}  // namespace
