#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/host/host_process.h"

namespace {

using Json = nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(Browse, TreeShowsNestedEntriesAndMarksUnreachableOnes) {
    HostProcess host;
    const HostResult result = host.Run({"tree", "playlist"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output,
              "playlist\n"
              "├── Mix\n"
              "│   ├── 10.mp3  Plain\n"
              "│   ├── 11.mp3  AC/DC - What? A \"title\"...\n"
              "│   └── 10.mp3  Plain\n"
              "├── AC/DC  [cannot be reached: its name contains \"/\"]\n"
              "├── Twice\n"
              "│   └── 10.mp3  Plain\n"
              "├── Twice  [cannot be reached: an earlier entry has the same name]\n"
              "├──   [cannot be reached: it has no name]\n"
              "└── Evil\\x1b[31m\\nName\\xff\n"
              "    └── 12.mp3  Björk - Jóga\n");
}

TEST(Browse, TreeKeepsToItsLimits) {
    HostProcess host;
    EXPECT_EQ(host.Run({"tree", "--depth", "1"}).output,
              "/\n├── library\n├── playlist\n├── many\n└── endless\n");
    EXPECT_THAT(host.Run({"tree", "library/good"}).output, Not(HasSubstr("thumb")));
    EXPECT_THAT(host.Run({"tree", "--all", "library/good"}).output, HasSubstr("        └── small\n"));
    EXPECT_EQ(host.Run({"tree", "/library/good/12.mp3/"}).output,
              "12.mp3  Björk - Jóga\n└── thumb\n    └── small\n");
}

TEST(Browse, LsShowsNamesAndColumns) {
    HostProcess host;
    EXPECT_EQ(host.Run({"ls", "library"}).output, "music/\ngood/\nart/\n");
    EXPECT_EQ(host.Run({"ls", "-l", "library/good"}).output,
              "music                 700000  2010-01-01 00:00     10.mp3  Plain\n"
              "music                      6  2010-01-01 00:00     11.mp3  AC/DC - What? A \"title\"...\n"
              "music                      6  2010-01-01 00:00     12.mp3  Björk - Jóga\n");
    EXPECT_THAT(host.Run({"ls", "-l", "--human", "library/good"}).output, HasSubstr("    700.0 kB  2010"));
}

TEST(Browse, StatTellsNumbersWordsNamesAndAttributes) {
    HostProcess host;
    const std::string text = host.Run({"stat", "library/good/12.mp3"}).output;
    EXPECT_THAT(text, HasSubstr("kind                4 (file)\n"));
    EXPECT_THAT(text, HasSubstr("subcategory         20 (music)\n"));
    EXPECT_THAT(text, HasSubstr("  artist            Björk\n"));
    EXPECT_THAT(text, HasSubstr("names (1)\n  thumb\n"));
}

TEST(Browse, JsonHasOneShapeEverywhere) {
    HostProcess host;
    const Json node = Json::parse(host.Run({"stat", "--json", "library/good/12.mp3"}).output);
    EXPECT_EQ(node["path"], "library/good/12.mp3");
    EXPECT_EQ(node["name"], "12.mp3");
    EXPECT_EQ(node["type"], "music");
    EXPECT_EQ(node["kind"], 4);
    EXPECT_EQ(node["has_thumbnail"], false);
    EXPECT_EQ(node["attributes"]["name"], "Jóga");
    EXPECT_EQ(node["children"], Json::array({"thumb"}));

    const Json tree = Json::parse(host.Run({"tree", "--json", "playlist"}).output);
    const Json list = Json::parse(host.Run({"ls", "--json", "playlist"}).output);
    ASSERT_EQ(tree.size(), 12U);
    ASSERT_EQ(list.size(), 6U);
    EXPECT_EQ(tree[0]["depth"], 0);
    EXPECT_EQ(tree[1], list[0]);
    EXPECT_EQ(list[1]["reachable"], false);
    EXPECT_THAT(list[1]["problem"].get<std::string>(), HasSubstr("contains \"/\""));
    EXPECT_EQ(list[5]["name"], "Evil\x1b[31m\nName\xEF\xBF\xBD");
    EXPECT_EQ(Json::parse(host.Run({"ls", "--json", "many"}).output), Json::array());
}

TEST(Browse, CatWritesWholeFilesAndRanges) {
    HostProcess host;
    const std::string path = "library/music/1.mp3";
    EXPECT_EQ(host.Run({"cat", path}).output, "first song");
    EXPECT_EQ(host.Run({"cat", path, "--offset", "6"}).output, "song");
    EXPECT_EQ(host.Run({"cat", path, "--offset", "2", "--length", "3"}).output, "rst");
    EXPECT_EQ(host.Run({"cat", path, "--length", "0"}).output, "");
    EXPECT_EQ(host.Run({"cat", path, "--offset", "99"}).output, "");
    EXPECT_EQ(host.Run({"cat", "library/good/10.mp3"}).output, std::string(700000, 'p'));
}

TEST(Browse, CatExplainsWhatCannotBeRead) {
    HostProcess host;
    const auto expect_failure = [&host](const std::string &path, const std::string &words) {
        const HostResult result = host.Run({"cat", path});
        EXPECT_EQ(result.exit_code, 1) << path;
        EXPECT_THAT(result.errors, HasSubstr(words)) << path;
    };
    expect_failure("library/music", "is a folder");
    expect_failure("library/music/cloud.m4p", "has no file on this machine");
    expect_failure("library/music/gone-a.mp3", "C:/Music/gone-a.mp3");
    expect_failure("library/music/breaks.mp3", "could not be read to its end");
    EXPECT_EQ(host.Run({"cat", "library/music/breaks.mp3"}).output, "half of") << "what came is not lost";
}

TEST(Browse, UnknownPathsNameTheNearestOne) {
    HostProcess host;
    const HostResult result = host.Run({"ls", "library/musik/1.mp3"});
    EXPECT_EQ(result.exit_code, 4);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(
        result.errors,
        "velmarhost: no such path in the library: \"library/musik/1.mp3\". Did you mean \"library/music\"? "
        "See: velmarhost ls \"library\"\n");
    EXPECT_EQ(host.Run({"tree", "playlist/AC/DC"}).exit_code, 4) << "no walk into a name with a separator";
}

TEST(Browse, WrongCommandLinesAreUsageErrors) {
    HostProcess host;
    for (const std::vector<std::string> &arguments : {std::vector<std::string>{},
                                                      {"dance"},
                                                      {"ls", "--depth", "3"},
                                                      {"tree", "--depth", "-1"},
                                                      {"stat"},
                                                      {"get", "library"},
                                                      {"cat", "x", "--offset", "-1"},
                                                      {"--color", "blue", "ls"},
                                                      {"--media", "/", "ls"},
                                                      {"ls", "a", "b"}}) {
        const HostResult result = host.Run(arguments);
        EXPECT_EQ(result.exit_code, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(result.errors, StartsWith("velmarhost: ")) << testing::PrintToString(arguments);
        EXPECT_EQ(result.output, "") << testing::PrintToString(arguments);
    }
    const HostResult help = host.Run({"--help"});
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_THAT(help.output, HasSubstr("Exit codes:"));
}

TEST(Browse, LogIsShownOnlyOnDemandAndNeverDrivesTheTerminal) {
    HostProcess host;
    EXPECT_EQ(host.Run({"ls", "library"}).errors, "");
    EXPECT_EQ(host.Run({"-v", "ls", "library"}).errors, "[fake] starting\n");
    EXPECT_EQ(host.Run({"ls", "-v", "library"}).errors, "[fake] starting\n");
    host.Set("FAKE_DRIVER_RESULT", "-999");
    const HostResult failed = host.Run({"ls"});
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_THAT(failed.errors, HasSubstr("-999"));
    EXPECT_THAT(failed.errors, HasSubstr("the library is bad \\x1b[31m"));
    EXPECT_THAT(failed.errors, HasSubstr("--library FILE"));
    EXPECT_EQ(host.LeftBehind(), 0U);
}

TEST(Browse, DriverThatCannotBeLoadedHasItsOwnCode) {
    HostProcess host;
    host.files().Write("text.so", "no module");
    EXPECT_EQ(host.Run({"--driver", "/nowhere/driver.so", "ls"}).exit_code, 5);
    const HostResult result = host.Run({"--driver", (host.folder() / "text.so").string(), "ls"});
    EXPECT_EQ(result.exit_code, 5);
    EXPECT_THAT(result.errors, HasSubstr("--driver FILE"));
}

TEST(Browse, LargeFoldersTakeTimeByTheirSizeOnly) {
    HostProcess host;
    host.Set("FAKE_DRIVER_FILES", "100000");
    const std::string text = host.Run({"ls", "many"}).output;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100000);
}

}  // namespace
