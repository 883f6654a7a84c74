#include "content/plist_values.h"

#include <glib.h>

#include <charconv>
#include <ctime>
#include <memory>

#include "content/location_url.h"
#include "driver/driver_log.h"
#include "driver/limit_log.h"
#include "platform/windows/windows_api.h"

namespace {

struct StreamCloser {
    void operator()(CFWriteStreamRef stream) const { CFWriteStreamClose(stream); }
};

CFOwner FileUrl(const std::string &path) {
    const auto *bytes = reinterpret_cast<const UInt8 *>(path.data());
    return CFOwner(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, bytes,
                                                           static_cast<CFIndex>(path.size()), false));
}

// One comparison decides for a value of the common classes.
struct TypeIds {
    CFTypeID number = CFNumberGetTypeID();
    CFTypeID string = CFStringGetTypeID();
    CFTypeID boolean = CFBooleanGetTypeID();
    CFTypeID date = CFDateGetTypeID();
    CFTypeID data = CFDataGetTypeID();
    CFTypeID dictionary = CFDictionaryGetTypeID();
    CFTypeID array = CFArrayGetTypeID();
};

const TypeIds &Types() {
    static const TypeIds ids;
    return ids;
}

std::string_view Decimal(int64_t number, std::string &room) {
    constexpr size_t kMostDigits = 24;
    // Room that is there already is not cut: the next text may need it.
    if (room.size() <= kMostDigits) room.resize(kMostDigits + 1);
    char *const end = std::to_chars(room.data(), room.data() + kMostDigits, number).ptr;
    *end = '\0';
    return {room.data(), static_cast<size_t>(end - room.data())};
}

std::optional<std::string_view> NumberText(CFNumberRef number, std::string &room) {
    int64_t value = 0;
    if (!CFNumberGetValue(number, kCFNumberSInt64Type, &value)) return std::nullopt;
    return Decimal(value, room);
}

std::optional<std::string_view> StringText(CFStringRef string, std::string &room) {
    const char *text = CFStringGetCStringPtr(string, kCFStringEncodingUTF8);
    if (text != nullptr && *text != '\0') return text;
    if (CFStringGetLength(string) < 1) return std::nullopt;
    if (text != nullptr) return text;
    // Not every implementation can lend its text.
    const CFIndex bytes =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    room.resize(static_cast<size_t>(bytes));
    if (!CFStringGetCString(string, room.data(), bytes, kCFStringEncodingUTF8)) return std::nullopt;
    room.resize(room.find('\0'));
    return room;
}

std::string_view Base64Text(CFDataRef data, std::string &room) {
    const auto length = static_cast<size_t>(CFDataGetLength(data));
    std::string bytes(length, '\0');
    CFDataGetBytes(data, CFRangeMake(0, static_cast<CFIndex>(length)),
                   reinterpret_cast<UInt8 *>(bytes.data()));
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_base64_encode(reinterpret_cast<const guchar *>(bytes.data()), length), g_free);
    room = text.get();
    return room;
}

}  // namespace

bool IsDictionary(CFTypeRef value) {
    return value != nullptr && CFGetTypeID(value) == Types().dictionary;
}

bool IsArray(CFTypeRef value) {
    return value != nullptr && CFGetTypeID(value) == Types().array;
}

bool IsData(CFTypeRef value) {
    return value != nullptr && CFGetTypeID(value) == Types().data;
}

bool IsNumber(CFTypeRef value) {
    return value != nullptr && CFGetTypeID(value) == Types().number;
}

PropertyListFile::PropertyListFile(const std::string &path)
    : owner_(CFReadStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(FileUrl(path).get()))),
      is_open_(owner_ != nullptr && CFReadStreamOpen(stream())) {}

PropertyListFile::~PropertyListFile() {
    if (is_open_) CFReadStreamClose(stream());
}

CFReadStreamRef PropertyListFile::stream() const {
    return static_cast<CFReadStreamRef>(const_cast<void *>(owner_.get()));
}

CFOwner PropertyListFile::Read() {
    return CFOwner(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream(), 0, kCFPropertyListImmutable,
                                                  nullptr, nullptr));
}

CFOwner PropertyListFile::Read(const core_foundation::DictionaryWatch &watch) {
    return CFOwner(core_foundation::ReadWatchedList(stream(), watch));
}

CFOwner ReadPropertyListFile(const std::string &path) {
    const LimitLog limit_log(path);
    PropertyListFile file(path);
    return file.IsOpen() ? file.Read() : nullptr;
}

int32_t WritePropertyListFile(const std::string &path, CFPropertyListRef plist, CFPropertyListFormat format) {
    const CFOwner url = FileUrl(path);
    const CFOwner owner(CFWriteStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(url.get())));
    auto *stream = static_cast<CFWriteStreamRef>(const_cast<void *>(owner.get()));
    if (stream == nullptr || !CFWriteStreamOpen(stream)) return -2;
    const std::unique_ptr<__CFWriteStream, StreamCloser> closer(stream);
    CFPropertyListWrite(plist, stream, format, 0, nullptr);
    return 0;
}

const void *PlistValue(CFTypeRef dictionary, const char *key) {
    if (!IsDictionary(dictionary)) return nullptr;
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), Utf8ToCFString(key).get());
}

CFStringRef PlistString(CFTypeRef dictionary, const char *key) {
    const void *value = PlistValue(dictionary, key);
    const bool is_string = value != nullptr && CFGetTypeID(value) == Types().string;
    return is_string ? static_cast<CFStringRef>(value) : nullptr;
}

std::optional<int64_t> PlistInteger(CFTypeRef dictionary, const char *key) {
    const void *value = PlistValue(dictionary, key);
    int64_t number = 0;
    if (!IsNumber(value) || !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number))
        return std::nullopt;
    return number;
}

std::optional<std::string> PlistValueText(CFTypeRef dictionary, const char *key, int32_t flags) {
    if (key == nullptr) return std::nullopt;
    const CFTypeRef value = PlistValue(dictionary, key);
    std::string room;
    const auto text = value == nullptr ? std::nullopt : PlistText(value, flags, room);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::string_view> PlistText(CFTypeRef value, int32_t flags, std::string &room) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == Types().number) return NumberText(static_cast<CFNumberRef>(value), room);
    if (type == Types().string) {
        const auto text = StringText(static_cast<CFStringRef>(value), room);
        if (!text || (flags & kTextIsLocation) == 0) return text;
        return LocationUrlToPath(*text, room);
    }
    if (type == Types().boolean)
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) == 1 ? "true" : "false";
    if (type == Types().date) return Decimal(DateToSeconds(static_cast<CFDateRef>(value)), room);
    if (type == Types().data) return Base64Text(static_cast<CFDataRef>(value), room);
    WriteDriverLog("Ignore data type <%d>\n", static_cast<int>(type));
    return std::nullopt;
}

std::optional<std::string> CFStringToUtf8(CFStringRef string) {
    std::string room;
    const auto text = string == nullptr ? std::nullopt : StringText(string, room);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

CFOwner Utf8ToCFString(const std::string &text) {
    return CFOwner(CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

int64_t DateToSeconds(CFDateRef date) {
    const CFGregorianDate utc = CFAbsoluteTimeGetGregorianDate(CFDateGetAbsoluteTime(date), nullptr);
    std::tm local = {};
    local.tm_year = utc.year - 1900;
    local.tm_mon = utc.month - 1;
    local.tm_mday = utc.day;
    local.tm_hour = utc.hour;
    local.tm_min = utc.minute;
    local.tm_sec = static_cast<int>(utc.second);
    return _mktime64(&local);
}
