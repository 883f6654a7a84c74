// What tree, ls, stat, cat and thumb write.
#include <nlohmann/json.hpp>

#include "fixtures/artwork_file.h"
#include "tests/host/host_test.h"

namespace {

using Json = nlohmann::json;
using namespace testing;

using Browse = HostTest;

TEST_F(Browse, CommandsWriteWhatIsThere) {
    const std::string raw = ArtworkCacheFile({200}, CachePictures::kRaw);
    const std::string wave = ReadWholeFile(place_.media_folder / "Music/Test Bench/Tones/01 440 Hertz.wav");
    for (const auto &[arguments, output] : std::vector<std::pair<std::string, std::string>>{
             {"tree --depth 1", "/\n├── library\n├── genius\n└── playlist\n"},
             {"tree 'playlist/Road Trip'",
              "Road Trip\n├── 101.mp3  The Lanterns - Rain & Thunder\n"
              "├── 102.mp3  The Lanterns - RAIN & THUNDER\n├── 104.m4a  Åsa Öberg - Fjäll och sjö\n├── Day "
              "One\n"
              "└── Day One  [cannot be reached: an earlier entry has the same name]\n"},
             {"tree /library/music/103.mp3/", "103.mp3  東京四重奏 - 夜の音\n└── thumb\n    └── small\n"},
             {"tree --all library/book",
              "book\n├── 114.pdf  E. Author - A Field Guide\n│   └── thumb\n"
              "├── 115.epub  E. Author - The Lighthouse Keeper\n│   └── thumb\n│       └── small\n"
              "├── Salt & Stars.epub  A. Nother - Salt & Stars\n│   └── thumb\n│       └── small\n"
              "└── Tide Tables.pdf  Tide Tables\n    └── thumb\n"},
             {"tree library/podcast", "podcast\n└── 113.mp3  Radio Silence - Episode 1\n"},
             {"ls playlist",
              "Library/\nAC/DC  [cannot be reached: its name contains \"/\"]\nEvil\\x1b[31m\\nName\\xff/\n"
              "Road Trip/\nRain & Sun/\n"},
             {"ls 'playlist/Road Trip/Day One'", ""},
             {"ls --json 'playlist/Road Trip/Day One'", "[]\n"},
             {"ls -l library/podcast",
              "podcast                20278  2013-05-04 10:20     113.mp3  Radio Silence - Episode 1\n"},
             {"cat library/music/105.wav", wave},
             {"cat library/music/105.wav --offset 44000", wave.substr(44000)},
             {"cat library/music/105.wav --offset 2 --length 3", "FFh"},
             {"cat library/music/105.wav --length 0", ""},
             {"cat library/music/105.wav --offset 99999", ""},
             {"thumb library/music/101.mp3 -o -", PngPicture(400)},
             {"thumb library/music/101.mp3 -o - --size middle", PngPicture(256)},
             {"thumb library/music/101.mp3/thumb -o - --size small --png", PngPicture(128)},
             {"thumb library/music/101.mp3/thumb/small -o - --size small", PngPicture(128)},
             {"thumb library/music/104.m4a -o -", raw.substr(raw.size() - 200 * 200 * 4)},
             {"thumb library/book/115.epub -o -", PngPicture(120)}}) {
        const HostResult result = Run(arguments);
        EXPECT_EQ(result.output, output) << arguments;
        EXPECT_EQ(result.errors, "") << arguments;
        EXPECT_EQ(result.exit_code, 0) << arguments;
    }
    Expect(
        {{"--help", 0, "Exit codes:"},
         {"ls -l --human library/book", 0, "627 B  -                 *  Tide Tables.pdf  Tide Tables\n"},
         {"ls -l library/music", 0, "        -  2013-05-04 10:20     108  The Lanterns - In the Cloud\n"}});
    EXPECT_EQ(Run("thumb library/music/104.m4a -o - --png").output.substr(0, 4), "\x89PNG");
    EXPECT_TRUE(std::filesystem::is_empty(place_.home / "Temp"))
        << "the driver has a temporary folder of the run's";
}

TEST_F(Browse, StatAndJsonTellAllOfANode) {
    Json node = Json::parse(Run("stat --json library/music/103.mp3").output);
    const Json list = Json::parse(Run("ls --json library/music").output);
    const Json lists = Json::parse(Run("tree --json playlist --depth 1").output);
    EXPECT_EQ(lists[0]["depth"], 0);
    EXPECT_EQ(lists[2].dump(),
              R"({"depth":1,"name":"AC/DC","path":"playlist/AC/DC",)"
              R"("problem":"cannot be reached: its name contains \"/\"","reachable":false})");
    EXPECT_EQ(lists[3]["name"], "Evil\x1b[31m\nName\xEF\xBF\xBD");
    EXPECT_EQ(node["children"], Json::array({"thumb"}));
    node.erase("children");
    node["depth"] = 1;
    EXPECT_EQ(list[2], node) << "one shape everywhere";
    EXPECT_EQ(node["attributes"]["location"],
              "C:/Music/iTunes/iTunes Media/Music/東京四重奏/静けさ/03 夜の音.mp3");
    node.erase("attributes");
    EXPECT_EQ(node.dump(),
              R"({"category":2,"depth":1,"has_thumbnail":true,"kind":4,"name":"103.mp3",)"
              R"("path":"library/music/103.mp3","reachable":true,"subcategory":20,"type":"music"})");
    EXPECT_EQ(list[0]["has_thumbnail"], true) << "of the first entry too";
    EXPECT_EQ(list[4]["has_thumbnail"], false);
    EXPECT_THAT(
        Run("stat library/music/103.mp3").output,
        AllOf(StartsWith("path                library/music/103.mp3\nkind                4 (file)\n"
                         "category            2 (audio)\nsubcategory         20 (music)\n\nattributes\n"),
              HasSubstr("\n  artist            東京四重奏\n"), EndsWith("\nnames (1)\n  thumb\n")));
}

TEST_F(Browse, ThumbTakesThePlaceOfAnOlderFile) {
    folder_.Write("cover.any", "older");
    EXPECT_EQ(Run("thumb library/music/101.mp3 -o cover.any").errors,
              "large: PNG, 400 x 400 pixels, 2.4 kB\n");
    EXPECT_EQ(ReadWholeFile(path_ + "cover.any"), PngPicture(400));
    EXPECT_EQ(Run("thumb library/music/104.m4a -o cover.any").errors,
              "middle: raw pixels \"bgra\" (--png makes a PNG of them), 200 x 200 pixels, 160.0 kB\n");
}

TEST_F(Browse, FailuresTellTheirReason) {
    folder_.Write("text.so", "no module");
    for (const char *arguments :
         {"", "dance", "ls --depth 3", "tree --depth -1", "stat", "get library", "cat x --offset -1",
          "--color blue ls", "thumb library/music/101.mp3 -o - --size huge", "ls a b"})
        Expect({{arguments, 2, "See velmarhost --help"}});
    Expect(
        {{"--media / ls", 2, "--library FILE"},
         {"--driver /nowhere/driver.so ls", 5, "/nowhere/driver.so"},
         {"--driver text.so ls", 5, "--driver FILE"},
         {"cat library/music", 1, "is a folder. See what is in it with: velmarhost ls"},
         {"cat library/music/108", 1, "has no file on this machine"},
         {"cat library/music/107.mp3", 1,
          "says that it is \"C:/Music/iTunes/iTunes Media/Music/The Lanterns/"},
         {"ls library/musik/1.mp3", 4, "no such path in the library: \"library/musik/1.mp3\". Did you mean"},
         {"ls library/musik/1.mp3", 4, " \"library/music\"? See: velmarhost ls \"library\"\n"},
         {"tree playlist/AC/DC", 4, "no such path"},
         {"ls \"$(printf 'a\\033[31m')\"", 4, "in the library: \"a\\x1b[31m\". See: velmarhost ls\n"},
         {"thumb library/music -o -", 1, "is a folder, and only files have pictures"},
         {"thumb library/music/105.wav -o -", 1, "has no picture"},
         {"thumb library/music/105.wav/thumb/small -o -", 4, "no such path"},
         {"thumb library/music/103.mp3 -o - --size large", 1, "There is: small"},
         {"thumb library/music/103.mp3/thumb/small -o - --size large", 2, "Leave --size out"},
         {"thumb library/book/114.pdf -o -", 1, "holds no picture that could be read"},
         {"thumb library/music/103.mp3 -o /nowhere/at/all", 1, "\"/nowhere/at/all\" could not be written"},
         {"thumb library/music/103.mp3 -o /dev/null", 1, "\"/dev/null\" is no file"}});
    Set("FAIL_READ", "2");
    const HostResult broken = Run("cat library/music/101.mp3");
    EXPECT_EQ(broken.exit_code, 1);
    EXPECT_THAT(broken.errors, HasSubstr("could not be read to its end"));
    EXPECT_EQ(broken.output.size(), 12274U) << "what came is not lost";
}

TEST_F(Browse, LogIsShownOnDemand) {
    const auto log = StartsWith(
        "[iTunes] iTunes Preference File: C:\\AppData\\Apple Computer\\iTunes\\iTunesPrefs.xml\n[iTunes]");
    EXPECT_THAT(Run("-v ls genius").errors, log);
    EXPECT_THAT(Run("ls -v genius").errors, log);
}

TEST_F(Browse, TerminalsGetColoursAndNoControlsOfOthers) {
    const auto coloured = HasSubstr("\x1b[1;34m");
    EXPECT_THAT(Run("ls").output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(Run("--color always ls").output, coloured);
    EXPECT_THAT(OnTerminal("ls playlist"),
                AllOf(coloured, HasSubstr("Evil\\x1b[31m"), Not(HasSubstr("\x1b[31m"))));
    EXPECT_THAT(OnTerminal("--color never ls"), AllOf(HasSubstr("genius"), Not(HasSubstr("\x1b"))));
    EXPECT_THAT(OnTerminal("ls --json playlist"),
                AllOf(HasSubstr("\\u001b[31m"), Not(HasSubstr("\xEF\xBF\xBD"))));
    for (const char *variable : {"NO_COLOR=1", "NO_COLOR= TERM=dumb"}) {
        environment_ += std::string("export ") + variable + "\n";
        EXPECT_THAT(OnTerminal("ls"), AllOf(HasSubstr("genius"), Not(HasSubstr("\x1b")))) << variable;
    }
}

}  // namespace
