#include "driver/path_lookup.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/driver/tree_fixture.h"

namespace {

// The walks that the lookups stand for.

DriverPath *SlowFindByPersistentId(DriverPath *path, const std::string &id) {
    if (FindAttribute(path, "persistent_id") == id) return path;
    for (int32_t i = 0; i < ChildCount(path); ++i) {
        if (DriverPath *found = SlowFindByPersistentId(ChildAt(path, i), id)) return found;
    }
    return nullptr;
}

DriverPath *SlowFindCategory(const LibraryDriver *driver, int32_t category, int32_t subcategory) {
    const DriverPath *library = GetLibraryRoot(driver);
    for (int32_t i = ChildCount(library) - 1; i >= 0; --i) {
        DriverPath *child = ChildAt(library, i);
        if (child->category == category && child->subcategory == subcategory) return child;
    }
    return nullptr;
}

TEST(FindPathByPersistentId, AgreesWithAWalkWhileAnyTreeGrows) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        std::mt19937 random(seed);
        const auto some_id = [&random] { return "id" + std::to_string(random() % 25); };
        BareTree tree;
        if (seed % 4 == 0) AddAttribute(tree.driver.root, "persistent_id", some_id().c_str());
        std::vector<DriverPath *> lists{GetLibraryRoot(&tree.driver), GetGeniusRoot(&tree.driver),
                                        GetPlaylistRoot(&tree.driver)};
        std::vector<DriverPath *> holders = lists;  // not those below a track, which could end in a circle
        std::vector<DriverPath *> tracks;
        for (int i = 0; i < 30; ++i)
            tracks.push_back(tree.AddTrack(std::to_string(i), random() % 3 ? some_id() : ""));
        for (int step = 0; step < 150; ++step) {
            DriverPath *parent = lists[random() % lists.size()];
            const auto action = random() % 10;
            if (action < 4) {
                parent = holders[random() % holders.size()];
                lists.push_back(tree.AddList(parent, "list", random() % 4 ? some_id() : ""));
                holders.push_back(lists.back());
            } else if (action < 5) {
                lists.push_back(tree.AddList(parent, "list", some_id()));
            } else if (action < 9) {
                BareTree::Hold(holders[random() % holders.size()], "track", tracks[random() % tracks.size()]);
            } else if (DriverPath *track = tracks[random() % tracks.size()]; track->parent != nullptr) {
                // A list may name a track as its parent, if a walk finds that.
                lists.push_back(tree.AddList(track, "under a track", some_id()));
            }
            if (step < 20) continue;
            const std::string id = some_id();
            ASSERT_EQ(FindPathByPersistentId(&tree.driver, id), SlowFindByPersistentId(tree.driver.root, id))
                << "seed " << seed << ", step " << step;
        }
    }
}

TEST(FindCategoryRoot, TheLastChildWithTheNumbersWins) {
    std::mt19937 random(3);
    BareTree tree;
    for (int step = 0; step < 60; ++step) {
        CreateCategoryPath(&tree.driver, "root", 1, static_cast<int32_t>(random() % 4),
                           static_cast<int32_t>(random() % 4));
        for (int32_t category = 0; category < 4; ++category) {
            for (int32_t subcategory = 0; subcategory < 5; ++subcategory) {
                ASSERT_EQ(FindCategoryRoot(&tree.driver, category, subcategory),
                          SlowFindCategory(&tree.driver, category, subcategory));
            }
        }
    }
}

TEST(FindTrackById, EndsForAnUnknownIdInALibraryOfAnySize) {
    for (int count = 0; count <= 40; ++count) {
        BareTree tree;
        tree.driver.index.track_numbers.Reserve(static_cast<size_t>(count));
        for (int id = 1; id <= count; ++id)
            BareTree::Hold(GetLibraryRoot(&tree.driver), "", tree.AddTrack(std::to_string(id), ""));
        EXPECT_EQ(FindTrackById(&tree.driver, "4711"), nullptr) << count;
    }
}

TEST(FindTrackById, AgreesWithAWalkWhileTracksAreAdded) {
    std::mt19937 random(5);
    BareTree tree;
    for (int step = 0; step < 400; ++step) {
        // Ids of either letter case, some of them repeated; the first of them is the track.
        tree.AddTrack((random() % 2 ? "a" : "A") + std::to_string(random() % 300), "");
        for (int probe = 0; probe < 5; ++probe) {
            const std::string id = (random() % 2 ? "a" : "A") + std::to_string(random() % 310);
            ASSERT_EQ(FindTrackById(&tree.driver, id), FindById(tree.driver.tracks, id)) << id;
        }
    }
    for (int32_t i = 0; i < GetVelmarArraySize(tree.driver.tracks); ++i) {
        void *track = nullptr;
        GetVelmarArrayItem(tree.driver.tracks, i, &track);
        BareTree::Hold(GetPlaylistRoot(&tree.driver), "held", static_cast<DriverPath *>(track));
    }
}

}  // namespace
