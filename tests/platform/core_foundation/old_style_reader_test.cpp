#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/value.h"
#include "platform/limits.h"
#include "tests/platform/core_foundation/list_text.h"
#include "tests/support/temp_folder.h"

namespace {

TEST(OldStyleReader, ReadsValues) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"bare_$/:.-1", "\"bare_$/:.-1\""},
        {"\"quoted 'text'\"", "\"quoted 'text'\""},
        {"'it is \"x\"'", "\"it is \\x22x\\x22\""},
        {R"("\"\\\n\t\a\q\101\U00e9\ud835\udd62\Ud800")",
         R"("\x22\x5c\x0a\x09\x07qA\xc3\xa9\xf0\x9d\x95\xa2\xef\xbf\xbd")"},
        {"<00 fF\n1a>", "<00ff1a>"},
        {"<>", "<>"},
        {"<abcd>", "<abcd>"},
        {"(a, (b), \"c\",)", "[\"a\",[\"b\"],\"c\"]"},
        {"()", "[]"},
        {"{}", "{}"},
        {"{ a = 1; \"b c\" = { d = (x); }; e = <01>; }", R"({"a":"1","b c":{"d":["x"]},"e":<01>})"},
        {"{ a = 1; a = 2 }", "{\"a\":\"2\"}"},
        {"// c\n{ a /* x */ = /**/ 1; // y = 2;\n }// end", "{\"a\":\"1\"}"},
        {"a = 1; \"b\" = \"2\"; c;", R"({"a":"1","b":"2","c":"c"})"},
        {"/* strings */\n\"only\" = \"one\";", "{\"only\":\"one\"}"},
        {"(<*I-5>, <*R0.5>, <*BY>, <*BN>, <*D2001-01-01 02:00:01 +0200>, <*I\"7\">)",
         "[i-5,r3fe0000000000000,T,F,d1000,i7]"},
    };
    for (const auto &[text, description] : cases) {
        EXPECT_EQ(DescribeBytes(text), description) << text;
        for (const bool big_endian : {false, true}) {
            EXPECT_EQ(DescribeBytes(Utf16(text, big_endian)), description) << text;
            EXPECT_EQ(DescribeBytes((big_endian ? "\xFE\xFF" : "\xFF\xFE") + Utf16(text, big_endian)),
                      description);
        }
    }
}

TEST(OldStyleReader, RefusesDamage) {
    for (const char *text : {"{",
                             "(",
                             "}",
                             ")",
                             "{ a",
                             "{ a = ",
                             "{ a = 1",
                             "{ a = 1;",
                             "{ = 1; }",
                             "{ a 1; }",
                             "( a b )",
                             "( a",
                             "(,)",
                             "\"open",
                             "\"open\\",
                             "<0>",
                             "<0g>",
                             "<01",
                             "/* open",
                             "a b",
                             "a = 1",
                             "a = 1; b",
                             "{ a = 1; } x",
                             "<*X1>",
                             "<*>",
                             "<*I>",
                             "<*D2001-01-01>",
                             "hello world",
                             "&",
                             "// nothing but a comment"}) {
        EXPECT_EQ(DescribeBytes(text), "null") << text;
    }
}

TEST(OldStyleReader, RefusesTooDeepNesting) {
    const auto nested = [](size_t depth) { return std::string(depth, '(') + std::string(depth, ')'); };
    EXPECT_NE(DescribeBytes(nested(limits::kListDepth.value)), "null");
    EXPECT_EQ(DescribeBytes(nested(limits::kListDepth.value + 1)), "null");
    EXPECT_EQ(DescribeBytes(std::string(1'000'000, '(')), "null");
}

// Files that other programs wrote; the expectations come from reading them by eye.
TEST(OldStyleReader, ReadsSamples) {
    const std::filesystem::path folder = std::filesystem::path(SAMPLES_FOLDER) / "plist";
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no samples in " << SAMPLES_FOLDER;
    const auto describe = [&](const char *name) { return Describe(ReadFile(folder / name).get()); };
    EXPECT_EQ(describe("libplist-o1.ostep"),
              R"({"test":["1","1"],"foo":[["-1337"],["1"],["1"],["1"],[["1"],["1"],["1"],["1"],)"
              R"([["1"],["1"],["1"],["1"]]]],"more":{"a":"yo","b":[{"c":"0.25"},)"
              R"({"a":"yo","b":[{"c":"0.25"},{"a":"yo","b":[{"cd":"-0.25"}]}]}]}})");
    EXPECT_EQ(
        describe("rust-plist-ascii-animals.plist"),
        R"({"AnimalColors":{"lamb":"black","pig":"pink","worm":"pink"},)"
        R"("AnimalSmells":{"lamb":"lambish","pig":"piggish","worm":"wormy"},)"
        R"("AnimalSounds":{"Lisa":"Why is the worm talking like a lamb?","lamb":"baa","pig":"oink","worm":"baa"}})");
    EXPECT_EQ(describe("rust-plist-ascii-sample.plist"),
              R"({"KeyName1":"Value1","AnotherKeyName":"Value2",)"
              R"("Something":["ArrayItem1","ArrayItem2","ArrayItem3"],"Key4":"0.10",)"
              R"("KeyFive":{"Dictionary2Key1":"Something","AnotherKey":"Somethingelse"}})");
    const Owned strings = ReadFile(folder / "libplist-test.strings");
    ASSERT_NE(strings, nullptr);
    const auto dictionary = static_cast<CFDictionaryRef>(strings.get());
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 12);
    const void *entry = CFDictionaryGetValue(dictionary, CFSTR("ENTRY1"));
    EXPECT_STREQ(CFStringGetCStringPtr(static_cast<CFStringRef>(entry), kCFStringEncodingUTF8), "日本語");
}

}  // namespace
