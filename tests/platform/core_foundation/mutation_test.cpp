// Generated input: every short sequence of tokens against an obvious reader of tokens, and damaged files of
// every form.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/platform/core_foundation/list_text.h"

namespace {

enum Token { kOpenArray, kCloseArray, kOpenDict, kCloseDict, kKey, kScalar, kSpace, kTokenCount };

constexpr const char *kXml[] = {"<array>",      "</array>", "<dict>",  "</dict>",
                                "<key>k</key>", "<true/>",  "<!--c-->"};

// Reads tokens by plain recursion.
class TokenReader {
  public:
    explicit TokenReader(const std::vector<Token> &tokens) {
        for (const Token token : tokens) {
            if (token != kSpace) tokens_.push_back(token);
        }
    }

    std::string Read() {
        std::optional<std::string> value = ReadValue();
        return value && next_ == tokens_.size() ? *value : "null";
    }

  private:
    bool Take(Token token) {
        if (next_ == tokens_.size() || tokens_[next_] != token) return false;
        ++next_;
        return true;
    }

    std::optional<std::string> ReadValue() {
        if (Take(kScalar)) return "T";
        if (Take(kOpenArray)) return ReadArray();
        return Take(kOpenDict) ? ReadDict() : std::nullopt;
    }

    std::optional<std::string> ReadArray() {
        std::string items;
        while (!Take(kCloseArray)) {
            const std::optional<std::string> item = ReadValue();
            if (!item) return std::nullopt;
            items += (items.empty() ? "" : ",") + *item;
        }
        return "[" + items + "]";
    }

    // All keys are the same, so the last pair is the only one.
    std::optional<std::string> ReadDict() {
        std::string pair;
        while (!Take(kCloseDict)) {
            if (!Take(kKey)) return std::nullopt;
            const std::optional<std::string> value = ReadValue();
            if (!value) return std::nullopt;
            pair = "\"k\":" + *value;
        }
        return "{" + pair + "}";
    }

    std::vector<Token> tokens_;
    size_t next_ = 0;
};

TEST(GeneratedXml, AgreesWithAnObviousReader) {
    constexpr int kLongest = 6;
    int lists = 0;
    int sequences = 1;
    for (int length = 1; length <= kLongest; ++length) {
        sequences *= kTokenCount;
        for (int number = 0; number < sequences; ++number) {
            std::vector<Token> tokens;
            std::string text;
            for (int i = 0, rest = number; i < length; ++i, rest /= kTokenCount) {
                tokens.push_back(static_cast<Token>(rest % kTokenCount));
                text += kXml[rest % kTokenCount];
            }
            const std::string expected = TokenReader(tokens).Read();
            ASSERT_EQ(DescribeBytes("<plist>" + text + "</plist>"), expected) << text;
            if (expected != "null") ++lists;
        }
    }
    EXPECT_GT(lists, 100);
}

// Spells one random list, with the same keys over and over, in the even way of a program or with odd space
// and comments wherever they may stand.
class ListSpeller {
  public:
    ListSpeller(uint32_t seed, bool is_even) : choices_(seed), oddities_(seed), is_even_(is_even) {}

    std::string Spell() { return "<plist>" + Value(0) + Space(0) + "</plist>"; }

  private:
    int Choose(int count) { return static_cast<int>(choices_() % static_cast<uint32_t>(count)); }

    std::string Space(int depth) {
        if (is_even_) return "\n" + std::string(static_cast<size_t>(depth), '\t');
        const auto odd = oddities_();
        return std::string(odd % 3, ' ') + (odd % 5 == 0 ? "<!-- </dict><key>a</key> -->" : "");
    }

    std::string Value(int depth) {
        constexpr const char *kLeaves[] = {"<string></string>",
                                           "<string>a&amp;b</string>",
                                           "<integer>-7</integer>",
                                           "<integer>7</integer>",
                                           "<true/>",
                                           "<false/>",
                                           "<dict/>",
                                           "<date>2001-01-01T00:00:00Z</date>"};
        const int kind = depth == 0 ? 0 : Choose(depth > 4 ? 6 : 9);
        if (kind > 5) return Space(depth) + kLeaves[Choose(8)];
        if (depth > 4) return Space(depth) + kLeaves[kind];
        const bool is_dict = kind != 1;
        const int count =
            Choose(depth == 1 && Choose(8) == 0 ? 90 : 6);  // some are so large that they are indexed
        std::string text = Space(depth) + (is_dict ? "<dict>" : "<array>");
        for (int i = 0; i < count; ++i) {
            if (is_dict)
                text += Space(depth + 1) + "<key>" + std::string(1, "abcdefgh"[i % 8]) +
                        (i < 8 ? "" : std::to_string(i)) + "</key>";
            text += Value(depth + 1);
        }
        return text + Space(depth) + (is_dict ? "</dict>" : "</array>");
    }

    std::mt19937 choices_;
    std::mt19937 oddities_;
    bool is_even_;
};

TEST(GeneratedXml, ReadsTheSameInEverySpelling) {
    size_t longest = 0;
    for (uint32_t seed = 0; seed < 2000; ++seed) {
        const std::string even = ListSpeller(seed, true).Spell();
        const std::string description = DescribeBytes(even);
        ASSERT_NE(description, "null") << even;
        ASSERT_EQ(DescribeBytes(ListSpeller(seed, false).Spell()), description) << even;
        longest = std::max(longest, even.size());
    }
    EXPECT_GT(longest, 5000u);
}

const std::vector<std::string> &Seeds() {
    static const std::vector<std::string> seeds = [] {
        const std::string xml =
            "<?xml version=\"1.0\"?><!DOCTYPE plist><plist version=\"1.0\"><dict><key>a&amp;b</key><array>"
            "<integer>-5</integer><real>1.5</real><date>2001-01-01T00:00:00Z</date><data>AAEC</data><true/>"
            "<string>&#233;<![CDATA[x]]></string></array><!-- c --><key>e</key><dict/></dict></plist>";
        const Owned list = ReadBytes(xml);
        const std::string old_style =
            "// c\n{ a = (b, \"c\\n\", <0102>, <*I5>, <*D2001-01-01 00:00:00 +0000>); d; }";
        return std::vector<std::string>{xml,
                                        WriteBytes(list.get(), 200),
                                        old_style,
                                        "a = b; \"c\" = <01>;",
                                        Utf16(xml, false),
                                        Utf16(old_style, true)};
    }();
    return seeds;
}

// The sanitizers are the judges here. What is read after all must survive being written.
TEST(DamagedLists, DoNoHarm) {
    std::mt19937 random(20010101);
    const auto below = [&](size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    };
    int readable = 0;
    for (const std::string &seed : Seeds()) {
        ASSERT_NE(DescribeBytes(seed), "null");
        for (int round = 0; round < 3000; ++round) {
            std::string damaged = seed;
            for (size_t count = 1 + below(3); count > 0; --count) {
                const size_t place = below(damaged.size());
                switch (below(4)) {
                    case 0:
                        damaged[place] = static_cast<char>(below(256));
                        break;
                    case 1:
                        damaged.erase(place, 1 + below(4));
                        break;
                    case 2:
                        damaged.insert(place, damaged.substr(below(damaged.size()), 1 + below(12)));
                        break;
                    default:
                        damaged[place] = static_cast<char>(damaged[place] ^ (1 << below(8)));
                }
                if (damaged.empty()) damaged = "x";
            }
            const Owned list = ReadBytes(damaged);
            if (list == nullptr) continue;
            ++readable;
            if (round % 50 == 0) {
                EXPECT_NE(WriteBytes(list.get(), 100), "") << Describe(list.get());
            }
        }
    }
    EXPECT_GT(readable, 100);
}

}  // namespace
