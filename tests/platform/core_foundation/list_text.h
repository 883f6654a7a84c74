#ifndef TESTS_PLATFORM_CORE_FOUNDATION_LIST_TEXT_H
#define TESTS_PLATFORM_CORE_FOUNDATION_LIST_TEXT_H

#include <string>
#include <string_view>

#include "platform/core_foundation/cf_owner.h"
#include "platform/core_foundation/core_foundation.h"

// A reference that the test owns.
using Owned = CFOwner;

// The list as one line of text, the same for equal lists. Dictionaries keep their order.
//
//   {"key":T,"other":[i-5,r3ff8000000000000,d1500,<00ff>,u7]}
//
// Reals are the digits of their bits, dates milliseconds since 2001, bytes beyond printable ASCII "\xNN".
std::string Describe(CFPropertyListRef list);

// Describe of what the bytes hold, or "null".
std::string DescribeBytes(std::string_view bytes);

Owned ReadBytes(std::string_view bytes, CFPropertyListFormat *format = nullptr);
Owned ReadFile(const std::string &path);
Owned NewReadStream(const std::string &path);

// False when CFPropertyListWrite reports a failure.
bool WriteFile(const std::string &path, CFPropertyListRef list, CFPropertyListFormat format);
// What WriteFile puts into a file, empty for a failure.
std::string WriteBytes(CFPropertyListRef list, CFPropertyListFormat format);

Owned NewString(const std::string &text);

// Text in UTF-16, without a mark. The text is ASCII.
std::string Utf16(std::string_view text, bool big_endian);

std::string Repeat(std::string_view text, size_t count);

#endif
