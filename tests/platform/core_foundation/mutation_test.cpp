// Generated input: every short sequence of tokens against an obvious reader of tokens, one list in several
// spellings, and damaged files of every form.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/platform/core_foundation/list_text.h"
#include "tests/platform/damage.h"

namespace {

constexpr std::string_view kTokens = "[]{}kT ";
constexpr const char *kXml[] = {"<array>",      "</array>", "<dict>",  "</dict>",
                                "<key>k</key>", "<true/>",  "<!--c-->"};

bool Take(std::string_view &tokens, char token) {
    const bool is_there = tokens.starts_with(token);
    if (is_there) tokens.remove_prefix(1);
    return is_there;
}

// Takes one value by plain recursion; empty where there is none. All keys are the same, so the last pair of a
// dictionary is the only one.
std::string TakeValue(std::string_view &tokens) {
    if (Take(tokens, 'T')) return "T";
    const bool is_array = Take(tokens, '[');
    if (!is_array && !Take(tokens, '{')) return "";
    std::string content;
    while (!Take(tokens, is_array ? ']' : '}')) {
        if (!is_array && !Take(tokens, 'k')) return "";
        const std::string value = TakeValue(tokens);
        if (value.empty()) return "";
        content = is_array ? content + (content.empty() ? "" : ",") + value : "\"k\":" + value;
    }
    return is_array ? "[" + content + "]" : "{" + content + "}";
}

TEST(GeneratedXml, AgreesWithAnObviousReader) {
    int lists = 0;
    size_t sequences = 1;
    for (size_t length = 1; length <= 6; ++length) {
        sequences *= kTokens.size();
        for (size_t number = 0; number < sequences; ++number) {
            std::string tokens, text;
            for (size_t i = 0, rest = number; i < length; ++i, rest /= kTokens.size()) {
                const size_t token = rest % kTokens.size();
                text += kXml[token];
                if (kTokens[token] != ' ') tokens += kTokens[token];
            }
            std::string_view rest = tokens;
            const std::string value = TakeValue(rest);
            const bool is_list = !value.empty() && rest.empty();
            ASSERT_EQ(DescribeBytes("<plist>" + text + "</plist>"), is_list ? value : "null") << text;
            lists += is_list ? 1 : 0;
        }
    }
    EXPECT_GT(lists, 100);
}

// A random list with the same keys over and over, evenly laid out as a program does it.
std::string EvenList(std::mt19937 &random, size_t depth) {
    constexpr const char *kLeaves[] = {"<string></string>",
                                       "<string>a&amp;b</string>",
                                       "<integer>-7</integer>",
                                       "<integer>7</integer>",
                                       "<true/>",
                                       "<false/>",
                                       "<dict/>",
                                       "<date>2001-01-01T00:00:00Z</date>"};
    const std::string space = "\n" + std::string(depth, '\t');
    if (depth > 4 || (depth > 0 && random() % 3 == 0)) return space + kLeaves[random() % 8];
    const bool is_dict = depth == 0 || random() % 6 != 0;
    const bool is_large = depth == 1 && random() % 8 == 0;  // some are so large that they are indexed
    std::string text = space + (is_dict ? "<dict>" : "<array>");
    for (size_t i = 0, count = random() % (is_large ? 90 : 6); i < count; ++i) {
        const std::string key = std::string(1, "abcdefgh"[i % 8]) + (i < 8 ? "" : std::to_string(i));
        text += (is_dict ? space + "\t<key>" + key + "</key>" : "") + EvenList(random, depth + 1);
    }
    return text + space + (is_dict ? "</dict>" : "</array>");
}

TEST(GeneratedXml, ReadsTheSameInEverySpelling) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const std::string even = EvenList(random, 0);
        std::string odd;
        for (const char byte : even) {
            odd += byte == '\n' ? std::string(random() % 3, ' ') : std::string(1, byte);
            if (byte == '\n' && random() % 5 == 0) odd += "<!-- </dict><key>a</key> -->";
        }
        const std::string description = DescribeBytes(even);
        ASSERT_NE(description, "null") << even;
        ASSERT_EQ(DescribeBytes(odd), description) << odd;
    }
}

// The sanitizers are the judges here. What is read after all must survive being written.
TEST(DamagedLists, DoNoHarm) {
    const std::string xml =
        "<?xml version=\"1.0\"?><!DOCTYPE plist><plist version=\"1.0\"><dict><key>a&amp;b</key><array>"
        "<integer>-5</integer><real>1.5</real><date>2001-01-01T00:00:00Z</date><data>AAEC</data><true/>"
        "<string>&#233;<![CDATA[x]]></string></array><!-- c --><key>e</key><dict/></dict></plist>";
    const std::string binary = WriteBytes(ReadBytes(xml).get(), kCFPropertyListBinaryFormat_v1_0);
    const std::string old_style =
        "// c\n{ a = (b, \"c\\n\", <0102>, <*I5>, <*D2001-01-01 00:00:00 +0000>); d; }";
    Damage damage(20010101);
    int readable = 0;
    for (const std::string &whole : {xml, binary, old_style, std::string("a = b; \"c\" = <01>;"),
                                     Utf16(xml, false), Utf16(old_style, true)}) {
        ASSERT_NE(DescribeBytes(whole), "null");
        for (int round = 0; round < 3000; ++round) {
            const Owned list = ReadBytes(damage.Of(whole));
            if (list == nullptr) continue;
            ++readable;
            if (round % 50 != 0) continue;
            EXPECT_NE(WriteBytes(list.get(), 100), "") << Describe(list.get());
        }
    }
    EXPECT_GT(readable, 100);
}

}  // namespace
