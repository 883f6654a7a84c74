#include "host/added_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace velmarhost {
namespace {

using Names = std::vector<std::string>;
using Sized = std::vector<std::pair<std::string, int64_t>>;

Names FindNames(const Sized &copied, const Sized &before, const Sized &after) {
    const auto files = [](const Sized &names) {
        std::vector<WaitingFile> waiting;
        for (const auto &[name, size] : names)
            waiting.push_back({name, size, {}, {}});
        return waiting;
    };
    std::vector<CopiedFile> copies;
    for (const auto &[name, size] : copied)
        copies.push_back({name, static_cast<uint64_t>(size)});
    Names names;
    for (const std::optional<std::size_t> &index : FindCopies(copies, files(before), files(after)))
        names.push_back(index ? after.at(*index).first : "");
    return names;
}

TEST(AddedNames, SizesAndNumbersMustFit) {
    using testing::ElementsAre;
    constexpr int64_t kLarge = int64_t{1} << 32 | 0xF0000000;
    EXPECT_THAT(FindNames({{"song.mp3", 5}, {"song1.mp3", 5}}, {{"song.mp3", 1}}, {{"song11.mp3", 5}}),
                ElementsAre("", "song11.mp3"))
        << "what iTunes took is not taken for another";
    EXPECT_THAT(FindNames({{"a.mp3", 5}}, {}, {{"a.mp3", 6}, {"a.m4a", 5}, {"b.mp3", 5}}), ElementsAre(""));
    EXPECT_THAT(FindNames({{"a.mp3", kLarge}}, {}, {{"a.mp3", -0x10000000}}), ElementsAre("a.mp3"))
        << "32 bits are told";
    EXPECT_THAT(FindNames({{"Song.mp3", 5}, {"song1.mp3", 5}}, {}, {{"Song2.mp3", 5}, {"song11.mp3", 5}}),
                ElementsAre("Song2.mp3", "song11.mp3"))
        << "something that the tree does not show may have the expected name";
    EXPECT_THAT(FindNames({{"a.mp3", 5}}, {}, {{"a999999.mp3", 5}}), ElementsAre("a999999.mp3"));
    EXPECT_THAT(FindNames({{"a.mp3", 5}}, {}, {{"a1000000.mp3", 5}}), ElementsAre(""));
}

// Against a folder that names its files in the plainest way.
TEST(AddedNames, AgreesWithAFolderThatIsThere) {
    std::mt19937 random(20);  // NOLINT: the same run every time
    const Names stems = {"s", "s1", "s11", "s2", "S", "1", ""};
    for (int round = 0; round < 300; ++round) {
        std::set<std::string> folder;
        Sized before, after, copied;
        Names given;
        for (int i = 0; i < 12; ++i) {
            const std::string stem = stems[random() % stems.size()];
            const std::string folded = stem == "S" ? "s" : stem;
            std::string name = stem + ".mp3";
            for (int number = 1; !folder.insert(name == "S.mp3" ? "s.mp3" : name).second; ++number)
                name = folded + std::to_string(number) + ".mp3";
            after.emplace_back(name, 7);
            if (i < 4) {
                before.push_back(after.back());
            } else {
                copied.emplace_back(stem + ".mp3", 7);
                given.push_back(name);
            }
        }
        std::shuffle(after.begin(), after.end(), random);
        ASSERT_EQ(FindNames(copied, before, after), given) << "round " << round;
    }
}

}  // namespace
}  // namespace velmarhost
