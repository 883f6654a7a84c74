#include "library/library_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "content/plist_values.h"
#include "fixtures/preference_file.h"
#include "tests/library/loaded_library.h"

namespace {

using testing::ElementsAre;

struct LibraryFiles : testing::Test {
    LibraryFiles() {
        folder.Write("elsewhere/My Library.xml", ListFile("<dict/>"));
        preferences.library_xml = BackslashPath(folder.path() / "elsewhere/My Library.xml");
        preferences.media_folder = "C:\\media";
        std::filesystem::remove_all(place.home / "AppData");
    }
    std::string WritePreferences() const { return preferences.WriteUnder(place.home / "AppData").string(); }
    int32_t Load() { return LoadLibraryFiles(&driver); }

    TempFolder folder;
    const LibraryPlace place = MakeLibraryPlace(folder.path());
    ScopedEnvironmentValues environment{place.environment};
    // What stands before the first backslash of the places under My Music.
    const std::string music = place.home.string() + "/Music";
    PreferenceFile preferences;
    CollectedLog log;
    LibraryDriver driver;
};

TEST_F(LibraryFiles, BothPathsComeFromThePreferences) {
    WritePreferences();
    ASSERT_EQ(Load(), 0);
    EXPECT_EQ(driver.add_folder, "C:\\media");
    EXPECT_EQ(driver.xml_path, preferences.library_xml);
    EXPECT_EQ(driver.library_folder, BackslashPath(folder.path() / "elsewhere"));
    EXPECT_EQ(driver.itl_path, music + "\\iTunes\\iTunes Library.itl");
    EXPECT_TRUE(IsDictionary(driver.library_plist.get()));
    EXPECT_EQ(driver.parser, nullptr);
    const std::string file = place.home.string() + "/AppData\\Apple Computer\\iTunes\\iTunesPrefs.xml";
    EXPECT_THAT(log.Lines(), ElementsAre("[iTunes] iTunes Preference File: " + file,
                                         "[iTunes] iTunes Music Folder: C:\\media",
                                         "[iTunes] iTunes Library XML: " + *preferences.library_xml));
    // A path without a backslash has no library folder.
    preferences.library_xml = (folder.path() / "elsewhere/My Library.xml").string();
    WritePreferences();
    ASSERT_EQ(Load(), 0);
    EXPECT_EQ(driver.library_folder, "");
}

TEST_F(LibraryFiles, WithoutUsablePreferencesTheDefaultsUnderMyMusicHold) {
    EXPECT_EQ(Load(), -999);
    EXPECT_EQ(log.Last(), "Open iTunes Library file error!");
    WriteFile(place.library_xml, ListFile("<dict/>"));
    const std::string text =
        "<key>iTunes Library XML Location:1</key><string>C:\\text, not data.xml</string>";
    const std::string user = "<dict><key>User Preferences</key>";
    for (const std::string &root :
         {std::string("<array/>"), user + "<array/></dict>", user + "<dict>" + text + "</dict></dict>"}) {
        folder.Write("home/AppData/Apple Computer/iTunes/iTunesPrefs.xml", ListFile(root));
        ASSERT_EQ(Load(), 0) << root;
        EXPECT_EQ(driver.add_folder, std::nullopt) << root;
        EXPECT_EQ(driver.library_folder, music + "\\iTunes") << root;
        const std::string before_last = log.Lines().end()[-2];
        EXPECT_EQ(before_last == "[iTunes] Open iTunes Preferences file error!", root == "<array/>");
        EXPECT_EQ(log.Last(), "Default iTunes Library XML: " + music + "\\iTunes\\iTunes Music Library.xml");
    }
    const ScopedEnvironment no_preferences("APPDATA", std::nullopt);
    EXPECT_EQ(Load(), 0);
}

TEST_F(LibraryFiles, TheFlagByteIsSetOnceAndOnlyInABlockThatReachesIt) {
    // The bytes from the flag on, the flag, whether the file is a binary one, and whether it is rewritten.
    using Case = std::tuple<size_t, char, bool, bool>;
    for (const auto &[room, flag, is_binary, is_rewritten] :
         {Case{0, 0, false, false}, {1, 0, false, true}, {500, 0, true, true}, {1, 2, false, false}}) {
        SCOPED_TRACE(room);
        preferences.block_length = kPreferenceFlagIndex + room;
        preferences.flag_byte = flag;
        const std::string path = WritePreferences();
        // A binary file comes back as XML.
        if (is_binary)
            WritePropertyListFile(path, ReadPropertyListFile(path).get(), kCFPropertyListBinaryFormat_v1_0);
        const std::string before = ReadWholeFile(path);
        ASSERT_EQ(Load(), 0);
        ASSERT_EQ(Load(), 0);
        EXPECT_EQ(driver.xml_path, preferences.library_xml);
        EXPECT_EQ(ReadWholeFile(path) != before, is_rewritten);
        EXPECT_TRUE(ReadWholeFile(path).starts_with("<?xml"));
        preferences.flag_byte = is_rewritten ? 1 : flag;
        const auto expected = preferences.WriteUnder(folder.path() / "expected").string();
        EXPECT_TRUE(CFEqual(ReadPropertyListFile(path).get(), ReadPropertyListFile(expected).get()));
    }
}

}  // namespace
