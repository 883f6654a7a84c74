#ifndef PLATFORM_WINDOWS_ANSI_TEXT_H
#define PLATFORM_WINDOWS_ANSI_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// 8-bit text in a character set of CodePageCharset. Both directions go on past what cannot be converted and
// tell of it in `complete`; they are empty only if the machine lacks the converter.

// A byte that the character set leaves undefined becomes the character of its own number.
std::optional<std::wstring> WideFromAnsi(const char *charset, std::string_view text, bool &complete);
// A character that the character set lacks becomes `replacement`.
std::optional<std::string> AnsiFromWide(const char *charset, std::wstring_view text,
                                        std::string_view replacement, bool &complete);

#endif
