#include "host/preference_file.h"

#include <gtest/gtest.h>

namespace velmarhost {
namespace {

TEST(PreferenceFile, LocationsAreUtf16DataWithBackslashes) {
    const std::string text = PreferenceFileText("/a/b", "/é🎵");
    // 5C 00 61 00 5C 00 62 00, and 5C 00 E9 00 3C D8 B5 DF.
    EXPECT_NE(text.find("<key>iTunes Library XML Location:1</key>\n\t\t<data>XABhAFwAYgA=</data>"),
              std::string::npos);
    EXPECT_NE(text.find("<key>Music Folder Location:11345</key>\n\t\t<data>XADpADzYtd8=</data>"),
              std::string::npos);
}

TEST(PreferenceFile, DataOfEveryLengthIsPadded) {
    EXPECT_NE(PreferenceFileText("a", "").find("<data>YQA=</data>"), std::string::npos);
    EXPECT_NE(PreferenceFileText("ab", "").find("<data>YQBiAA==</data>"), std::string::npos);
    EXPECT_NE(PreferenceFileText("abc", "").find("<data>YQBiAGMA</data>"), std::string::npos);
}

}  // namespace
}  // namespace velmarhost
