#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/core_foundation/text_scan.h"
#include "platform/limits.h"
#include "tests/platform/core_foundation/list_text.h"

// The portable form of the scan, beside the one that this machine runs.
#undef PLATFORM_CORE_FOUNDATION_TEXT_SCAN_H
#undef __SSE2__
namespace portable {
#include "platform/core_foundation/text_scan.h"
}

namespace {

std::string Plist(const std::string &content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
}

// One description behind the other, of elements with these contents.
std::string DescribeEach(const std::string &element, const std::vector<std::string> &contents) {
    std::string descriptions;
    for (const std::string &content : contents)
        descriptions += DescribeBytes(Plist("<" + element + ">" + content + "</" + element + ">")) + " ";
    return descriptions;
}

TEST(XmlReader, ReadsTextInEverySpelling) {
    const std::pair<const char *, const char *> cases[] = {
        {"<array><string/><string></string ><string>a b</string></array>", R"(["","","a b"])"},
        {"<string>&lt;&gt;&amp;&quot;&apos;</string>", R"("<>&\x22'")"},
        {"<string>&#65;&#x42;&#xe9;&#x1D562;&#x10FFFF;</string>",
         R"("AB\xc3\xa9\xf0\x9d\x95\xa2\xf4\x8f\xbf\xbf")"},
        {"<string>&#xD800;</string>", R"("\xef\xbf\xbd")"},
        {"<string>a<![CDATA[<b>&amp;]]>c<!-- d -->e<?f g?>h</string>", "\"a<b>&amp;ceh\""},
        {"<string>\x01\x1f\r\n\x7f\xff\xc3</string>", R"("\x01\x1f\x0d\x0a\x7f\xff\xc3")"},
        {"<dict><key/><string>x</string><key>k</key><dict/></dict>", R"({"":"x","k":{}})"},
        {"<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>", R"({"a":F,"b":T})"},
        {"<string xml:space='a>b' lang=\"<\">x</string>", "null"},
        {"<array><true></true><true xml:space='a>b'/><false/><array/></array>", "[T,T,F,[]]"},
    };
    for (const auto &[content, description] : cases)
        EXPECT_EQ(DescribeBytes(Plist(content)), description) << content;
}

TEST(XmlReader, ReadsNumbersDatesAndData) {
    EXPECT_EQ(
        DescribeEach("integer", {" -7 ", "+7", "0x1F", "-0x10", "9223372036854775807", "-9223372036854775808",
                                 "9223372036854775808", "-18446744073709551616"}),
        "i-7 i7 i31 i-16 i9223372036854775807 i-9223372036854775808 i9223372036854775808 "
        "i-18446744073709551616 ");
    EXPECT_EQ(DescribeEach("integer", {"", "--1", "1 2", "0x", "12a", std::string(42, '9')}),
              Repeat("null ", 6));
    EXPECT_EQ(DescribeEach("real",
                           {"-1e3", "0.5", "inf", "-INFINITY", "nan", "1e999", "1e-999", "", "1.5x", "+-1"}),
              "rc08f400000000000 r3fe0000000000000 r7ff0000000000000 rfff0000000000000 r7ff8000000000000 "
              "r7ff0000000000000 r0000000000000000 null null null ");
    EXPECT_EQ(DescribeEach("date", {" 2000-02-29T23:59:59Z ", "1601-01-01T00:00:00Z", "",
                                    "2001-13-01T00:00:00Z", "2001-01-01 00:00:00Z", "2001-01-01T00:00:00"}),
              "d-26438401000 d-12622780800000 null null null null ");
    EXPECT_EQ(DescribeEach("data", {"", "\n\tAA EC\n\tAw==\n", "AAEC Aw", "AP8=", "A", "A?=="}),
              "<> <00010203> <00010203> <00ff> null null ");
}

TEST(XmlReader, TakesWhatStandsAroundTheRoot) {
    const std::string root = "<array><true/></array>";
    for (const std::string &text :
         {root, "\xEF\xBB\xBF" + Plist(root), "\n\t <plist>" + root + "</plist >\n<!-- end -->\n",
          "<!DOCTYPE plist ] [ <!ENTITY x \"]>\"> ]><plist>" + root + "</plist>",
          "<!-- -- -> --><?pi?>" + root + std::string(3, '\0')})
        EXPECT_EQ(DescribeBytes(text), "[T]") << text;
    for (const std::string &text :
         {"<plist>" + root, root + "</plist>", "<plist>" + root + root + "</plist>", root + root, root + "x",
          "<!-- " + root, "<plist><plist>" + root + "</plist></plist>", "<plist>" + root + "</plist>x"})
        EXPECT_EQ(DescribeBytes(text), "null") << text;
}

// Wrong nesting is met by the generated lists.
TEST(XmlReader, RefusesDamage) {
    for (const char *text : {"", " \n", "<plist></plist>", "<plist/>", "<plist>x</plist>", "<?xml",
                             "<!DOCTYPE plist [", "<!DOCTYPE plist>", "<array", "<array{", "<key>a</key>"})
        EXPECT_EQ(DescribeBytes(text), "null") << text;
    EXPECT_EQ(DescribeEach("string", {"a<b/>", "&unknown;", "&amp", "&#;", "&#x110000;", "&#12a;",
                                      "a<![CDATA[b", "a</key>"}),
              Repeat("null ", 8));
    EXPECT_EQ(DescribeEach("array", {"<unknown/>", "x", "<true>x</true>", "<strin>a</strin>", "<key>a</key>",
                                     "<string>a", "<>", "<", "<string"}),
              Repeat("null ", 9));
}

// The file passes through a window; wherever the window ends, the list is the same.
TEST(XmlReader, ReadsAcrossTheEndOfItsWindow) {
    const std::string record =
        "<dict><key>Name</key><string>A &amp; B</string><!-- c --><key>Data</key><data>AAEC</data>"
        "<key>Date</key><date>2001-01-01T00:00:00Z</date><key>On</key><true/><key>n</key>"
        "<integer>17</integer></dict>\n";
    const std::string item = R"({"Name":"A & B","Data":<000102>,"Date":d0,"On":T,"n":i17})";
    constexpr size_t kWindow = 256 << 10;
    for (size_t shift = 0; shift < record.size(); ++shift) {
        const std::string text = std::string(kWindow - 300 + shift, ' ') + "<array>" + Repeat(record, 3);
        ASSERT_EQ(DescribeBytes(text + "</array>"), "[" + item + "," + item + "," + item + "]") << shift;
    }
    const std::string large = Repeat("0123456789", 300'000);
    EXPECT_EQ(DescribeBytes("<array><string>" + large + "&amp;</string><true/></array>"),
              "[\"" + large + "&\",T]");
    EXPECT_EQ(DescribeBytes("<array><string>" + large + "</string></array>"), "[\"" + large + "\"]");
    EXPECT_EQ(DescribeBytes("<array><string>" + large), "null");
}

TEST(TextScan, EachFormFindsTheEndThatAWalkFinds) {
    std::mt19937 random(1904);
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (size_t size = random() % 70; text.size() < size;)
            text += random() % 40 == 0 ? "<&\xC3\x80\x7F\xFF"[random() % 6]
                                       : static_cast<char>('A' + random() % 26);
        text += "&<"[random() % 2] + std::string(core_foundation::kScanPadding, '\x80');
        const auto end = static_cast<std::ptrdiff_t>(text.find_first_of("<&"));
        const bool is_ascii =
            std::all_of(text.begin(), text.begin() + end, [](char byte) { return byte >= 0; });
        const core_foundation::ScanResult fast = core_foundation::ScanText(text.data());
        const portable::core_foundation::ScanResult plain = portable::core_foundation::ScanText(text.data());
        ASSERT_EQ(std::pair(fast.end - text.data(), fast.is_ascii), std::pair(end, is_ascii)) << text;
        ASSERT_EQ(std::pair(plain.end - text.data(), plain.is_ascii), std::pair(end, is_ascii)) << text;
    }
}

}  // namespace
