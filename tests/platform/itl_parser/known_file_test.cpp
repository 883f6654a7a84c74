// Files that the writer of the tests has not made.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/platform/itl_parser/known_file.h"
#include "tests/platform/itl_parser/parsed_library.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(KnownItlFile, GivesWhatItIsKnownToHold) {
    const ParsedLibrary library(KnownItlFile());
    std::string text = Describe(library);
    ASSERT_TRUE(library.valid);
    EXPECT_FALSE(library.content.playlists[1]->smart_text.empty());
    library.content.playlists[1]->smart_text = "...";
    EXPECT_EQ(Describe(library),
              "12.9.4.102 A1B2C3D4E5F60718\n"
              "101|Café|Blue|東京|Rock|MPEG audio file|3422000000|4000000|180000|256|44100|80|"
              "file://localhost/C:/Music/Caf%C3%A9.mp3|1122334455667788|3\n"
              "####!####||901|0: 101\nMusic|...|902|4: 101\n");
}

TEST(ItlSamples, AllAreValid) {
    const fs::path folder = fs::path(SAMPLES_FOLDER) / "itl";
    if (!fs::exists(folder)) GTEST_SKIP() << "no samples";
    int files = 0;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".itl") continue;
        ++files;
        const ParsedLibrary library(ReadWholeFile(entry.path()));
        EXPECT_TRUE(library.valid) << entry.path();
        EXPECT_FALSE(library.content.playlists.empty()) << entry.path();
        for (const Track *track : library.content.tracks) {
            EXPECT_GT(track->id, 0);
            // The subscription of a podcast may have no name.
            EXPECT_FALSE(track->name.empty() && track->location.empty()) << entry.path() << track->id;
            EXPECT_EQ(track->persistent_id.size(), 16u);
        }
    }
    EXPECT_GT(files, 0);
}

}  // namespace
