#include "host/file_url.h"

#include <gtest/gtest.h>

namespace velmarhost {
namespace {

TEST(FileUrl, EverySpellingGivesOnePath) {
    for (const char *url : {"file://localhost/C:/My%20Music/a&#38;b.mp3", "file:///C:/My%20Music/a&amp;b.mp3",
                            "file:////C:/My Music/a%26b.mp3", "file:///C:/My%20Music/a&#x26;b.mp3"}) {
        EXPECT_EQ(DecodeFileUrl(url), "C:/My Music/a&b.mp3") << url;
    }
    EXPECT_EQ(DecodeFileUrl("file:///m/%C3%A9"), "m/é");
}

TEST(FileUrl, OtherTextsAreNone) {
    for (const char *text :
         {"", "http://host/a", "file:/a", "file://server/share/a", "file:///a%2", "file:///a%zz",
          "file:///a%00b", "file:///a&#38b", "file:///a&nbsp;b", "file:///a&#300;", "C:/a"}) {
        EXPECT_EQ(DecodeFileUrl(text), std::nullopt) << text;
    }
}

TEST(FileUrl, EveryByteSurvivesBothWays) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string path = std::string("/a/") + static_cast<char>(byte) + "b";
        const std::string url = EncodeFileUrl(path);
        EXPECT_EQ(url.find_first_of("<>&\"'"), std::string::npos) << byte;
        EXPECT_EQ(DecodeFileUrl(url), path.substr(1)) << byte;
    }
}

}  // namespace
}  // namespace velmarhost
