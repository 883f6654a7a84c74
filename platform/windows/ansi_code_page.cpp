#include "platform/windows/ansi_code_page.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <clocale>
#include <cstdlib>

namespace {

constexpr UINT kWestern = 1252;

struct CodePage {
    UINT number;
    const char *charset;
};
constexpr std::array kCodePages = {
    CodePage{874, "CP874"},         CodePage{932, "CP932"},        CodePage{936, "CP936"},
    CodePage{949, "CP949"},         CodePage{950, "BIG5"},         CodePage{1250, "CP1250"},
    CodePage{1251, "CP1251"},       CodePage{1252, "CP1252"},      CodePage{1253, "CP1253"},
    CodePage{1254, "CP1254"},       CodePage{1255, "CP1255"},      CodePage{1256, "CP1256"},
    CodePage{1257, "CP1257"},       CodePage{1258, "CP1258"},      CodePage{20866, "KOI8-R"},
    CodePage{20932, "EUC-JP"},      CodePage{21866, "KOI8-U"},     CodePage{28591, "ISO-8859-1"},
    CodePage{28592, "ISO-8859-2"},  CodePage{28593, "ISO-8859-3"}, CodePage{28594, "ISO-8859-4"},
    CodePage{28595, "ISO-8859-5"},  CodePage{28596, "ISO-8859-6"}, CodePage{28597, "ISO-8859-7"},
    CodePage{28598, "ISO-8859-8"},  CodePage{28599, "ISO-8859-9"}, CodePage{28603, "ISO-8859-13"},
    CodePage{28605, "ISO-8859-15"}, CodePage{51936, "GB2312"},     CodePage{51949, "EUC-KR"},
    CodePage{54936, "GB18030"},
};

// Character sets of locales under the names that differ from those above, letters and digits only.
struct CharsetAlias {
    std::string_view charset;
    UINT code_page;
};
constexpr std::array kAliases = {
    CharsetAlias{"sjis", 932},    CharsetAlias{"shiftjis", 932}, CharsetAlias{"windows31j", 932},
    CharsetAlias{"gbk", 936},     CharsetAlias{"uhc", 949},      CharsetAlias{"big5hkscs", 950},
    CharsetAlias{"tis620", 874},  CharsetAlias{"eucjp", 20932},  CharsetAlias{"euckr", 51949},
    CharsetAlias{"euccn", 51936},
};

// Languages by ISO 639 code, where need be with the territory or the script of the locale name. 1252 serves
// the rest.
struct LanguagePages {
    UINT code_page;
    std::string_view languages;  // each between blanks
};
constexpr std::array kLanguages = {
    LanguagePages{1250, " bs cs csb dsb hr hsb hu pl ro sh sk sl sq szl tk sr@latin "},
    LanguagePages{1251, " az@cyrillic ab ba be bg ce cv kk ky mhr mk mn os ru sah sr tg tt uk uz@cyrillic "},
    LanguagePages{1253, " el "},
    LanguagePages{1254, " az crh tr uz "},
    LanguagePages{1255, " he iw yi "},
    LanguagePages{1256, " ar ckb fa ks pa_PK prs ps sd ug ur "},
    LanguagePages{1257, " et lt ltg lv "},
    LanguagePages{1258, " vi "},
    LanguagePages{874, " th "},
    LanguagePages{932, " ja "},
    LanguagePages{936, " zh "},
    LanguagePages{949, " ko "},
    LanguagePages{950, " zh_HK zh_MO zh_TW "},
};

// Locale names spell one character set in many ways: "ISO-8859-1", "iso88591", "ISO_8859-1".
std::string LettersAndDigits(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const int byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0) result += static_cast<char>(std::tolower(byte));
    }
    return result;
}

// 0 for a character set that is none of ours, UTF-8 and ASCII among them.
UINT CodePageOfCharset(std::string_view charset) {
    const std::string name = LettersAndDigits(charset);
    for (const CharsetAlias &alias : kAliases) {
        if (name == alias.charset) return alias.code_page;
    }
    for (const CodePage &page : kCodePages) {
        if (name == LettersAndDigits(page.charset)) return page.number;
        if (name == "windows" + std::to_string(page.number)) return page.number;
    }
    return 0;
}

UINT CodePageOfLanguage(std::string_view language) {
    std::string word = " ";
    word.append(language).append(" ");
    for (const LanguagePages &row : kLanguages) {
        if (row.languages.find(word) != std::string_view::npos) return row.code_page;
    }
    return 0;
}

// A locale name, language[_territory][.charset][@modifier], in its pieces.
struct LocaleName {
    std::string language_territory;
    std::string charset;
    std::string modifier;
};

LocaleName SplitLocaleName(std::string_view name) {
    LocaleName parts;
    if (const size_t at = name.find('@'); at != std::string_view::npos) {
        parts.modifier = name.substr(at);
        name = name.substr(0, at);
    }
    if (const size_t dot = name.find('.'); dot != std::string_view::npos) {
        parts.charset = name.substr(dot + 1);
        name = name.substr(0, dot);
    }
    parts.language_territory = name;
    return parts;
}

// What an installed locale uses that does not name its character set, such as "de_DE".
std::string CharsetOfInstalledLocale(const std::string &name) {
    const locale_t locale = newlocale(LC_CTYPE_MASK, name.c_str(), nullptr);
    if (locale == nullptr) return {};
    std::string charset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return charset;
}

bool NamesALanguage(std::string_view locale_name) {
    return !locale_name.empty() && locale_name != "C" && locale_name != "POSIX" &&
           !locale_name.starts_with("C.");
}

// The locale of the process, else what the environment asks for: a host that never calls setlocale runs in
// "C", and a library must not change that.
std::string CurrentLocaleName() {
    const char *current = std::setlocale(LC_CTYPE, nullptr);
    if (current != nullptr && NamesALanguage(current)) return current;
    for (const char *variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

}  // namespace

UINT CodePageOfLocale(std::string_view locale_name) {
    if (!NamesALanguage(locale_name)) return kWestern;
    const LocaleName parts = SplitLocaleName(locale_name);
    const std::string charset =
        parts.charset.empty() ? CharsetOfInstalledLocale(std::string(locale_name)) : parts.charset;
    const std::string language = parts.language_territory.substr(0, parts.language_territory.find('_'));
    for (const UINT page : {CodePageOfCharset(charset), CodePageOfLanguage(parts.language_territory),
                            CodePageOfLanguage(language + parts.modifier), CodePageOfLanguage(language)}) {
        if (page != 0) return page;
    }
    return kWestern;
}

const char *CodePageCharset(UINT code_page) {
    const auto *const found =
        std::find_if(kCodePages.begin(), kCodePages.end(),
                     [code_page](const CodePage &page) { return page.number == code_page; });
    return found == kCodePages.end() ? nullptr : found->charset;
}

UINT GetACP() {
    return CodePageOfLocale(CurrentLocaleName());
}
