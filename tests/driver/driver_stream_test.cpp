#include "driver/driver_stream.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "driver/attributes.h"
#include "driver/itunes_driver.h"
#include "tests/driver/open_library.h"
#include "tests/driver/tree_fixture.h"
#include "tests/support/collected_log.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr int64_t kFar = std::numeric_limits<int64_t>::max();

// A file of 2000 bytes whose middle is a thumbnail of 500 bytes.
class ThumbnailStream : public testing::Test {
  protected:
    void SetUp() override {
        for (int i = 0; i < 2000; ++i)
            bytes_ += static_cast<char>('a' + i % 23);
        DriverPath *thumbnail = CreateDriverPath(&tree_.driver, node_kind::kFile, 4, 44);
        AddAttribute(thumbnail, "location", folder_.Write("cache.itc", bytes_).c_str());
        AddAttribute(thumbnail, "st_size", "500");
        thumbnail->thumb_offset = 1000;
        AppendChild(GetLibraryRoot(&tree_.driver), "small", thumbnail);
        ASSERT_EQ(OpenDriverStream(&tree_.driver, 0, "library/small", &stream_), 0);
    }
    void TearDown() override { CloseDriverStream(stream_); }

    std::string Read(int32_t count) {
        std::string piece(static_cast<size_t>(count), '\0');
        piece.resize(static_cast<size_t>(ReadDriverStream(stream_, piece.data(), count)));
        return piece;
    }

    TempFolder folder_;
    CollectedLog log_;
    BareTree tree_;
    std::string bytes_;
    DriverStream *stream_ = nullptr;
};

TEST_F(ThumbnailStream, ReadsItsOwnBytesAndNoMore) {
    EXPECT_EQ(Read(300), bytes_.substr(1000, 300));
    EXPECT_EQ(Read(300), bytes_.substr(1300, 200));
    EXPECT_EQ(Read(300), "");
    EXPECT_EQ(StreamBytes(&tree_.driver, "library/small", 7), bytes_.substr(1000, 500));
}

TEST_F(ThumbnailStream, SeeksFromTheStartUpToItsEnd) {
    EXPECT_EQ(SeekDriverStream(stream_, 500, 0), 0);
    EXPECT_EQ(Read(1), "");
    EXPECT_EQ(SeekDriverStream(stream_, 499, 0), 0);
    EXPECT_EQ(Read(9), bytes_.substr(1499, 1));
    for (const int64_t beyond : {int64_t{501}, kFar}) {
        EXPECT_EQ(SeekDriverStream(stream_, beyond, 0), -1);
        EXPECT_EQ(log_.Last(), "Seek operation out of thumb size = 500");
    }
    // There is no lower limit from the start: the bytes in front of the thumbnail are reached.
    EXPECT_EQ(SeekDriverStream(stream_, -10, 0), 0);
    EXPECT_EQ(Read(20), bytes_.substr(990, 20));
}

TEST_F(ThumbnailStream, SeeksFromWhereItIsWithinItsRange) {
    ASSERT_EQ(SeekDriverStream(stream_, 100, 0), 0);
    for (const int64_t outside : {int64_t{401}, int64_t{-101}, kFar, -kFar}) {
        EXPECT_EQ(SeekDriverStream(stream_, outside, 1), -1);
        EXPECT_EQ(log_.Last(), "Seek operation out of thumb range: cur = 1100, offset = 1000 and size 500");
    }
    EXPECT_EQ(SeekDriverStream(stream_, -100, 1), 0);
    EXPECT_EQ(Read(3), bytes_.substr(1000, 3));
    EXPECT_EQ(SeekDriverStream(stream_, 497, 1), 0);
    EXPECT_EQ(Read(3), "");
}

TEST_F(ThumbnailStream, SeeksFromItsEndBackToItsStart) {
    EXPECT_EQ(SeekDriverStream(stream_, -500, 2), 0);
    EXPECT_EQ(Read(3), bytes_.substr(1000, 3));
    for (const int64_t outside : {int64_t{1}, int64_t{-501}, kFar, -kFar}) {
        EXPECT_EQ(SeekDriverStream(stream_, outside, 2), -1);
        EXPECT_EQ(log_.Last(), "Seek operation out of thumb size = 500");
    }
    EXPECT_EQ(Read(3), bytes_.substr(1003, 3)) << "a refused seek leaves the position alone";
    EXPECT_EQ(SeekDriverStream(stream_, 0, 9), 0) << "the file refuses an unknown origin, and nobody says so";
    EXPECT_EQ(Read(3), bytes_.substr(1006, 3));
}

// Nodes whose data is no plain file: an application's icon, and a book that is a folder.
class FetchedStream : public testing::Test {
  protected:
    DriverPath *AddNode(const std::string &name, const std::string &location) {
        DriverPath *node = CreateDriverPath(&tree_.driver, node_kind::kFile, 4, 44);
        AddAttribute(node, "location", location.c_str());
        AppendChild(GetLibraryRoot(&tree_.driver), name.c_str(), node);
        return node;
    }

    TempFolder folder_;
    ScopedEnvironment temp_{"TEMP", folder_.path().string()};
    CollectedLog log_;
    BareTree tree_;
};

TEST_F(FetchedStream, AnIconThatIsCachedIsServedFromThereAndSetsTheSize) {
    folder_.Write("Game.ipa.jpg", "picture");
    DriverPath *icon = AddNode("icon", folder_.path().string() + "\\apps\\Game.ipa");
    AddAttribute(icon, "is_ipa", "TRUE");
    AddAttribute(icon, "icon_image", "no scheme that could be fetched");
    AddAttribute(icon, "st_size", "1");
    EXPECT_EQ(StreamBytes(&tree_.driver, "library/icon", 100), "picture");
    EXPECT_EQ(FindAttribute(icon, "st_size"), "7");
}

TEST_F(FetchedStream, WithoutAnIconTheApplicationItselfIsServed) {
    folder_.Write("apps/Game.ipa", "no archive");
    for (const char *is_artwork : {"true", "false"}) {
        const std::string name = std::string("icon ") + is_artwork;
        DriverPath *icon = AddNode(name, folder_.path().string() + "\\apps\\Game.ipa");
        AddAttribute(icon, "is_ipa", "true");
        AddAttribute(icon, "icon_image", "file:///etc/hostname");
        AddAttribute(icon, "is_artwork", is_artwork);
        AddAttribute(icon, "st_size", "1");
        EXPECT_EQ(StreamBytes(&tree_.driver, "library/" + name, 100), "no archive");
        EXPECT_EQ(FindAttribute(icon, "st_size"), "1");
    }
    EXPECT_FALSE(std::filesystem::exists(folder_.path() / "Game.ipa.jpg"));
}

TEST_F(FetchedStream, AFolderComesAsAnArchiveThatIsBuiltAnew) {
    folder_.Write("books/A.epub/mimetype", "application/epub+zip");
    DriverPath *book = AddNode("book", folder_.path().string() + "\\books\\A.epub");
    AddAttribute(book, "is_directory", "true");
    const std::string first = StreamBytes(&tree_.driver, "library/book", 100).value_or("");
    EXPECT_TRUE(first.starts_with("PK"));
    EXPECT_NE(first.find("mimetype"), std::string::npos);
    folder_.Write("books/A.epub/more", "text");
    const std::string second = StreamBytes(&tree_.driver, "library/book", 100).value_or("");
    EXPECT_NE(second.find("more"), std::string::npos);
    std::filesystem::remove_all(folder_.path() / "books");
    DriverStream *stream = nullptr;
    EXPECT_EQ(OpenDriverStream(&tree_.driver, 0, "library/book", &stream), -2);
}

TEST_F(FetchedStream, AFolderOrADeviceIsNoFileToStream) {
    AddNode("folder", folder_.path().string());
    AddNode("endless", "/dev/zero");
    AddNode("nowhere", "");
    DriverStream *stream = nullptr;
    for (const char *path : {"library/folder", "library/endless", "library/nowhere"}) {
        EXPECT_EQ(OpenDriverStream(&tree_.driver, 0, path, &stream), -1) << path;
    }
}

}  // namespace
