#include "host/suggestion.h"

#include <gtest/gtest.h>

namespace velmarhost {
namespace {

TEST(Suggestion, ClosestNameForgivesSlips) {
    const std::vector<std::string_view> names = {"music", "movie", "podcast", "Favourites"};
    EXPECT_EQ(ClosestName("musik", names), "music");
    EXPECT_EQ(ClosestName("Music", names), "music");
    EXPECT_EQ(ClosestName("movies", names), "movie");
    EXPECT_EQ(ClosestName("favorites", names), "Favourites");
}

TEST(Suggestion, NothingIsSuggestedForOtherWords) {
    EXPECT_EQ(ClosestName("books", {"music", "movie"}), std::nullopt);
    EXPECT_EQ(ClosestName("", {"music"}), std::nullopt);
    EXPECT_EQ(ClosestName("x", {}), std::nullopt);
}

}  // namespace
}  // namespace velmarhost
