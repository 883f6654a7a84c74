#include "driver/text_index.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(TextIndex, KeepsTheFirstPositionEvenWhenEveryHashCollides) {
    const std::vector<std::string> texts{"a", "b", "a", "", "b", "c"};
    for (const bool collide : {false, true}) {
        TextIndex index;
        const auto hash = [=](const std::string &text) { return collide ? 7u : HashOf(text); };
        for (uint32_t i = 0; i < texts.size(); ++i) {
            const bool first =
                index.Add(hash(texts[i]), i, [&](uint32_t at) { return texts[at] == texts[i]; });
            EXPECT_EQ(first, i != 2 && i != 4);
        }
        const auto find = [&](const std::string &text) {
            return index.Find(hash(text), [&](uint32_t at) { return texts[at] == text; });
        };
        EXPECT_EQ(find("a"), 0u);
        EXPECT_EQ(find("b"), 1u);
        EXPECT_EQ(find(""), 3u);
        EXPECT_EQ(find("d"), std::nullopt);
    }
}

TEST(HashOfFolded, TellsTextsApartThatDifferInMoreThanTheCaseOfLetters) {
    for (int byte = 0; byte < 256; ++byte) {
        for (int other = 0; other < 256; ++other) {
            // At every place of a word, with neighbours that must not carry into it.
            for (const size_t at : {0u, 3u, 7u, 9u}) {
                std::string one = "zZaA[@\xFF\x7Fzz";
                std::string two = one;
                one[at] = static_cast<char>(byte);
                two[at] = static_cast<char>(other);
                ASSERT_EQ(HashOfFolded(one) == HashOfFolded(two), EqualFolded(one, two))
                    << byte << " and " << other << " at " << at;
            }
        }
    }
}

}  // namespace
