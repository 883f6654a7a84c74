// Files that other programs have written.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "artwork/local_file.h"
#include "artwork/media_info.h"
#include "tests/artwork/thumb_tree.h"

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> Samples(const std::string &folder, const std::set<std::string> &extensions) {
    std::vector<fs::path> paths;
    std::error_code absent;
    for (const auto &entry : fs::recursive_directory_iterator(fs::path(SAMPLES_FOLDER) / folder, absent)) {
        if (entry.is_regular_file() && extensions.count(entry.path().extension().string()) != 0)
            paths.push_back(entry.path());
    }
    return paths;
}

std::uint32_t NumberAt(const std::string &bytes, size_t offset) {
    std::uint32_t number = 0;
    for (size_t i = offset; i < offset + 4 && i < bytes.size(); ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return number;
}

// The bytes that the driver gives for a picture against what its attributes promise.
void ExpectWholePicture(const DriverPath *image, const std::string &bytes) {
    EXPECT_EQ(ThumbTree::Text(image, "st_size"), std::to_string(bytes.size()));
    const auto width = static_cast<std::uint32_t>(std::stoul(ThumbTree::Text(image, "width")));
    const auto height = static_cast<std::uint32_t>(std::stoul(ThumbTree::Text(image, "height")));
    const std::string type = ThumbTree::Text(image, "thumb_type");
    if (type == "png") {
        EXPECT_TRUE(bytes.starts_with("\x89PNG\r\n\x1A\n"));
        EXPECT_EQ(NumberAt(bytes, 16), width);
        EXPECT_EQ(NumberAt(bytes, 20), height);
    } else {
        EXPECT_EQ(type, "bgra");
        EXPECT_EQ(bytes.size(), size_t{4} * width * height);
    }
}

TEST(ArtworkSamples, EveryPictureIsWholeAndOfTheSizeThatIsTold) {
    const auto samples = Samples("itc", {".itc", ".itc2"});
    if (samples.empty()) GTEST_SKIP() << "no samples";
    std::map<std::string, int> pictures;
    for (const fs::path &sample : samples) {
        SCOPED_TRACE(sample.string());
        ThumbTree tree;
        const DriverPath *thumb = tree.AddThumb("x", BackslashPath(sample));
        ASSERT_EQ(tree.At("library/music/x/thumb"), thumb);
        pictures[sample.filename().string().substr(0, 8)] += ChildCount(thumb);
        for (const std::string &name : ThumbTree::Names(thumb)) {
            const std::string path = "library/music/x/thumb/" + name;
            ExpectWholePicture(tree.At(path), tree.StreamOf(path));
        }
    }
    // By the first letters of their names. Of the last one the format is 00 00 00 0D.
    const std::map<std::string, int> expected = {
        {"44BDE854", 9}, {"EAC95360", 2}, {"exiftool", 1}, {"java-itc", 3}, {"made-jpe", 0}};
    EXPECT_EQ(pictures, expected);
}

std::map<std::string, std::string> TagLibSays(const fs::path &file, const fs::path &picture) {
    const std::string command =
        std::string(PRINT_TAGS_PROGRAM) + " '" + file.string() + "' '" + picture.string() + "'";
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output(100000, '\0');
    output.resize(pipe ? fread(output.data(), 1, output.size(), pipe.get()) : 0);
    std::istringstream lines(output);
    std::map<std::string, std::string> values;
    for (std::string line; std::getline(lines, line);)
        values[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
    return values;
}

TEST(Mp3Samples, AgreeWithWhatTagLibSaysByItself) {
    const auto samples = Samples("id3", {".mp3"});
    if (samples.empty()) GTEST_SKIP() << "no samples";
    const ScopedEnvironment locale("LC_ALL", "en_US.UTF-8");
    size_t pictures = 0;
    for (const fs::path &sample : samples) {
        SCOPED_TRACE(sample.string());
        ThumbTree tree;
        ASSERT_EQ(ImportLocalFile(&tree.driver, BackslashPath(sample)), 0);
        const DriverPath *entry = ChildAt(tree.music, 0);
        const fs::path picture = tree.files.path() / "picture";
        auto expected = TagLibSays(sample, picture);
        expected.try_emplace("name", sample.stem().string());
        for (const char *key : {"name", "artist", "album", "comments", "genre", "year", "track", "duration",
                                "media_has_thumb"}) {
            // MediaInfo tells the length of files that TagLib cannot tell of.
            if (std::string_view(key) == "duration" && expected.count(key) == 0) continue;
            const auto value = expected.find(key);
            EXPECT_EQ(ThumbTree::Text(entry, key), value == expected.end() ? "(none)" : value->second) << key;
        }
        const std::string thumbnail = "library/music/5000000.mp3/thumb/small";
        const bool has_picture = fs::exists(picture);
        EXPECT_EQ(tree.StreamOf(thumbnail), has_picture ? ReadWholeFile(picture) : "(does not open)");
        pictures += has_picture ? 1 : 0;
    }
    EXPECT_EQ(pictures, 4U);
}

}  // namespace
