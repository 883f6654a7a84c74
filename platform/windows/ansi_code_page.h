#ifndef PLATFORM_WINDOWS_ANSI_CODE_PAGE_H
#define PLATFORM_WINDOWS_ANSI_CODE_PAGE_H

#include <string>
#include <string_view>

#include "platform/windows/windows_api.h"

// The code page for a locale name such as "cs_CZ.UTF-8" or "de_DE.ISO-8859-15@euro": that of its character
// set where this is an 8-bit one, else the one that Windows uses for the language, else 1252.
UINT CodePageOfLocale(std::string_view locale_name);

// The name by which the converter knows a code page; null for one that is not in the table.
const char *CodePageCharset(UINT code_page);

#endif
