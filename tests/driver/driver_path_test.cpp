#include "driver/driver_path.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/driver/tree_fixture.h"

namespace {

// The walk that a lookup by name stands for.
DriverPath *SlowFindChild(const DriverPath *path, const std::string &name) {
    for (int32_t i = 0; i < GetVelmarArraySize(path->names); ++i) {
        if (name == ChildNameAt(path, i)) return ChildAt(path, i);
    }
    return nullptr;
}

TEST(FindChild, AgreesWithAWalkForAnyNumberOfChildrenAndRepeatedNames) {
    std::mt19937 random(11);
    BareTree tree;
    DriverPath *list = tree.AddList(GetPlaylistRoot(&tree.driver), "list", "");
    for (int added = 0; added < 300; ++added) {
        tree.AddList(list, std::to_string(random() % 150) + (random() % 2 == 0 ? ".mp3" : ""), "");
        for (int probe = 0; probe < 8; ++probe) {
            const std::string name = std::to_string(random() % 160) + (random() % 2 == 0 ? ".mp3" : "");
            ASSERT_EQ(FindChild(list, name), SlowFindChild(list, name)) << name << " among " << added;
        }
    }
    EXPECT_EQ(FindChild(list, ""), nullptr);
    EXPECT_EQ(FindChild(list, std::string_view("7.mp3", 0)), nullptr);
}

TEST(FindChild, AChildWithoutANameIsPassedOver) {
    BareTree tree;
    DriverPath *list = tree.AddList(GetPlaylistRoot(&tree.driver), "list", "");
    DriverPath *named = tree.AddList(list, "small", "");
    AppendChild(list, nullptr, CreateDriverPath(&tree.driver, node_kind::kFile, 4, 44));
    EXPECT_EQ(ChildCount(list), 2);
    EXPECT_EQ(FindChild(list, "small"), named);
    EXPECT_EQ(ChildNameAt(list, 1), nullptr);
}

TEST(ReleaseDriverPath, ATrackInThreeListsGoesWithTheThird) {
    BareTree tree;
    DriverPath *track = tree.AddTrack("1", "");
    DriverPath *lists[3] = {};
    for (DriverPath *&list : lists) {
        // These lists hang nowhere, so that they can be released one by one.
        list = CreateDriverPath(&tree.driver, node_kind::kFolder, 1, 4);
        BareTree::Hold(list, "1", track);
    }
    ReleaseDriverPath(lists[0]);
    ReleaseDriverPath(lists[1]);
    EXPECT_EQ(track->share_count, 1);
    ReleaseDriverPath(lists[2]);
    // The track is gone now, so the driver must not meet it again: the leak checker tells if it is not.
    FreeVelmarArray(tree.driver.tracks);
    AllocVelmarArray(&tree.driver.tracks);
}

TEST(ReleaseDriverPath, TakesListsNestedToAnyDepth) {
    BareTree tree;
    DriverPath *list = GetPlaylistRoot(&tree.driver);
    for (int depth = 0; depth < 300000; ++depth)
        list = tree.AddList(list, "x", "");
    SUCCEED() << "the end of the tree must not run out of stack";
}

TEST(CreateCategoryPath, NeedsTheLibraryRoot) {
    LibraryDriver empty;
    EXPECT_EQ(CreateCategoryPath(&empty, "movie", 1, 3, 30), nullptr);
    BareTree tree;
    DriverPath *movies = CreateCategoryPath(&tree.driver, "movie", 1, 3, 30);
    EXPECT_EQ(FindChild(GetLibraryRoot(&tree.driver), "movie"), movies);
}

}  // namespace
