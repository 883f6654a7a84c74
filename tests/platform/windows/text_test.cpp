#include "platform/windows/text.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "fixtures/scoped_environment.h"
#include "platform/windows/ansi_code_page.h"
#include "platform/windows/windows_api.h"

namespace {

// The same decoding with GLib, one character or one byte at a time.
std::wstring ReferenceWide(const std::string &text) {
    std::wstring wide;
    for (size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const gunichar c =
            byte == 0 ? 0 : g_utf8_get_char_validated(text.data() + i, static_cast<gssize>(text.size() - i));
        const bool valid = c < 0x110000;
        wide += static_cast<wchar_t>(valid ? c : 0xDC00U + byte);
        i += valid ? static_cast<size_t>(g_unichar_to_utf8(c, nullptr)) : 1;
    }
    return wide;
}

// Every text of up to four bytes out of the bytes at which the rules of UTF-8 change.
TEST(Utf8Text, EveryShortTextDecodesAsTheReferenceAndComesBack) {
    constexpr std::string_view kBytes(
        "\x00\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5\xFF", 20);
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size(); ++i) {
        const std::wstring wide = Utf8ToWide(texts[i]);
        ASSERT_EQ(wide, ReferenceWide(texts[i])) << i;
        ASSERT_EQ(WideToUtf8(wide), texts[i]) << i;
        for (size_t byte = 0; texts[i].size() < 4 && byte < kBytes.size(); ++byte)
            texts.push_back(texts[i] + kBytes[byte]);
    }
}

TEST(Utf8Text, SurrogatesOfWideText) {
    const std::wstring wide = {0xD83D, 0xDE00, 0xD83D, 0xDC80,
                               0xD83D, L'z',   0xDE00, static_cast<wchar_t>(0x110000)};
    EXPECT_EQ(WideToUtf8(wide), "\xF0\x9F\x98\x80\xF0\x9F\x92\x80\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(WideToUtf8(std::wstring{0xD83D}), "\xEF\xBF\xBD");
}

TEST(TextConversion, SizesAndTerminators) {
    std::array<wchar_t, 4> wide = {L'#', L'#', L'#', L'#'};
    std::array<char, 4> narrow;
    const auto to_wide = [&](const char *text, int length, int room, DWORD flags = 0) {
        return MultiByteToWideChar(CP_UTF8, flags, text, length, wide.data(), room);
    };
    const auto to_narrow = [&](const wchar_t *text, int room) {
        return WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), room, nullptr, nullptr);
    };
    const auto error = [](int size) { return size == 0 ? GetLastError() : 0; };
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "\xC3\xA9z", -1, nullptr, 0), 3);
    EXPECT_EQ(to_wide("\xC3\xA9z", -1, 3), 3);
    EXPECT_EQ(std::wstring(wide.data(), 4), std::wstring(L"\x00E9z\0#", 4));
    EXPECT_EQ(to_wide("\xC3\xA9z", 3, 4, MB_ERR_INVALID_CHARS), 2);
    EXPECT_EQ(error(to_wide("\xC3\xA9z", -1, 2)), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(error(to_wide("", 0, 2)), ERROR_INVALID_PARAMETER);
    for (const char *broken : {"a\x80", "a\xFF"})
        EXPECT_EQ(error(to_wide(broken, -1, 4, MB_ERR_INVALID_CHARS)), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(MultiByteToWideChar(4711, 0, "a", -1, wide.data(), 4), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"\x00E9", -1, nullptr, 0, nullptr, nullptr), 3);
    EXPECT_EQ(to_narrow(L"\x00E9", 3), 3);
    EXPECT_STREQ(narrow.data(), "\xC3\xA9");
    EXPECT_EQ(error(to_narrow(L"\x00E9", 2)), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(to_narrow(nullptr, 2), 0);
}

TEST(AnsiText, EveryByteOfTheSingleByteCodePagesComesBack) {
    for (const UINT page : {874U, 1250U, 1251U, 1252U, 1253U, 1254U, 1255U, 1256U, 1257U, 20866U, 28605U}) {
        for (int byte = 1; byte < 256; ++byte) {
            const char text = static_cast<char>(byte);
            wchar_t wide = 0;
            char back = 0;
            BOOL defaulted = FALSE;
            SCOPED_TRACE(std::to_string(page) + " " + std::to_string(byte));
            ASSERT_EQ(MultiByteToWideChar(page, 0, &text, 1, &wide, 1), 1);
            ASSERT_EQ(WideCharToMultiByte(page, 0, &wide, 1, &back, 1, nullptr, &defaulted), 1);
            const bool undefined = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &text, 1, &wide, 1) == 0;
            EXPECT_EQ(defaulted != FALSE, undefined);
            EXPECT_EQ(back, undefined ? '?' : text);
        }
    }
}

TEST(AnsiText, GoesByTheLocale) {
    const ScopedEnvironment all("LC_ALL", "ru_RU.UTF-8");
    EXPECT_EQ(GetACP(), 1251U);
    EXPECT_EQ(AnsiFromWide(L"\x0416 \x00E9 \x1F600"), "\xC6 ? ?");
    wchar_t wide = 0;
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xC6", 1, &wide, 1), 1);
    EXPECT_EQ(wide, 0x0416);
}

TEST(AnsiText, MultiByteAndCombiningCodePages) {
    const auto decoded = [](UINT page, const std::string &text) {
        std::wstring wide(8, L'#');
        const int size =
            MultiByteToWideChar(page, 0, text.data(), static_cast<int>(text.size()), wide.data(), 8);
        return wide.substr(0, static_cast<size_t>(size));
    };
    EXPECT_EQ(decoded(932, "\x93\xFA\x96{"), L"\x65E5\x672C");
    EXPECT_EQ(decoded(932, "a\x93"), L"a\x0093") << "a lead byte without its second byte ends the text";
    EXPECT_EQ(decoded(1258, "e\xD2z"), L"\x1EBBz")
        << "a letter that still waits for a mark stands before what cannot be converted";
    EXPECT_EQ(AnsiFromWide(L""), "");
}

TEST(CodePageOfLocale, LanguagesAndCharacterSets) {
    const auto pages = [](const std::vector<const char *> &locales) {
        std::string text;
        for (const char *locale : locales)
            text += std::to_string(CodePageOfLocale(locale)) + " ";
        return text;
    };
    EXPECT_EQ(pages({"", "C", "C.UTF-8", "POSIX", "de_DE.UTF-8", "xx_XX.UTF-8", "s", "de_DE.UTF-8@\xFF"}),
              "1252 1252 1252 1252 1252 1252 1252 1252 ");
    EXPECT_EQ(pages({"cs_CZ.UTF-8", "sr_RS@latin", "sr_RS.UTF-8", "uz_UZ.UTF-8@cyrillic", "el_GR.utf8",
                     "tr_TR.UTF-8"}),
              "1250 1250 1251 1251 1253 1254 ");
    EXPECT_EQ(pages({"he_IL.UTF-8", "ar_EG.UTF-8", "lt_LT.UTF-8", "vi_VN.UTF-8", "th_TH.UTF-8"}),
              "1255 1256 1257 1258 874 ");
    EXPECT_EQ(pages({"ja_JP.UTF-8", "zh_CN.UTF-8", "ko_KR.UTF-8", "zh_TW.UTF-8", "zh_HK.UTF-8"}),
              "932 936 949 950 950 ");
    EXPECT_EQ(pages({"pl_PL.iso88592", "ru_RU.KOI8-R", "ja_JP.eucJP", "ja_JP.SJIS", "bg_BG.CP1251"}),
              "28592 20866 20932 932 1251 ");
    EXPECT_EQ(pages({"zh_CN.GB18030", "de_DE.ISO-8859-15@euro"}), "54936 28605 ");
}

}  // namespace
