// Lookups over the tree, each against the walk that it stands for, and the life time of nodes.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "driver/path_lookup.h"
#include "driver/text_index.h"
#include "tests/driver/tree_fixture.h"

namespace {

DriverPath *SlowFindByPersistentId(DriverPath *path, const std::string &id) {
    if (FindAttribute(path, "persistent_id") == id) return path;
    for (int32_t i = 0; i < ChildCount(path); ++i) {
        if (DriverPath *found = SlowFindByPersistentId(ChildAt(path, i), id)) return found;
    }
    return nullptr;
}

TEST(FindChild, AgreesWithAWalkForAnyNumberOfChildrenAndRepeatedNames) {
    std::mt19937 random(11);
    const auto some_name = [&random] {
        const char *const endings[] = {"", ".mp3", ".mp3", ".audiobook"};
        return std::to_string(random() % 60) + endings[random() % 4];
    };
    BareTree tree;
    DriverPath *list = tree.AddList(GetPlaylistRoot(&tree.driver), "list", "");
    std::map<std::string, DriverPath *> first;
    for (int added = 0; added < 300; ++added) {
        const std::string new_name = some_name();
        first.try_emplace(new_name, tree.AddList(list, new_name, ""));
        for (int probe = 0; probe < 8; ++probe) {
            const std::string name = some_name();
            const auto found = first.find(name);
            ASSERT_EQ(FindChild(list, name), found == first.end() ? nullptr : found->second) << name;
        }
    }
    // A child without a name is passed over.
    AppendChild(list, nullptr, CreateDriverPath(&tree.driver, node_kind::kFile, 4, 44));
    EXPECT_EQ(ChildNameAt(list, 300), nullptr);
    EXPECT_EQ(FindChild(list, ""), nullptr);
}

TEST(FindPathByPersistentId, AgreesWithAWalkWhileAnyTreeGrows) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        std::mt19937 random(seed);
        const auto some_id = [&random] { return "id" + std::to_string(random() % 25); };
        const auto pick = [&random](const auto &nodes) { return nodes[random() % nodes.size()]; };
        BareTree tree;
        if (seed % 4 == 0) AddAttribute(tree.driver.root, "persistent_id", some_id().c_str());
        std::vector<DriverPath *> tracks,
            lists = {GetLibraryRoot(&tree.driver), GetPlaylistRoot(&tree.driver)};
        auto holders = lists;  // not those below a track, which could end in a circle
        for (int i = 0; i < 30; ++i)
            tracks.push_back(tree.AddTrack(std::to_string(i), random() % 3 ? some_id() : ""));
        for (int step = 0; step < 150; ++step) {
            const auto action = random() % 10;
            if (action < 4) {
                holders.push_back(tree.AddList(pick(holders), "list", random() % 4 ? some_id() : ""));
                lists.push_back(holders.back());
            } else if (action < 5) {
                lists.push_back(tree.AddList(pick(lists), "list", some_id()));
            } else if (action < 9) {
                BareTree::Hold(pick(holders), "track", pick(tracks));
            } else if (DriverPath *track = pick(tracks); track->parent != nullptr) {
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
    BareTree tree;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(FindCategoryRoot(&tree.driver, 30, 3), nullptr);
        DriverPath *last = CreateCategoryPath(&tree.driver, "root", 1, 3, 30);
        CreateCategoryPath(&tree.driver, "root", 1, 3, 31);
        EXPECT_EQ(FindCategoryRoot(&tree.driver, 3, 30), last);
    }
}

TEST(FindTrackById, AgreesWithAWalkInALibraryOfAnySize) {
    std::mt19937 random(5);
    for (int count = 0; count <= 41; ++count) {
        BareTree tree;
        if (count <= 40) tree.driver.index.track_numbers.Reserve(static_cast<size_t>(count));
        // Ids of either letter case and of plain numbers, some of them repeated; the first is the track.
        const auto some_id = [&] {
            const char *const prefixes[] = {"", "", "", "0", "-", "a", "A"};
            return prefixes[random() % 7] + std::to_string(random() % static_cast<unsigned>(10 * count + 2));
        };
        for (int step = 0; step < (count <= 40 ? count : 400); ++step) {
            tree.AddTrack(count % 2 == 0 ? std::to_string(step) : some_id(), "");
            for (int probe = 0; probe < 5; ++probe) {
                const std::string id = some_id();
                ASSERT_EQ(FindTrackById(&tree.driver, id), FindById(tree.driver.tracks, id)) << id;
            }
        }
        EXPECT_EQ(FindTrackById(&tree.driver, "4711"), nullptr) << count;
    }
}

TEST(ReleaseDriverPath, ATrackInTwoListsGoesWithTheSecond) {
    BareTree tree;
    DriverPath *track = tree.AddTrack("1", "");
    // These lists hang nowhere, so that they can be released one by one.
    LoosePath lists[] = {CreateDriverPath(&tree.driver, 1, 1, 4), CreateDriverPath(&tree.driver, 1, 1, 4)};
    for (const LoosePath &list : lists)
        BareTree::Hold(list.get(), "1", track);
    lists[0].reset();
    EXPECT_EQ(track->share_count, 1);
    lists[1].reset();
    // The track is gone now, so the driver must not meet it again: the leak checker tells if it is not.
    FreeVelmarArray(tree.driver.tracks);
    AllocVelmarArray(&tree.driver.tracks);
    // Lists nested to any depth do not exhaust the stack.
    DriverPath *list = GetPlaylistRoot(&tree.driver);
    for (int depth = 0; depth < 300000; ++depth)
        list = tree.AddList(list, "x", "");
}

TEST(TextIndex, KeepsTheFirstPositionEvenWhenEveryHashCollides) {
    const std::vector<std::string> texts{"a", "b", "a", "", "b", "c"};
    for (const bool collide : {false, true}) {
        TextIndex index;
        const auto hash = [=](const std::string &text) { return collide ? 7u : HashOf(text); };
        const auto is = [&](const auto &text) { return [&](uint32_t at) { return texts[at] == text; }; };
        for (uint32_t i = 0; i < texts.size(); ++i)
            EXPECT_EQ(index.Add(hash(texts[i]), i, is(texts[i])), i != 2 && i != 4);
        for (const std::string text : {"a", "b", "", "c"})
            EXPECT_EQ(index.Find(hash(text), is(text)),
                      std::find(texts.begin(), texts.end(), text) - texts.begin());
        EXPECT_EQ(index.Find(hash("d"), is("d")), std::nullopt);
    }
}

TEST(HashOfFolded, TellsTextsApartThatDifferInMoreThanTheCaseOfLetters) {
    for (int bytes = 0; bytes < 1 << 16; ++bytes) {
        // At every place of a word, with neighbours that must not carry into it.
        for (const size_t at : {0u, 3u, 7u, 9u}) {
            std::string one = "zZaA[@\xFF\x7Fzz";
            std::string two = one;
            one[at] = static_cast<char>(bytes >> 8);
            two[at] = static_cast<char>(bytes);
            ASSERT_EQ(HashOfFolded(one) == HashOfFolded(two), EqualFolded(one, two)) << bytes << " at " << at;
        }
    }
}

}  // namespace
