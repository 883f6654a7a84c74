#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/value.h"
#include "platform/limits.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

std::string Plist(const std::string &content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
}

std::string Repeat(const std::string &text, size_t count) {
    std::string repeated;
    for (size_t i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

using Cases = std::vector<std::pair<std::string, std::string>>;

void ExpectDescriptions(const Cases &cases) {
    for (const auto &[content, description] : cases)
        EXPECT_EQ(DescribeBytes(Plist(content)), description) << content;
}

TEST(XmlReader, ReadsEveryKindOfValue) {
    ExpectDescriptions({
        {"<string>a b</string>", "\"a b\""},
        {"<integer>42</integer>", "i42"},
        {"<real>0.5</real>", "r3fe0000000000000"},
        {"<true/>", "T"},
        {"<false/>", "F"},
        {"<date>2001-01-01T00:00:01Z</date>", "d1000"},
        {"<data>AP8=</data>", "<00ff>"},
        {"<array><true/><array/></array>", "[T,[]]"},
        {"<dict><key>k</key><dict/></dict>", "{\"k\":{}}"},
    });
}

TEST(XmlReader, ReadsTextInEverySpelling) {
    ExpectDescriptions({
        {"<string/>", "\"\""},
        {"<string></string >", "\"\""},
        {"<string>&lt;&gt;&amp;&quot;&apos;</string>", "\"<>&\\x22'\""},
        {"<string>&#65;&#x42;&#xe9;&#x1D562;</string>", "\"AB\\xc3\\xa9\\xf0\\x9d\\x95\\xa2\""},
        {"<string>&#xD800;</string>", "\"\\xef\\xbf\\xbd\""},
        {"<string>a<![CDATA[<b>&amp;]]>c<!-- d -->e<?f g?>h</string>", "\"a<b>&amp;ceh\""},
        {"<string>\x01\x1f\r\n\x7f</string>", "\"\\x01\\x1f\\x0d\\x0a\\x7f\""},
        {"<string>\xff\xc3</string>", "\"\\xff\\xc3\""},
        {"<string>0123456789abcdef&amp;0123456789abcdef\xc3\xa9</string>",
         "\"0123456789abcdef&0123456789abcdef\\xc3\\xa9\""},
        {"<dict><key/><string>x</string></dict>", "{\"\":\"x\"}"},
        {"<string xml:space='a>b' lang=\"<\">x</string>", "null"},
        {"<string xml:space='a>b'>x</string>", "\"x\""},
        {"<true></true>", "T"},
    });
}

TEST(XmlReader, ReadsNumbersOfEverySize) {
    ExpectDescriptions({
        {"<integer> -7 </integer>", "i-7"},
        {"<integer>+7</integer>", "i7"},
        {"<integer>0x1F</integer>", "i31"},
        {"<integer>-0x10</integer>", "i-16"},
        {"<integer>9223372036854775807</integer>", "i9223372036854775807"},
        {"<integer>-9223372036854775808</integer>", "i-9223372036854775808"},
        {"<integer>9223372036854775808</integer>", "i9223372036854775808"},
        {"<integer>-18446744073709551616</integer>", "i-18446744073709551616"},
        {"<integer>999999999999999999999999999999999999999999</integer>", "null"},
        {"<integer></integer>", "null"},
        {"<integer>--1</integer>", "null"},
        {"<integer>1 2</integer>", "null"},
        {"<integer>0x</integer>", "null"},
        {"<integer>12a</integer>", "null"},
        {"<real>-1e3</real>", "rc08f400000000000"},
        {"<real>inf</real>", "r7ff0000000000000"},
        {"<real>-INFINITY</real>", "rfff0000000000000"},
        {"<real>nan</real>", "r7ff8000000000000"},
        {"<real>1e999</real>", "r7ff0000000000000"},
        {"<real>1e-999</real>", "r0000000000000000"},
        {"<real>1.5x</real>", "null"},
        {"<real>+-1</real>", "null"},
        {"<real/>", "null"},
    });
}

TEST(XmlReader, ReadsDatesAndData) {
    ExpectDescriptions({
        {"<date> 2000-02-29T23:59:59Z </date>", "d-26438401000"},
        {"<date>1601-01-01T00:00:00Z</date>", "d-12622780800000"},
        {"<date>2001-13-01T00:00:00Z</date>", "null"},
        {"<date>2001-01-01 00:00:00Z</date>", "null"},
        {"<date>2001-01-01T00:00:00</date>", "null"},
        {"<date/>", "null"},
        {"<data/>", "<>"},
        {"<data>\n\tAA EC\n\tAw==\n</data>", "<00010203>"},
        {"<data>AAEC Aw</data>", "<00010203>"},
        {"<data>A</data>", "null"},
        {"<data>A?==</data>", "null"},
    });
}

TEST(XmlReader, TakesTheLaterOfTwoValuesForAKey) {
    EXPECT_EQ(DescribeBytes(Plist("<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>")),
              "{\"a\":F,\"b\":T}");
    // Large dictionaries are told apart by an index.
    std::string pairs, description;
    for (int i = 0; i < 500; ++i) {
        const std::string key = "k" + std::to_string(i);
        pairs += "<key>" + key + "</key><integer>1</integer>";
        description += ",\"" + key + "\":i" + (i == 3 || i == 499 ? "2" : "1");
    }
    pairs += "<key>k3</key><integer>2</integer><key>k499</key><integer>2</integer>";
    const Owned list = ReadBytes(Plist("<dict>" + pairs + "</dict>"));
    EXPECT_EQ(Describe(list.get()), "{" + description.substr(1) + "}");
    EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(list.get())), 500);
    const void *value = CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.get()), CFSTR("k499"));
    EXPECT_EQ(Describe(value), "i2");
    EXPECT_EQ(CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.get()), CFSTR("k500")), nullptr);
}

TEST(XmlReader, TakesWhatStandsAroundTheRoot) {
    const std::string root = "<array><true/></array>";
    const std::vector<std::string> whole = {
        root,
        "\xEF\xBB\xBF" + Plist(root),
        "\n\t <plist>" + root + "</plist >\n<!-- end -->\n",
        "<!DOCTYPE plist [ <!ENTITY x \"]>\"> ]><plist>" + root + "</plist>",
        "<!-- -- -> --><?pi?>" + root + std::string(3, '\0'),
    };
    for (const std::string &text : whole)
        EXPECT_EQ(DescribeBytes(text), "[T]") << text;
    const std::vector<std::string> damaged = {
        "<plist>" + root,
        root + "</plist>",
        "<plist></plist>",
        "<plist/>",
        "<plist>" + root + root + "</plist>",
        root + root,
        root + "x",
        "<plist>x</plist>",
        "<!-- " + root,
        "<plist><plist>" + root + "</plist></plist>",
        "<?xml",
        "<!DOCTYPE plist [",
        "<!DOCTYPE plist>",
        "<plist>" + root + "</plist>x",
    };
    for (const std::string &text : damaged)
        EXPECT_EQ(DescribeBytes(text), "null") << text;
}

TEST(XmlReader, RefusesDamagedStructure) {
    for (const char *content : {"<dict><true/></dict>",
                                "<dict><key>a</key></dict>",
                                "<dict><key>a</key><key>b</key></dict>",
                                "<dict></array>",
                                "<array></dict>",
                                "<array><key>a</key></array>",
                                "<key>a</key>",
                                "<string>a",
                                "<string>a</key>",
                                "<string>a<b/></string>",
                                "<string>&unknown;</string>",
                                "<string>&amp</string>",
                                "<string>&#;</string>",
                                "<string>&#x110000;</string>",
                                "<string>&#12a;</string>",
                                "<string>a<![CDATA[b</string>",
                                "<unknown/>",
                                "<array>x</array>",
                                "<array><true/>",
                                "<true>x</true>",
                                "</array>",
                                "<strin>a</strin>",
                                "<>",
                                "<",
                                "<string"}) {
        EXPECT_EQ(DescribeBytes(Plist(content)), "null") << content;
    }
    EXPECT_EQ(DescribeBytes(""), "null");
    EXPECT_EQ(DescribeBytes(" \n"), "null");
}

TEST(XmlReader, RefusesTooDeepNesting) {
    const auto nested = [](size_t depth) { return Repeat("<array>", depth) + Repeat("</array>", depth); };
    EXPECT_NE(DescribeBytes(Plist(nested(limits::kListDepth.value))), "null");
    EXPECT_EQ(DescribeBytes(Plist(nested(limits::kListDepth.value + 1))), "null");
    EXPECT_EQ(DescribeBytes(Repeat("<array>", 1'000'000)), "null");
}

TEST(XmlReader, ReadsUtf16) {
    const std::string text = Plist("<string>&amp;x</string>");
    for (const bool big_endian : {false, true}) {
        const std::string mark = big_endian ? "\xFE\xFF" : "\xFF\xFE";
        EXPECT_EQ(DescribeBytes(Utf16(text, big_endian)), "\"&x\"");
        EXPECT_EQ(DescribeBytes(mark + Utf16(text, big_endian)), "\"&x\"");
    }
    const std::string pair_and_half = "\x35\xD8\x62\xDD" + std::string("\0\xD8", 2);
    EXPECT_EQ(DescribeBytes(Utf16("<string>", false) + pair_and_half + Utf16("</string>", false)),
              "\"\\xf0\\x9d\\x95\\xa2\\xef\\xbf\\xbd\"");
}

// The file passes through a window; wherever the window ends, the list is the same.
TEST(XmlReader, ReadsAcrossTheEndOfItsWindow) {
    const std::string record =
        "<dict><key>Name</key><string>A &amp; B</string><!-- c --><key>Data</key><data>AAEC</data>"
        "<key>Date</key><date>2001-01-01T00:00:00Z</date><key>On</key><true/><key>n</key><integer>17</"
        "integer></dict>\n";
    const std::string description = R"({"Name":"A & B","Data":<000102>,"Date":d0,"On":T,"n":i17})";
    const std::string expected = "[" + description + "," + description + "," + description + "]";
    constexpr size_t kWindow = 256 << 10;
    for (size_t shift = 0; shift < record.size(); ++shift) {
        const size_t front = kWindow - 300 + shift;
        std::string text(front, ' ');
        text.append("<array>").append(Repeat(record, 3)).append("</array>");
        ASSERT_EQ(DescribeBytes(text), expected) << shift;
    }
}

TEST(XmlReader, ReadsATextLargerThanItsWindow) {
    const std::string text = Repeat("0123456789", 300'000);
    EXPECT_EQ(DescribeBytes("<array><string>" + text + "</string><true/></array>"), "[\"" + text + "\",T]");
    EXPECT_EQ(DescribeBytes("<array><string>" + text + "&amp;</string></array>"), "[\"" + text + "&\"]");
    EXPECT_EQ(DescribeBytes("<array><string>" + text), "null");
}

}  // namespace
