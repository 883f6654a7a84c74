// The same library from both of its files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "library/track_import.h"
#include "library/track_keys.h"
#include "tests/library/loaded_library.h"
#include "tests/support/generated_library.h"

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

constexpr int64_t kFrom1904To1970 = 2082844800;

// Who wrote the files: iTunes has local time in the .itl file.
enum class Writer { kOurs, kITunes };

bool SameDate(const std::string &xml, const std::string &itl, Writer writer) {
    const int64_t shift = std::stoll(itl) - kFrom1904To1970 - std::stoll(xml);
    constexpr int64_t kQuarter = 15 * 60;
    constexpr int64_t kLargestShift = 14 * 3600;
    return writer == Writer::kOurs ? shift == 0 : shift % kQuarter == 0 && std::abs(shift) <= kLargestShift;
}

class Comparison {
  public:
    Comparison(const std::string &xml, const std::string &itl, Writer writer)
        : xml_("xml", xml), itl_("itl", itl), writer_(writer) {
        EXPECT_EQ(xml_.result, 0);
        EXPECT_EQ(itl_.result, 0);
        EXPECT_NE(itl_.driver.parser, nullptr);
        EXPECT_EQ(FindAttribute(itl_.driver.root, "persistent_id"),
                  FindAttribute(xml_.driver.root, "persistent_id"));
    }

    // Of all tracks, a line for each that is not the same.
    std::vector<std::string> TrackDifferences() {
        std::vector<std::string> differences;
        const int32_t count = GetVelmarArraySize(xml_.driver.tracks);
        if (count != TrackCount()) differences.push_back("counts differ");
        for (int32_t i = 0; i < count; ++i) {
            void *item = nullptr;
            GetVelmarArrayItem(xml_.driver.tracks, i, &item);
            const auto *track = static_cast<const DriverPath *>(item);
            const std::string id(*FindAttribute(track, "id"));
            const DriverPath *other = FindTrackById(&itl_.driver, id.c_str());
            if (other == nullptr) {
                differences.push_back(id + " is missing");
                continue;
            }
            for (const size_t row : kParserTrackRows) {
                const std::string field = TrackKeyTable[row].attribute;
                const std::string xml = Value(track, field), itl = Value(other, field);
                if (!Same(field, xml, itl)) differences.push_back(id + " " + field + " " + xml + " " + itl);
            }
        }
        return differences;
    }

    // Lists of the XML that the .itl file does not give with the same tracks.
    std::vector<std::string> ListDifferences() {
        std::vector<std::string> differences;
        for (const std::string root : {"library", "genius", "playlist"}) {
            for (const std::string &name : xml_.NamesUnder(root)) {
                const std::string path = root + "/" + name;
                // Roots that scans of folders make have no id.
                if (FindAttribute(xml_.At(path), "persistent_id") && !SameList(path))
                    differences.push_back(path);
            }
        }
        return differences;
    }

    int32_t TrackCount() const { return GetVelmarArraySize(itl_.driver.tracks); }

  private:
    // iTunes writes some lists to the XML in the order of the column by which it shows them.
    bool SameList(const std::string &path) {
        auto xml = xml_.NamesUnder(path), itl = itl_.NamesUnder(path);
        if (writer_ == Writer::kITunes) {
            std::sort(xml.begin(), xml.end());
            std::sort(itl.begin(), itl.end());
        }
        return itl_.At(path) != nullptr && xml == itl;
    }

    // Where the XML has no key, the .itl file has nothing either, which is 0 or an empty text.
    static std::string Value(const DriverPath *track, const std::string &field) {
        const std::string value(FindAttribute(track, field.c_str()).value_or(""));
        return value == "0" ? "" : value;
    }
    bool Same(const std::string &field, const std::string &xml, const std::string &itl) const {
        if (field == "st_mtime" && !xml.empty() && !itl.empty()) return SameDate(xml, itl, writer_);
        return xml == itl;
    }

    LoadedLibrary xml_;
    LoadedLibrary itl_;
    Writer writer_;
};

TEST(ItlComparison, AGeneratedLibraryIsTheSame) {
    const TempFolder folder;
    const auto generated = [&folder](const char *name) {
        GenerateLibrary(folder.path() / name, {.tracks = 700, .lists = 5, .items = 40, .seed = 5});
        return ReadWholeFile(folder.path() / name);
    };
    Comparison comparison(generated("l.xml"), generated("l.itl"), Writer::kOurs);
    EXPECT_EQ(comparison.TrackCount(), 700);
    EXPECT_THAT(comparison.TrackDifferences(), IsEmpty());
    // iTunes hides the list of all tracks in the .itl file by its name.
    EXPECT_THAT(comparison.ListDifferences(), testing::ElementsAre("playlist/Library"));
}

class ItlSamples : public testing::TestWithParam<const char *> {};

TEST_P(ItlSamples, AreTheSameAsTheirXml) {
    const fs::path samples(SAMPLES_FOLDER);
    const fs::path xml = samples / "itunes-xml" / GetParam() / "iTunes Music Library.xml";
    const fs::path itl = samples / "itl" / GetParam() / "iTunes Library.itl";
    if (!fs::exists(xml) || !fs::exists(itl)) GTEST_SKIP() << "no sample";
    Comparison comparison(ReadWholeFile(xml), ReadWholeFile(itl), Writer::kITunes);
    EXPECT_THAT(comparison.TrackDifferences(), IsEmpty());
    EXPECT_THAT(comparison.ListDifferences(), testing::ElementsAre("playlist/Library"));
}

INSTANTIATE_TEST_SUITE_P(Libraries, ItlSamples,
                         testing::Values("nzoschke-62cde0d-empty", "nzoschke-2e74c4c-14tracks",
                                         "nzoschke-c0d7855-769tracks"),
                         [](const auto &param_info) { return std::to_string(param_info.index); });

}  // namespace
