#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/platform/core_foundation/list_text.h"

namespace {

TEST(OldStyleReader, ReadsValuesInEveryEncoding) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"<array><string>&amp;x</string></array>", "[\"&x\"]"},
        {"azAZ09_$/:.-1", "\"azAZ09_$/:.-1\""},
        {"(\"quoted 'text'\", 'it is \"x\"')", R"(["quoted 'text'","it is \x22x\x22"])"},
        {R"("\"\\\n\t\a\q\101\U00e9\ud835\udd62\Ud800")",
         R"("\x22\x5c\x0a\x09\x07qA\xc3\xa9\xf0\x9d\x95\xa2\xef\xbf\xbd")"},
        {"(<00 fF\n1a>, <>)", "[<00ff1a>,<>]"},
        {"(a, (b), \"c\",)", "[\"a\",[\"b\"],\"c\"]"},
        {"({}, ())", "[{},[]]"},
        {"{ a = 1; \"b c\" = { d = (x); }; e = <01>; }", R"({"a":"1","b c":{"d":["x"]},"e":<01>})"},
        {"{ a = 1; a = 2 }", "{\"a\":\"2\"}"},
        {"// c\n{ a /* x */ = /**/ 1; // y = 2;\n }// end", "{\"a\":\"1\"}"},
        {"/* strings */ a = 1; \"b\" = \"2\"; c;", R"({"a":"1","b":"2","c":"c"})"},
        {"(<*I-5>, <*R0.5>, <*BY>, <*BN>, <*D2001-01-01 02:00:01 +0200>, <*I\"7\">)",
         "[i-5,r3fe0000000000000,T,F,d1000,i7]"},
    };
    for (const auto &[text, description] : cases) {
        EXPECT_EQ(DescribeBytes(text), description) << text;
        for (const bool big_endian : {false, true}) {
            for (const char *mark : {"", big_endian ? "\xFE\xFF" : "\xFF\xFE"})
                EXPECT_EQ(DescribeBytes(mark + Utf16(text, big_endian)), description) << text;
        }
    }
}

TEST(OldStyleReader, RefusesDamage) {
    for (const char *text : {"{", "(", "}", ")", "{ a", "{ a = ", "{ a = 1", "{ a = 1;", "{ = 1; }",
                             "{ a 1; }", "( a b )", "( a", "(,)", "{ a = 1; } x", "a b", "a = 1", "a = 1; b"})
        EXPECT_EQ(DescribeBytes(text), "null") << text;
    for (const char *text :
         {"\"open", "\"open\\", "<0>", "<0g>", "<01", "/* open", "<*X1>", "<*>", "<*I>", "<*D2001-01-01>",
          "<*D2001-01-01 00:00:00 +2500>", "&", "// nothing but a comment"})
        EXPECT_EQ(DescribeBytes(text), "null") << text;
}

}  // namespace
