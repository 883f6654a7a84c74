// The CoreFoundation names over the values of a list, and the calendar behind dates.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/core_foundation/calendar.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

CFDictionaryRef AsDictionary(const Owned &list) {
    return static_cast<CFDictionaryRef>(list.get());
}

TEST(Strings, GiveTheirUtf8AndTheirLengthInUtf16) {
    // A byte that is not UTF-8 counts as one.
    for (const auto &[text, length] : {std::pair("", 0),
                                       {"plain", 5},
                                       {"é日𝕢\xFF", 1 + 1 + 2 + 1},
                                       {"\xFF\xFF\x80\x80", 4},
                                       {"\xC0\x80\xED\xA0\x80\xF5", 6}}) {
        const Owned owned = NewString(text);
        const auto string = static_cast<CFStringRef>(owned.get());
        const auto size = static_cast<CFIndex>(std::strlen(text)) + 1;
        std::array<char, 12> buffer = {};
        EXPECT_EQ(CFStringGetLength(string), length) << text;
        EXPECT_GE(CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8), size - 1) << text;
        EXPECT_FALSE(CFStringGetCString(string, buffer.data(), size - 1, kCFStringEncodingUTF8)) << text;
        EXPECT_TRUE(CFStringGetCString(string, buffer.data(), size, kCFStringEncodingUTF8)) << text;
        EXPECT_STREQ(buffer.data(), text);
        EXPECT_EQ(CFStringGetCStringPtr(string, 0), nullptr);
    }
    EXPECT_TRUE(CFSTR("same") == CFSTR("same") && CFSTR("same") != CFSTR("other"));
    CFRelease(CFSTR("same"));  // NOLINT(clang-analyzer-osx.cocoa.RetainCount): one too many, on purpose
    EXPECT_STREQ(CFStringGetCStringPtr(CFSTR("same"), kCFStringEncodingUTF8), "same");
}

TEST(Numbers, GiveWholeSigned64BitValuesOnly) {
    const auto read = [](const std::string &text) {
        const Owned number = ReadBytes(text);
        SInt64 value = -99;
        const bool is_given =
            CFNumberGetValue(static_cast<CFNumberRef>(number.get()), kCFNumberSInt64Type, &value);
        return is_given == (value == -99) ? "wrong" : is_given ? std::to_string(value) : "none";
    };
    EXPECT_EQ(read("<integer>-5</integer>"), "-5");
    EXPECT_EQ(read("<real>7.0</real>"), "7");
    EXPECT_EQ(read("<real>-9223372036854775808</real>"), "-9223372036854775808");
    for (const char *text : {"<real>9223372036854775808</real>", "<integer>9223372036854775808</integer>",
                             "<real>2.5</real>", "<real>nan</real>", "<real>inf</real>"})
        EXPECT_EQ(read(text), "none") << text;
    for (const SInt64 large : {SInt64{1} << 31, -(SInt64{1} << 31) - 1}) {
        const Owned owned(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &large));
        const auto number = static_cast<CFNumberRef>(owned.get());
        SInt32 narrow = 0;
        double real = 0;
        EXPECT_FALSE(CFNumberGetValue(number, kCFNumberSInt32Type, &narrow) || CFNumberIsFloatType(number));
        EXPECT_TRUE(CFNumberGetValue(number, kCFNumberDoubleType, &real));
        EXPECT_EQ(real, static_cast<double>(large));
    }
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, 99, "12345678"), nullptr);
}

TEST(Types, AreToldApart) {
    const Owned list = ReadBytes("(\"\", <*I1>, <*BY>, <*D2001-01-01 00:00:00 +0000>, <>, (), {})");
    const auto array = static_cast<CFArrayRef>(list.get());
    CFIndex index = 0;
    for (const auto type_id : {CFStringGetTypeID, CFNumberGetTypeID, CFBooleanGetTypeID, CFDateGetTypeID,
                               CFDataGetTypeID, CFArrayGetTypeID, CFDictionaryGetTypeID})
        EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(array, index++)), type_id()) << index;
    for (const CFIndex outside : {-1, 7})
        EXPECT_EQ(CFArrayGetValueAtIndex(array, outside), nullptr);
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue) && !CFBooleanGetValue(kCFBooleanFalse));
}

TEST(Data, IsReplacedInPlaceAndWritten) {
    const Owned list = ReadBytes("{ d = <0001020304>; }");
    const auto data = static_cast<CFDataRef>(CFDictionaryGetValue(AsDictionary(list), CFSTR("d")));
    const auto replace = [&](CFIndex location, CFIndex length, const std::string &bytes) {
        CFDataReplaceBytes(const_cast<CFMutableDataRef>(data), CFRangeMake(location, length),
                           reinterpret_cast<const UInt8 *>(bytes.data()), static_cast<CFIndex>(bytes.size()));
        return DescribeBytes(WriteBytes(list.get(), kCFPropertyListXMLFormat_v1_0));
    };
    EXPECT_EQ(replace(4, 1, "\x01"), "{\"d\":<0001020301>}");
    EXPECT_EQ(replace(5, 1, "x"), "{\"d\":<0001020301>}") << "out of range";
    EXPECT_EQ(replace(1, 3, ""), "{\"d\":<0001>}");
    EXPECT_EQ(replace(1, 0, "abcdefgh"), "{\"d\":<00616263646566676801>}");
    std::array<UInt8, 2> bytes = {};
    for (const CFIndex start : {8, 9})
        CFDataGetBytes(data, CFRangeMake(start, 2), bytes.data());
    EXPECT_EQ(bytes[0], 'h') << "a range beyond the end copies nothing";
    const Owned owned(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("abc"), 3));
    auto *own = const_cast<CFMutableDataRef>(static_cast<CFDataRef>(owned.get()));
    CFDataReplaceBytes(own, CFRangeMake(1, 1), CFDataGetBytePtr(own), 3);
    EXPECT_EQ(Describe(own), "<6161626363>") << "its own bytes are a source like any other";
    EXPECT_EQ(CFDataGetLength(own), 5);
}

// Large dictionaries are searched by an index, or by halves where the keys ascend. Of two values for a key
// the later one counts, in the place of the first.
TEST(Dictionaries, FindEveryKeyOfAnySizeAndOrder) {
    for (int order = 0; order < 3; ++order) {
        const auto key = [order](int i) {
            if (order == 0) return Repeat("k", static_cast<size_t>(i % 20)) + std::to_string(i);
            return order == 1 && i == 900 ? "0" : std::to_string(2 * i + 1);
        };
        for (const int count : {0, 1, 63, 64, 65, 66, 1000, -66, -1000}) {
            std::string text = "{";
            const auto add = [&](int i, int value) {
                text += key(i) + " = <*I" + std::to_string(value) + ">; ";
            };
            for (int i = 0; i < std::abs(count); ++i)
                add(i, count < 0 && i % 63 == 2 ? -1 : i);
            for (int i = 2; i < -count; i += 63)
                add(i, i);
            const Owned list = ReadBytes(text + "}");
            ASSERT_EQ(CFDictionaryGetCount(AsDictionary(list)), std::abs(count));
            std::vector<const void *> keys(static_cast<size_t>(std::abs(count))), values(keys);
            CFDictionaryGetKeysAndValues(AsDictionary(list), keys.data(), nullptr);
            CFDictionaryGetKeysAndValues(AsDictionary(list), nullptr, values.data());
            for (size_t i = 0; i < keys.size(); ++i) {
                const Owned name = NewString(key(static_cast<int>(i)));
                ASSERT_TRUE(CFEqual(keys[i], name.get())) << count;
                ASSERT_EQ(Describe(values[i]), "i" + std::to_string(i)) << count;
                ASSERT_EQ(CFDictionaryGetValue(AsDictionary(list), name.get()), values[i]) << count;
            }
            for (const char *absent : {"", "2", "absent", "99999999"})
                EXPECT_EQ(CFDictionaryGetValue(AsDictionary(list), NewString(absent).get()), nullptr);
        }
    }
}

TEST(MutableDictionaries, AddOnlyWhatIsAbsent) {
    const Owned list = ReadBytes("{ a = <*I1>; b = <*I2>; }");
    CFMutableDictionaryRef copy = CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, AsDictionary(list));
    const Owned owner(copy);
    CFDictionaryAddValue(copy, CFSTR("a"), kCFBooleanTrue);
    CFDictionaryAddValue(copy, CFSTR("c"), kCFBooleanTrue);
    EXPECT_EQ(Describe(copy), "{\"a\":i1,\"b\":i2,\"c\":T}");
    CFDictionaryRemoveValue(copy, CFSTR("a"));
    CFDictionaryRemoveValue(copy, CFSTR("absent"));
    CFDictionaryAddValue(copy, CFSTR("a"), kCFBooleanFalse);
    EXPECT_EQ(Describe(copy), "{\"b\":i2,\"c\":T,\"a\":F}");
    std::array<const void *, 3> keys = {}, values = {};
    CFDictionaryGetKeysAndValues(copy, keys.data(), values.data());
    EXPECT_EQ(Describe(keys[2]) + Describe(values[2]), "\"a\"F");
    CFMutableDictionaryRef fresh = CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
    const Owned fresh_owner(fresh);
    for (const char *key : {"one", "two", "three"})
        CFDictionaryAddValue(fresh, NewString(key).get(), ReadBytes("{ k = <*BY>; }").get());
    EXPECT_EQ(Describe(fresh), R"({"one":{"k":T},"two":{"k":T},"three":{"k":T}})");
    CFDictionaryAddValue(const_cast<CFMutableDictionaryRef>(AsDictionary(list)), CFSTR("z"), kCFBooleanTrue);
    EXPECT_EQ(Describe(list.get()), R"({"a":i1,"b":i2})") << "a list that was read does not change";
}

// Under AddressSanitizer a document that dies too early or never is a failure of this test.
TEST(References, KeepTheDocumentsOfRetainedValues) {
    Owned list = ReadBytes("{ books = ({ path = x; }); }");
    const void *books = CFDictionaryGetValue(AsDictionary(list), CFSTR("books"));
    CFMutableArrayRef copy = CFArrayCreateMutableCopy(kCFAllocatorDefault, 0, static_cast<CFArrayRef>(books));
    const Owned owner(copy);
    list.reset();
    CFArrayAppendValue(copy, kCFBooleanTrue);
    CFArrayAppendValue(copy, NewString("of a caller").get());
    CFArrayAppendValue(copy, ReadBytes("{ other = <*BY>; }").get());
    EXPECT_EQ(Describe(copy), R"([{"path":"x"},T,"of a caller",{"other":T}])");
    EXPECT_EQ(DescribeBytes(WriteBytes(copy, kCFPropertyListBinaryFormat_v1_0)), Describe(copy));
    EXPECT_EQ(CFRetain(nullptr), nullptr);
    CFRelease(nullptr);  // NOLINT(clang-analyzer-osx.coreFoundation.CFRetainRelease): harmless here
}

TEST(References, ReleaseAnyDepth) {
    CFMutableArrayRef outer = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (int i = 0; i < 200'000; ++i) {
        CFMutableArrayRef next = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
        CFArrayAppendValue(next, outer);
        CFRelease(outer);
        outer = next;
    }
    EXPECT_EQ(CFArrayGetCount(outer), 1);
    CFRelease(outer);
}

TEST(References, AreCountedAcrossThreads) {
    const Owned list = ReadBytes("<array><string>x</string></array>");
    const void *item = CFArrayGetValueAtIndex(static_cast<CFArrayRef>(list.get()), 0);
    const auto work = [&] {
        for (int i = 0; i < 1000; ++i) {
            CFRelease(CFRetain(item));
            ReadBytes("{ k = <*BY>; }");
            CFSTR("from two threads");
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(Describe(list.get()), "[\"x\"]");
}

TEST(Equality, LooksThroughContainers) {
    const Owned one = ReadBytes("{ a = (<*R1>, <00>); b = x; }");
    EXPECT_TRUE(CFEqual(one.get(), ReadBytes("{ b = x; a = (<*R1>, <00>); }").get()));
    for (const char *other : {"{ a = (<*R1>, <01>); b = x; }", "{ a = (<*I1>, <00>); b = x; }",
                              "{ a = (<*R1>, <00>); c = x; }", "{}", "()", ""})
        EXPECT_FALSE(CFEqual(one.get(), ReadBytes(other).get())) << other;
}

// The standard library has a calendar of its own.
TEST(Calendar, AgreesWithTheStandardLibraryOnEveryDay) {
    using std::chrono::days, std::chrono::sys_days, std::chrono::year_month_day;
    const sys_days first{std::chrono::year(2001) / 1 / 1};
    for (int64_t day = -1'000'000; day <= 1'000'000; ++day) {
        const year_month_day expected{first + days(day)};
        const core_foundation::CivilDate date = core_foundation::CivilFromDays(day);
        const std::chrono::month month(static_cast<unsigned>(date.month));
        ASSERT_EQ(std::chrono::year(static_cast<int>(date.year)) / month / date.day, expected) << day;
        ASSERT_EQ(core_foundation::DaysFromCivil(date), day);
    }
}

TEST(Calendar, SplitsAMomentAndBoundsThoseWithoutAYear) {
    const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(-0.25, nullptr);
    EXPECT_EQ(std::tuple(date.year, date.month, date.day, date.hour, date.minute, date.second),
              std::tuple(2000, 12, 31, 23, 59, 59.75));
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_GT(CFAbsoluteTimeGetGregorianDate(kInfinity, nullptr).year, 2'000'000'000);
    EXPECT_LT(CFAbsoluteTimeGetGregorianDate(-1e300, nullptr).year, -2'000'000'000);
    EXPECT_EQ(CFAbsoluteTimeGetGregorianDate(std::nan(""), nullptr).year, 2001);
}

}  // namespace
