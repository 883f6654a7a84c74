// The same library from both of its files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "fixtures/generated_library.h"
#include "library/track_import.h"
#include "library/track_keys.h"
#include "tests/library/loaded_library.h"

namespace {

// iTunes has local time in the .itl file, and writes some lists to the XML in the order of the column by
// which it shows them; the files of our own making agree in both.
bool IsSame(const std::string &field, std::string xml, std::string itl, bool is_ours) {
    // Where the XML has no key, the .itl file has nothing either, which is 0 or an empty text.
    if (xml == "0") xml.clear();
    if (itl == "0") itl.clear();
    if (field != "st_mtime" || xml.empty() || itl.empty()) return xml == itl;
    constexpr int64_t kFrom1904To1970 = 2082844800;
    const int64_t shift = std::stoll(itl) - kFrom1904To1970 - std::stoll(xml);
    return is_ours ? shift == 0 : shift % 900 == 0 && std::abs(shift) <= 14 * 3600;
}

// The number of tracks.
size_t Compare(const std::string &xml_bytes, const std::string &itl_bytes, bool is_ours) {
    LoadedLibrary xml("xml", xml_bytes), itl("itl", itl_bytes);
    EXPECT_EQ(xml.result, 0);
    EXPECT_EQ(itl.result, 0);
    EXPECT_EQ(FindAttribute(itl.driver.root, "persistent_id"),
              FindAttribute(xml.driver.root, "persistent_id"));
    EXPECT_EQ(xml.Tracks().size(), itl.Tracks().size());
    for (const DriverPath *track : xml.Tracks()) {
        const std::string id(*FindAttribute(track, "id"));
        const DriverPath *other = FindTrackById(&itl.driver, id);
        if (other == nullptr) return ADD_FAILURE() << id << " is missing", 0;
        for (const size_t row : kParserTrackRows) {
            const std::string field = TrackKeyTable[row].attribute;
            const std::string own(FindAttribute(track, field.c_str()).value_or(""));
            const std::string others(FindAttribute(other, field.c_str()).value_or(""));
            EXPECT_PRED4(IsSame, field, own, others, is_ours) << id;
        }
    }
    std::vector<std::string> different;
    for (const std::string root : {"library/", "genius/", "playlist/"}) {
        for (const std::string &name : xml.NamesUnder(root)) {
            // Roots that scans of folders make have no id.
            if (!FindAttribute(xml.At(root + name), "persistent_id")) continue;
            auto own = xml.NamesUnder(root + name), other = itl.NamesUnder(root + name);
            if (!is_ours) std::sort(own.begin(), own.end());
            if (!is_ours) std::sort(other.begin(), other.end());
            if (itl.At(root + name) == nullptr || own != other) different.push_back(root + name);
        }
    }
    // iTunes hides the list of all tracks in the .itl file by its name.
    EXPECT_THAT(different, testing::ElementsAre("playlist/Library"));
    return itl.Tracks().size();
}

TEST(ItlComparison, AGeneratedLibraryIsTheSame) {
    const TempFolder folder;
    const auto generated = [&folder](const char *name) {
        GenerateLibrary(folder.path() / name, {.tracks = 700, .lists = 5, .items = 40, .seed = 5});
        return ReadWholeFile(folder.path() / name);
    };
    EXPECT_EQ(Compare(generated("l.xml"), generated("l.itl"), true), 700U);
}

TEST(ItlComparison, RealLibrariesAreTheSame) {
    const std::filesystem::path samples(SAMPLES_FOLDER);
    for (const std::string name : {"62cde0d-empty", "2e74c4c-14tracks", "c0d7855-769tracks"}) {
        const auto xml = samples / "itunes-xml" / ("nzoschke-" + name) / "iTunes Music Library.xml";
        const auto itl = samples / "itl" / ("nzoschke-" + name) / "iTunes Library.itl";
        if (!exists(xml) || !exists(itl)) GTEST_SKIP() << "no sample " << name;
        Compare(ReadWholeFile(xml), ReadWholeFile(itl), false);
    }
}

}  // namespace
