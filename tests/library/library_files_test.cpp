#include "library/library_files.h"

#include <gtest/gtest.h>

#include <string>

#include "content/plist_values.h"
#include "tests/support/collected_log.h"
#include "tests/support/library_xml.h"
#include "tests/support/preference_file.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr size_t kShortestFlagged = kPreferenceFlagIndex + 1;

class LibraryFiles : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(folder_.path() / "Music" / "iTunes");
        folder_.Write("elsewhere/My Library.xml", EmptyList());
    }

    static std::string EmptyList() {
        return std::string(kPropertyListHead) + "<dict></dict>" + std::string(kPropertyListTail);
    }
    std::string Backslashed(const std::string &name) const { return BackslashPath(folder_.path() / name); }
    int32_t Load() { return LoadLibraryFiles(&driver_); }

    TempFolder folder_;
    ScopedEnvironment app_data_{"APPDATA", folder_.path() / "AppData"};
    ScopedEnvironment home_{"HOME", folder_.path()};
    ScopedEnvironment config_{"XDG_CONFIG_HOME", std::nullopt};
    ScopedEnvironment music_{"XDG_MUSIC_DIR", std::nullopt};
    CollectedLog log_;
    LibraryDriver driver_;
};

TEST_F(LibraryFiles, TakesBothPathsFromThePreferences) {
    PreferenceFile preferences;
    preferences.media_folder = Backslashed("media");
    preferences.library_xml = Backslashed("elsewhere/My Library.xml");
    const std::string path = preferences.WriteUnder(folder_.path() / "AppData");
    ASSERT_EQ(Load(), 0);
    EXPECT_EQ(driver_.add_folder, preferences.media_folder);
    EXPECT_EQ(driver_.xml_path, preferences.library_xml);
    EXPECT_EQ(driver_.library_folder, Backslashed("elsewhere"));
    EXPECT_EQ(driver_.itl_path, (folder_.path() / "Music").string() + "\\iTunes\\iTunes Library.itl");
    EXPECT_TRUE(IsDictionary(driver_.library_plist.get()));
    EXPECT_EQ(driver_.parser, nullptr);
    const auto lines = log_.Lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "[iTunes] iTunes Preference File: " + (folder_.path() / "AppData").string() +
                            "\\Apple Computer\\iTunes\\iTunesPrefs.xml");
    EXPECT_EQ(lines[1], "[iTunes] iTunes Music Folder: " + *preferences.media_folder);
    EXPECT_EQ(lines[2], "[iTunes] iTunes Library XML: " + *preferences.library_xml);
}

TEST_F(LibraryFiles, WithoutPreferencesTheDefaultsUnderMyMusicHold) {
    folder_.Write("Music/iTunes/iTunes Music Library.xml", EmptyList());
    ASSERT_EQ(Load(), 0);
    EXPECT_EQ(driver_.add_folder, std::nullopt);
    EXPECT_EQ(driver_.library_folder, (folder_.path() / "Music").string() + "\\iTunes");
    EXPECT_TRUE(log_.Has("[iTunes] Open iTunes Preferences file error!"));
    EXPECT_EQ(log_.Last(), "Default iTunes Library XML: " + driver_.xml_path);
}

TEST_F(LibraryFiles, PreferencesOfAnotherShapeAreNoPreferences) {
    folder_.Write("Music/iTunes/iTunes Music Library.xml", EmptyList());
    for (const char *root : {"<array/>", "<dict><key>User Preferences</key><array/></dict>",
                             "<dict><key>User Preferences</key><dict><key>iTunes Library XML Location:1</key>"
                             "<string>C:\\text, not data.xml</string></dict></dict>"}) {
        folder_.Write("AppData/Apple Computer/iTunes/iTunesPrefs.xml",
                      std::string(kPropertyListHead) + root + std::string(kPropertyListTail));
        ASSERT_EQ(Load(), 0) << root;
        EXPECT_EQ(driver_.add_folder, std::nullopt) << root;
        EXPECT_TRUE(driver_.xml_path.ends_with("iTunes Music Library.xml")) << root;
    }
}

TEST_F(LibraryFiles, APathWithoutABackslashHasNoLibraryFolder) {
    PreferenceFile preferences;
    preferences.library_xml = (folder_.path() / "elsewhere/My Library.xml").string();
    preferences.WriteUnder(folder_.path() / "AppData");
    ASSERT_EQ(Load(), 0);
    EXPECT_EQ(driver_.library_folder, "");
}

TEST_F(LibraryFiles, NeitherLibraryFileIsAFailure) {
    EXPECT_EQ(Load(), -999);
    EXPECT_EQ(driver_.parser, nullptr);
    EXPECT_EQ(log_.Last(), "Open iTunes Library file error!");
    const ScopedEnvironment no_preferences("APPDATA", std::nullopt);
    EXPECT_EQ(Load(), -999);
}

TEST_F(LibraryFiles, TheFlagByteIsSetOnceAndOnlyInABlockThatReachesIt) {
    struct Case {
        size_t length;
        char flag;
        bool rewritten;
    };
    for (const Case &test : {Case{kShortestFlagged - 1, 0, false}, Case{kShortestFlagged, 0, true},
                             Case{kShortestFlagged + 500, 0, true}, Case{kShortestFlagged, 2, false}}) {
        PreferenceFile preferences;
        preferences.library_xml = Backslashed("elsewhere/My Library.xml");
        preferences.block_length = test.length;
        preferences.flag_byte = test.flag;
        const auto path = preferences.WriteUnder(folder_.path() / "AppData");
        const std::string before = ReadWholeFile(path);
        ASSERT_EQ(Load(), 0);
        const std::string after = ReadWholeFile(path);
        EXPECT_EQ(after != before, test.rewritten) << test.length;
        if (test.rewritten) {
            PreferenceFile flagged = preferences;
            flagged.flag_byte = 1;
            const CFOwner expected =
                ReadPropertyListFile(flagged.WriteUnder(folder_.path() / "expected").string());
            EXPECT_TRUE(CFEqual(ReadPropertyListFile(path.string()).get(), expected.get()));
        }
        ASSERT_EQ(Load(), 0);
        EXPECT_EQ(ReadWholeFile(path), after) << "a second start finds the flag set";
    }
}

TEST_F(LibraryFiles, ABinaryPreferenceFileComesBackAsXml) {
    PreferenceFile preferences;
    preferences.library_xml = Backslashed("elsewhere/My Library.xml");
    preferences.block_length = kShortestFlagged;
    preferences.flag_byte = 0;
    const std::string path = preferences.WriteUnder(folder_.path() / "AppData").string();
    ASSERT_EQ(WritePropertyListFile(path, ReadPropertyListFile(path).get(), kCFPropertyListBinaryFormat_v1_0),
              0);
    ASSERT_TRUE(ReadWholeFile(path).starts_with("bplist00"));
    ASSERT_EQ(Load(), 0);
    EXPECT_TRUE(ReadWholeFile(path).starts_with("<?xml"));
    EXPECT_EQ(driver_.xml_path, preferences.library_xml);
}

}  // namespace
