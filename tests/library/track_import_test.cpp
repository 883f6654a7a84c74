#include "library/track_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "content/plist_values.h"
#include "library/track_keys.h"
#include "tests/library/loaded_library.h"
#include "tests/support/itl_file.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DriverPath *TrackOf(LoadedLibrary &library, const std::string &id) {
    return FindTrackById(&library.driver, id);
}

TEST(LoadTracks, ClassifiesByTheFirstFlagThatIsTrue) {
    const std::string yes = XmlFlag(true);
    const std::string no = XmlFlag(false);
    LoadedLibrary library([&](LibraryXml &xml) {
        xml.Track("1", {{"Podcast", yes}, {"Has Video", yes}, {"Movie", yes}});
        xml.Track("2", {{"TV Show", yes}, {"Movie", yes}});
        xml.Track("3", {{"Movie", no}, {"Has Video", yes}});
        xml.Track("4", {{"Movie", XmlText("TRUE")}});
        xml.Track("5", {{"Movie", XmlInteger(1)}, {"Podcast", no}});
        xml.Track("6", {});
    });
    const std::vector<std::vector<int32_t>> expected{{3, 9}, {3, 31}, {3, 30}, {3, 30}, {2, 20}, {2, 20}};
    for (size_t i = 0; i < expected.size(); ++i) {
        const DriverPath *track = TrackOf(library, std::to_string(i + 1));
        ASSERT_NE(track, nullptr);
        EXPECT_EQ((std::vector<int32_t>{track->category, track->subcategory}), expected[i]) << i + 1;
        EXPECT_EQ(track->track_dictionary, nullptr);
    }
    EXPECT_EQ(FindAttribute(TrackOf(library, "3"), "is_movie"), "false");
    EXPECT_EQ(FindAttribute(TrackOf(library, "6"), "location"), std::nullopt);
}

TEST(LoadTracks, OddEntriesKeepWhatTheyHave) {
    LoadedLibrary library([](LibraryXml &xml) {
        xml.Track("", {{"Name", XmlText("no id, no track")}});
        xml.Track("abc", {{"Name", XmlText("")},
                          {"Artist", "<array/>"},
                          {"Album", XmlText("kept")},
                          {"Unknown", XmlText("x")},
                          {"Album", XmlText("the later value of a key counts")}});
    });
    EXPECT_EQ(GetVelmarArraySize(library.driver.tracks), 1);
    const DriverPath *track = TrackOf(library, "ABC");
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(FindAttribute(track, "name"), std::nullopt);
    EXPECT_EQ(FindAttribute(track, "artist"), std::nullopt);
    EXPECT_EQ(FindAttribute(track, "album"), "the later value of a key counts");
    EXPECT_EQ(GetVelmarAttributeSize(track->attributes), 2);
}

TEST(LoadTracks, ATrackThatIsNoDictionaryHasItsIdAlone) {
    const TempFolder folder;
    std::filesystem::create_directories(folder.path() / "Automatically Add to iTunes");
    const auto load = [&](LibraryDriver &driver, const std::string &tracks) {
        const auto file =
            folder.Write("list.xml", std::string(kPropertyListHead) + "<dict><key>Tracks</key>" + tracks +
                                         "</dict>" + std::string(kPropertyListTail));
        driver.library_plist = ReadPropertyListFile(file.string());
        driver.add_folder = folder.path().string();
        return LoadTracks(&driver);
    };
    LibraryDriver driver;
    ASSERT_EQ(load(driver, "<dict><key>9</key><string>x</string></dict>"), 0);
    const DriverPath *track = FindTrackById(&driver, "9");
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(GetVelmarAttributeSize(track->attributes), 1);
    EXPECT_EQ(track->category, 0);
    DestroyLibrary(&driver);

    LibraryDriver other;
    ASSERT_EQ(load(other, "<array/>"), 0) << "no tracks are no failure";
    EXPECT_EQ(GetVelmarArraySize(other.tracks), 0);
    DestroyLibrary(&other);
}

std::string DescribeTracks(LoadedLibrary &library) {
    std::string text = std::to_string(library.result) + "\n";
    for (int32_t i = 0; i < GetVelmarArraySize(library.driver.tracks); ++i) {
        void *track = nullptr;
        GetVelmarArrayItem(library.driver.tracks, i, &track);
        VelmarAttribute *attributes = static_cast<DriverPath *>(track)->attributes;
        for (int32_t at = 0; at < GetVelmarAttributeSize(attributes); ++at) {
            const char *key = "";
            const char *value = "";
            GetVelmarAttributeItem(attributes, at, &key, &value);
            text += std::string(key) + "=" + value + " ";
        }
        text += FindTrackById(&library.driver, "7") == track ? "is 7\n" : "\n";
    }
    return text;
}

// Tracks of a large file are imported while it is still being read, whatever comes behind them.
TEST(LoadTracks, ALargeFileGivesTheTracksOfASmallOne) {
    std::string tracks;
    for (int i = 0; i < 600; ++i) {
        const std::string number = std::to_string(i);
        tracks += "<key>" + number + "</key><dict><key>Name</key><string>Song " + number + "</string></dict>";
    }
    const std::string all = "<key>Tracks</key><dict>" + tracks + "</dict>";
    const std::string again =
        "<key>Tracks</key><dict><key>7</key><dict><key>Name</key><string>other</string></dict>"
        "</dict>";
    for (const std::string &list : std::initializer_list<std::string>{
             all,
             "<key>Tracks</key><dict>" + tracks + "<key>a</key><string>no track</string></dict>",
             "<key>Tracks</key><dict>" + tracks + "<key>7</key><dict/></dict>",
             "<key>Tracks</key><dict><key>7</key><array/>" + tracks + "<key>x</key><dict/></dict>",
             all + again,
             again + all,
             "<key>Other</key><dict>" + all + "</dict>" + again,
             "<key>Other</key><dict>" + all + "</dict>",
             "<key>Tracks</key><array>" + std::string("<dict/></array>"),
             "<key>Tracks</key><dict/>",
             all + "<key>damaged</key>",
         }) {
        LoadedLibrary small("xml", std::string(kPropertyListHead) + "<dict>" + list + "</dict>" +
                                       std::string(kPropertyListTail));
        LoadedLibrary large("xml", std::string(kPropertyListHead) + "<!--" + std::string(2 << 20, '-') +
                                       "--><dict>" + list + "</dict>" + std::string(kPropertyListTail));
        EXPECT_EQ(DescribeTracks(large), DescribeTracks(small)) << list.substr(list.size() - 100);
        EXPECT_EQ(large.log.Lines().size(), small.log.Lines().size());
    }
}

TEST(LoadTracks, WithoutAUsableSourceItFails) {
    LibraryDriver driver;
    EXPECT_EQ(LoadTracks(nullptr), -1);
    EXPECT_EQ(LoadTracks(&driver), -1);
    driver.library_plist.reset(CFStringCreateWithCString(nullptr, "a text", kCFStringEncodingUTF8));
    EXPECT_EQ(LoadTracks(&driver), -1);
}

TEST(TrackKeys, AreFoundByTheirExactText) {
    for (size_t row = 0; row < kTrackKeyCount; ++row)
        EXPECT_EQ(FindTrackKey(TrackKeyTable[row].xml_key), row);
    for (const char *other : {"", "name", "Track ID", "Artwork Count", "Names", "Nam", "Sort Name"}) {
        EXPECT_EQ(FindTrackKey(other), std::nullopt) << other;
    }
}

std::optional<std::string> FieldText(const Track &track, size_t index, int32_t flags) {
    std::string room;
    const auto text = TrackFieldText(track, index, flags, room);
    if (!text) return std::nullopt;
    EXPECT_EQ(text->data()[text->size()], '\0');
    return std::string(*text);
}

TEST(TrackFieldText, PrintsNumbersAlwaysAndTextsUnchanged) {
    Track track;
    track.name = "A";
    track.size = 0;
    track.date_modified = -5000000000;
    track.location = "file:///C:/a%20b.mp3";
    EXPECT_EQ(FieldText(track, 0, 0), "A");
    EXPECT_EQ(FieldText(track, 5, 0), "") << "an empty text is a text here";
    EXPECT_EQ(FieldText(track, 7, 0), "0");
    EXPECT_EQ(FieldText(track, 17, 0), "0");
    EXPECT_EQ(FieldText(track, 21, 0), track.location);
    EXPECT_EQ(FieldText(track, 21, kTextIsLocation), "C:/a b.mp3");
    EXPECT_EQ(FieldText(track, 22, 0), "-5000000000");
    for (const size_t row : kParserTrackRows)
        EXPECT_NE(FieldText(track, row, 0), std::nullopt) << row;
    for (const size_t nothing : {3u, 4u, 9u, 10u, 13u, 14u, 15u, 18u, 19u, 23u, 24u, 25u, 26u, 27u, 1000u}) {
        EXPECT_EQ(FieldText(track, nothing, 0), std::nullopt) << nothing;
    }
}

TEST(TrackFieldText, AsksTheFileForASizeOfMinusOne) {
    const TempFolder folder;
    Track track;
    track.size = -1;
    std::string location = "file://localhost" + folder.Write("a b.mp3", "12345").string();
    location.replace(location.find(' '), 1, "%20");
    track.location = location;
    EXPECT_EQ(FieldText(track, 7, 0), "5");
    location += "x";
    track.location = location;
    EXPECT_EQ(FieldText(track, 7, 0), std::nullopt);
}

TEST(LoadTracks, TakesTracksOfTheOtherSourceInTheirOrderAndUnclassified) {
    ItlFile file(ItlForm12());
    file.AddTrack({.id = static_cast<std::uint32_t>(-3), .texts = {{kItlKind, "MPEG audio file"}}});
    file.AddTrack({.id = 7});
    LoadedLibrary library("itl", file.Bytes());
    ASSERT_EQ(library.result, 0);
    EXPECT_NE(library.driver.parser, nullptr);
    EXPECT_EQ(FindAttribute(library.driver.root, "persistent_id"), "A1B2C3D4E5F60718");
    EXPECT_EQ(FindAttribute(library.driver.root, "application_version"), "12.9.4.102");
    ASSERT_EQ(GetVelmarArraySize(library.driver.tracks), 2);
    const DriverPath *track = TrackOf(library, "-3");
    ASSERT_NE(track, nullptr);
    EXPECT_NE(track->parser_track, nullptr);
    EXPECT_EQ(track->category, 0);
    EXPECT_EQ(FindAttribute(track, "genre"), "");
    EXPECT_EQ(FindAttribute(track, "kind"), "MPEG audio file");
    EXPECT_EQ(FindAttribute(track, "album_artist"), std::nullopt);
    EXPECT_EQ(GetVelmarAttributeSize(track->attributes), 15);
}

}  // namespace
