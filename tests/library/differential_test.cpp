#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "driver/itunes_driver.h"
#include "tests/library/differential_generator.h"
#include "tests/library/differential_model.h"
#include "tests/library/differential_reader.h"
#include "tests/support/generated_library.h"
#include "tests/support/library_place.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

// The tree that a host sees through the exports must be the tree that a second, slow reading of the same file
// gives.

namespace {

namespace fs = std::filesystem;

using Attributes = std::vector<std::pair<std::string, std::string>>;

Attributes AllAttributes(VelmarAttribute *container) {
    Attributes all;
    for (int32_t i = 0; i < GetVelmarAttributeSize(container); ++i) {
        const char *key = nullptr;
        const char *value = nullptr;
        GetVelmarAttributeItem(container, i, &key, &value);
        all.emplace_back(key, value);
        const char *found = nullptr;
        EXPECT_EQ(FindVelmarAttributeValue(container, key, &found), 0) << key;
        EXPECT_STREQ(found, value) << key;
    }
    return all;
}

std::vector<std::string> AllNames(VelmarArray *names) {
    std::vector<std::string> all;
    for (int32_t i = 0; i < GetVelmarArraySize(names); ++i) {
        void *name = nullptr;
        GetVelmarArrayItem(names, i, &name);
        all.emplace_back(static_cast<const char *>(name));
    }
    return all;
}

std::string Joined(std::string path, const std::string &name) {
    if (!path.empty()) path += '/';
    return path + name;
}

// A name with the separator in it, which a strange extension may bring, leads nowhere.
bool CanBeReached(const std::string &name) {
    return name.find('/') == std::string::npos;
}

// Walks the expected tree and asks the driver for each node of it.
class TreeComparison {
  public:
    explicit TreeComparison(LibraryDriver *driver) : driver_(driver) {}

    void Compare(const SlowNode &expected, const std::string &path) {
        SCOPED_TRACE("path \"" + path + "\"");
        CompareNode(expected, path);
        if (!compared_.insert(&expected).second) return;
        if (expected.kind == 4) ++tracks_;
        std::set<std::string> seen;
        for (std::size_t i = 0; i < expected.children.size(); ++i) {
            const std::string &name = expected.names[i];
            // A later child of the same name is hidden; "thumb" nodes fill themselves on the way.
            const bool reachable = seen.insert(name).second && CanBeReached(name) && name != "thumb";
            if (reachable) Compare(*expected.children[i], Joined(path, name));
        }
    }

    int tracks() const { return tracks_; }

  private:
    void CompareNode(const SlowNode &expected, const std::string &path) {
        DriverPath *node = nullptr;
        ASSERT_EQ(OpenDriverPath(driver_, 0, path.c_str(), &node), 0);
        DriverPathInfo info{};
        ASSERT_EQ(GetDriverPathInfo(node, &info), 0);
        EXPECT_EQ((std::vector{info.kind, info.category, info.subcategory}),
                  (std::vector{expected.kind, expected.category, expected.subcategory}));
        EXPECT_EQ(AllAttributes(info.attributes), expected.attributes);
        EXPECT_EQ(AllNames(info.names), expected.names);
        EXPECT_EQ(CloseDriverPath(node), 0);
    }

    LibraryDriver *driver_;
    std::set<const SlowNode *> compared_;
    int tracks_ = 0;
};

void CollectTracks(const SlowNode &node, std::set<const SlowNode *> &tracks) {
    if (node.kind == 4) tracks.insert(&node);
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        if (CanBeReached(node.names[i])) CollectTracks(*node.children[i], tracks);
    }
}

class DifferentialTest : public testing::Test {
  protected:
    DifferentialTest() {
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
        tzset();
    }
    ~DifferentialTest() override { SetVelmarLogHandler(nullptr, nullptr); }

    // The number of tracks that were compared.
    int CompareLibrary(const fs::path &library_xml) {
        const TempFolder home;
        const LibraryPlace place = MakeLibraryPlace(home.path(), PathStyle::kNative, library_xml);
        const ScopedEnvironmentValues environment(place.environment);
        LibraryDriver *driver = nullptr;
        EXPECT_EQ(InitializeDriverPath(nullptr, nullptr, 0, &driver), 0);
        if (driver == nullptr) return 0;
        const SlowNodePointer expected = BuildSlowTree(ReadSlowPropertyList(ReadWholeFile(library_xml)));
        TreeComparison comparison(driver);
        comparison.Compare(*expected, "");
        EXPECT_EQ(UninitializeDriverPath(driver), 0);

        std::set<const SlowNode *> tracks;
        CollectTracks(*expected, tracks);
        EXPECT_EQ(static_cast<std::size_t>(comparison.tracks()), tracks.size())
            << "not every track was reached";
        return comparison.tracks();
    }

    TempFolder folder_;

  private:
    // A zone with summer time, where dates of the library are off by one or two hours.
    ScopedEnvironment zone_{"TZ", "CET-1CEST,M3.5.0,M10.5.0/3"};
};

// A copy in the folder, unpacked if need be.
fs::path UnpackedCopy(const fs::path &sample, const fs::path &folder) {
    const bool packed = sample.extension() == ".gz";
    fs::path copy = folder / "library.xml";
    fs::copy_file(sample, packed ? folder / "library.xml.gz" : copy, fs::copy_options::overwrite_existing);
    fs::permissions(folder / (packed ? "library.xml.gz" : "library.xml"), fs::perms::owner_write,
                    fs::perm_options::add);
    if (packed) {
        const std::string command = "gunzip -f '" + (folder / "library.xml.gz").string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    return copy;
}

TEST_F(DifferentialTest, RealLibrariesAgreeWithASlowReading) {
    const fs::path samples = fs::path(SAMPLES_FOLDER) / "itunes-xml";
    if (!fs::is_directory(samples)) GTEST_SKIP() << "no real libraries under " << samples;
    int libraries = 0;
    int tracks = 0;
    for (const auto &entry : fs::recursive_directory_iterator(samples)) {
        if (entry.path().extension() != ".xml" && entry.path().extension() != ".gz") continue;
        SCOPED_TRACE(entry.path().filename());
        tracks += CompareLibrary(UnpackedCopy(entry.path(), folder_.path()));
        ++libraries;
    }
    EXPECT_GT(libraries, 0);
    EXPECT_GT(tracks, 0);
    RecordProperty("libraries", libraries);
    RecordProperty("tracks", tracks);
}

TEST_F(DifferentialTest, GeneratedLibraryAgreesWithASlowReading) {
    const fs::path file = folder_.path() / "generated.xml";
    GenerateLibrary(file, {.tracks = 400, .lists = 12, .items = 50, .seed = 7});
    EXPECT_EQ(CompareLibrary(file), 400);
}

TEST_F(DifferentialTest, OddLibrariesAgreeWithASlowReading) {
    int tracks = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        tracks += CompareLibrary(folder_.Write("odd.xml", GenerateOddLibrary(seed)));
        // One odd library is enough to look at.
        if (HasFailure()) return;
    }
    EXPECT_GT(tracks, 2000);
}

}  // namespace
