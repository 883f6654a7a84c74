#include "library/track_import.h"

#include <gtest/gtest.h>

#include "content/plist_values.h"
#include "library/track_keys.h"
#include "tests/content/media_tree.h"
#include "tests/library/loaded_library.h"

namespace {

// The result, the tracks and how much was logged.
std::string Describe(const std::string &bytes) {
    LoadedLibrary library("xml", bytes);
    std::string text = std::to_string(library.Tracks().size()) + " " + std::to_string(library.result) + "\n";
    for (const DriverPath *track : library.Tracks()) {
        EXPECT_EQ(track->track_dictionary, nullptr);
        text += TreeText(track, FindTrackById(&library.driver, "7") == track ? "7" : "");
    }
    return text + std::to_string(library.log.Lines().size());
}

// Tracks of a large file are imported while it is still being read, whatever comes behind them.
TEST(LoadTracks, ALargeFileGivesTheTracksOfASmallOne) {
    const auto tracks = [](const std::string &list) { return "<key>Tracks</key><dict>" + list + "</dict>"; };
    std::string songs;
    for (int i = 0; i < 600; ++i)
        songs +=
            XmlLine({std::to_string(i), "<dict><key>Name</key>" + XmlText(std::to_string(i)) + "</dict>"}, 0);
    const std::string all = tracks(songs);
    const std::string again = tracks("<key>7</key><dict><key>Name</key><string>other</string></dict>");
    const std::string other = "<key>Other</key><dict>" + all + "</dict>";
    const std::string no_track = "<key>a</key><string>no track</string>";
    const std::pair<std::string, std::string> kCases[] = {
        {all, "600 0"},
        {tracks(songs + no_track), "601 0"},
        {tracks(songs + "<key>7</key><dict/>"), "600 0"},
        {tracks("<key>7</key><array/>" + songs + no_track), "601 0"},
        {all + again, "1 0"},
        {again + all, "600 0"},
        {other + again, "1 0"},
        {other, "0 0"},
        {"<key>Tracks</key><array><dict/></array>", "0 0"},
        {tracks(""), "0 0"},
        {all + "<key>damaged</key>", "0 -999"},
    };
    for (const auto &[list, start] : kCases) {
        const std::string comment = "<!--" + std::string(2 << 20, '-') + "-->";
        const std::string small = Describe(ListFile("<dict>" + list + "</dict>"));
        EXPECT_EQ(small.substr(0, small.find('\n')), start);
        EXPECT_EQ(Describe(ListFile(comment + "<dict>" + list + "</dict>")), small);
    }
    EXPECT_TRUE(Describe(ListFile("<array/>")).starts_with("0 -1\n"));
}

TEST(TrackFieldText, AsksTheFileForASizeOfMinusOneAndLeavesTheRestUnchanged) {
    const TempFolder folder;
    const std::string location = LocationUrl(folder.Write("a b.mp3", "12345").string());
    Track track;
    std::string room;
    track.size = -1;
    track.date_modified = -5000000000;
    EXPECT_EQ(TrackFieldText(track, RowOfAttribute("st_size"), 0, room), std::nullopt);
    track.location = location;
    EXPECT_STREQ(TrackFieldText(track, RowOfAttribute("st_size"), 0, room)->data(), "5");
    EXPECT_STREQ(TrackFieldText(track, RowOfAttribute("st_mtime"), 0, room)->data(), "-5000000000");
    EXPECT_EQ(TrackFieldText(track, RowOfAttribute("location"), 0, room), location);
    EXPECT_EQ(TrackFieldText(track, RowOfAttribute("year"), 0, room), std::nullopt);
}

}  // namespace
