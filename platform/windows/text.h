#ifndef PLATFORM_WINDOWS_TEXT_H
#define PLATFORM_WINDOWS_TEXT_H

#include <string>
#include <string_view>

// Zero characters inside a text are kept by all three.

// Bytes that are not UTF-8 survive the way to wide text and back, except on Windows.
std::wstring Utf8ToWide(std::string_view text);
// A surrogate pair becomes one character; one half alone becomes U+FFFD.
std::string WideToUtf8(std::wstring_view text);
// In the system's ANSI code page; a character that it lacks becomes '?'.
std::string AnsiFromWide(std::wstring_view text);

#endif
