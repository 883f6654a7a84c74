// Streams of nodes whose data is no plain file.
#include "driver/stream_source.h"

#include <gtest/gtest.h>

#include "tests/content/media_tree.h"

namespace {

struct FetchedStream : MediaTree, testing::Test {
    // The bytes of a new node with these attributes, and its size then.
    std::string Bytes(const std::map<std::string, std::string> &attributes) {
        const std::string name = std::to_string(ChildCount(GetLibraryRoot(&driver)));
        DriverPath *node = AppendChild(GetLibraryRoot(&driver), name.c_str(),
                                       CreateDriverPath(&driver, node_kind::kFile, 4, 44));
        for (const auto &[key, value] : attributes)
            AddAttribute(node, key.c_str(), value.c_str());
        const std::string bytes = StreamOf("library/" + name);
        return bytes + ":" + std::string(FindAttribute(node, "st_size").value_or(""));
    }
};

TEST_F(FetchedStream, AnApplicationIsServedWhereNoIconOfItIsCached) {
    Write("Game.ipa", "no archive");
    std::map<std::string, std::string> attributes = {{"location", Location("Game.ipa")},
                                                     {"is_ipa", "TRUE"},
                                                     {"icon_image", "file:///etc/hostname"},
                                                     {"st_size", "1"}};
    EXPECT_EQ(Bytes(attributes), "no archive:1");
    attributes["is_artwork"] = "true";
    EXPECT_EQ(Bytes(attributes), "no archive:1");
    EXPECT_FALSE(exists(folder.path() / "temp/Game.ipa.jpg"));
    folder.Write("temp/Game.ipa.jpg", "picture");
    EXPECT_EQ(Bytes(attributes), "picture:7");
}

TEST_F(FetchedStream, AFolderComesAsAnArchiveThatIsBuiltAnew) {
    for (const std::string file : {"mimetype", "more"}) {
        Write("A.epub/" + file, "text");
        const std::string bytes = Bytes({{"location", Location("A.epub")}, {"is_directory", "true"}});
        EXPECT_TRUE(bytes.starts_with("PK"));
        EXPECT_NE(bytes.find(file), std::string::npos);
    }
    std::filesystem::remove_all(folder.path() / "media/A.epub");
    DriverStream *stream = nullptr;
    EXPECT_EQ(OpenDriverStream(&driver, 0, "library/0", &stream), -2);
    // What is not told to be a folder is none to stream, and neither is a device.
    for (const char *location : {folder.path().c_str(), "/dev/zero", ""}) {
        EXPECT_EQ(Bytes({{"location", location}}), "none:");
        EXPECT_TRUE(log.Last().ends_with("open failed")) << location;
    }
}

}  // namespace
