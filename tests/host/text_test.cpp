#include "host/text.h"

#include <gtest/gtest.h>

namespace velmarhost {
namespace {

// Every code point, written by the definition of UTF-8, must come back, and every other two-byte text must
// not pass.
TEST(Text, DecodesUtf8AndNothingElse) {
    for (char32_t code = 0x80; code <= 0x10FFFF; ++code) {
        std::string text;
        const int tail = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
        text.push_back(static_cast<char>(kLeads[tail] | (code >> (6 * tail))));
        for (int i = tail - 1; i >= 0; --i)
            text.push_back(static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F)));
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        const DecodedCharacter character = DecodeUtf8(text, 0);
        ASSERT_EQ(character.code, surrogate ? kBadByte : code);
        ASSERT_EQ(character.length, surrogate ? 1U : text.size());
        ASSERT_EQ(DecodeUtf8(text.substr(0, text.size() - 1), 0).code, kBadByte) << "a cut character";
    }
    EXPECT_EQ(DecodeUtf8("\xC0\xAF", 0).code, kBadByte) << "overlong";
    EXPECT_EQ(DecodeUtf8("\xE0\x80\xAF", 0).code, kBadByte) << "overlong";
    EXPECT_EQ(DecodeUtf8("\xF4\x90\x80\x80", 0).code, kBadByte) << "beyond the last character";
    EXPECT_EQ(DecodeUtf8("\xB4\x80\x80\x80", 0).code, kBadByte) << "no lead";
    EXPECT_EQ(DecodeUtf8("", 0).length, 0U);
}

TEST(Text, EscapesWhatWouldDriveATerminal) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a\x1b[2Jb\r\n\tc\x7f", "a\\x1b[2Jb\\r\\n\\tc\\x7f"},
        {"\xC2\x80\xC2\x9F\xC2\xA0~", "\\u0080\\u009f\xC2\xA0~"},
        {"a\xE2\x80\xAE.gpj\xE2\x80\xAC", "a\\u202e.gpj\\u202c"},
        {"bad \xff\xC3", "bad \\xff\\xc3"},
        {"Björk – ジョーガ 🎵 C:\\x", "Björk – ジョーガ 🎵 C:\\x"}};
    for (const auto &[text, escaped] : cases)
        EXPECT_EQ(EscapeText(text), escaped);
    for (const auto &[first, last] : std::vector<std::pair<char32_t, char32_t>>{
             {0x61C, 0x61C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}}) {
        EXPECT_TRUE(IsHarmful(first) && IsHarmful(last));
        EXPECT_FALSE(IsHarmful(first - 1) || IsHarmful(last + 1));
    }
}

TEST(Text, CutsAndFoldsWholeLetters) {
    EXPECT_EQ(CutAtCharacter("aé", 2), "a");
    EXPECT_EQ(CutAtCharacter("aé", 3), "aé");
    EXPECT_EQ(CutAtCharacter("🎵", 3), "");
    EXPECT_EQ(FoldCase("BJÖRK ЛЕС Straße ＡⅧ 𐐀 \xFF"), "björk лес straße ａⅷ 𐐨 \xFF");
}

TEST(Text, NumbersAreReadWholeAndWrittenForPeople) {
    EXPECT_EQ(ParseNumber("-12"), -12);
    for (const char *text : {"", "12x", " 1", "99999999999999999999"})
        EXPECT_EQ(ParseNumber(text), std::nullopt);
    const std::string sizes =
        FormatSize(999) + ", " + FormatSize(1000) + ", " + FormatSize(999'949) + ", " + FormatSize(999'999);
    EXPECT_EQ(sizes + ", " + FormatSize(UINT64_MAX), "999 B, 1.0 kB, 999.9 kB, 1.0 MB, 18.4 EB");
}

}  // namespace
}  // namespace velmarhost
