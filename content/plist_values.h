#ifndef CONTENT_PLIST_VALUES_H
#define CONTENT_PLIST_VALUES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/core_foundation/cf_owner.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/dictionary_watch.h"

// Flag of a value's text: a string is a file URL and is given as a path.
constexpr int32_t kTextIsLocation = 4;

// The root value of a property-list file, of any type; null when the file is missing or no property list.
// `path` is UTF-8.
CFOwner ReadPropertyListFile(const std::string &path);

// A property-list file that is open for reading, or not if it cannot be opened. Read gives the root value
// once, or null; it writes no log, so any one thread may call it.
class PropertyListFile {
  public:
    explicit PropertyListFile(const std::string &path);
    ~PropertyListFile();
    PropertyListFile(const PropertyListFile &) = delete;
    PropertyListFile &operator=(const PropertyListFile &) = delete;

    bool IsOpen() const { return is_open_; }
    CFOwner Read();
    CFOwner Read(const core_foundation::DictionaryWatch &watch);

  private:
    CFReadStreamRef stream() const;

    CFOwner owner_;
    bool is_open_;
};

// Replaces a file by a property list in the given format. 0; -2 when the file cannot be opened for writing. A
// write that fails later leaves the old file as it was, and still gives 0.
int32_t WritePropertyListFile(const std::string &path, CFPropertyListRef plist, CFPropertyListFormat format);

// The value under a key; null for no dictionary and for no such key. Borrowed.
const void *PlistValue(CFTypeRef dictionary, const char *key);

// A string, and the value of a whole number, under a key; null or empty for a value of another type.
CFStringRef PlistString(CFTypeRef dictionary, const char *key);
std::optional<int64_t> PlistInteger(CFTypeRef dictionary, const char *key);

// The value under a key as attribute text; empty for no dictionary, no such key or no text.
std::optional<std::string> PlistValueText(CFTypeRef dictionary, const char *key, int32_t flags);

// A value as attribute text, by the value's type: a number in decimal, "true" or "false", a date in seconds,
// data in Base64. Empty for an empty string, for a number that is no whole number of 64 bits, and for a type
// that has no text, which is logged. The text is followed by a NUL; it lies in the value or in `room`, and
// lasts until either changes.
std::optional<std::string_view> PlistText(CFTypeRef value, int32_t flags, std::string &room);

// The text of a string; empty for null and for an empty string.
std::optional<std::string> CFStringToUtf8(CFStringRef string);

CFOwner Utf8ToCFString(const std::string &text);

// The date's UTC fields read as local time, in seconds since 1970: the true moment only where local time is
// UTC.
int64_t DateToSeconds(CFDateRef date);

bool IsDictionary(CFTypeRef value);
bool IsArray(CFTypeRef value);
bool IsData(CFTypeRef value);
bool IsNumber(CFTypeRef value);

#endif
