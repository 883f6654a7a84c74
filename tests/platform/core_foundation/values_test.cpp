#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/core_foundation/core_foundation.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

CFDictionaryRef AsDictionary(const Owned &list) {
    return static_cast<CFDictionaryRef>(list.get());
}

TEST(Strings, HaveTheirUtf8AtHand) {
    const Owned list =
        ReadBytes("<array><string>plain</string><string>a&amp;b</string><string>é日𝕢\xFF</string></array>");
    const auto array = static_cast<CFArrayRef>(list.get());
    const auto string = [&](CFIndex index) {
        return static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, index));
    };
    EXPECT_STREQ(CFStringGetCStringPtr(string(0), kCFStringEncodingUTF8), "plain");
    EXPECT_STREQ(CFStringGetCStringPtr(string(1), kCFStringEncodingUTF8), "a&b");
    EXPECT_EQ(CFStringGetCStringPtr(string(0), 0), nullptr);
    EXPECT_EQ(CFStringGetLength(string(0)), 5);
    EXPECT_EQ(CFStringGetLength(string(2)), 1 + 1 + 2 + 1)
        << "UTF-16 units, and one for a byte that is not UTF-8";
    std::array<char, 6> buffer = {};
    EXPECT_FALSE(CFStringGetCString(string(0), buffer.data(), 5, kCFStringEncodingUTF8));
    EXPECT_TRUE(CFStringGetCString(string(0), buffer.data(), 6, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer.data(), "plain");
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 3), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, -1), nullptr);
}

TEST(Strings, FitTheMaximumSizeWhateverTheirBytes) {
    for (const char *text :
         {"", "abc", "\xFF\xFF\x80\x80", "\xF0\x9D\x95\xA2", "\xE6\x97\xA5", "\xC0\x80\xED\xA0\x80\xF5"}) {
        const Owned owned = NewString(text);
        const auto string = static_cast<CFStringRef>(owned.get());
        const CFIndex size =
            CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
        std::string buffer(static_cast<size_t>(size), '?');
        EXPECT_TRUE(CFStringGetCString(string, buffer.data(), size, kCFStringEncodingUTF8));
        EXPECT_STREQ(buffer.c_str(), text);
    }
}

TEST(Strings, AreOneForEachLiteral) {
    EXPECT_EQ(CFSTR("same"), CFSTR("same"));
    EXPECT_NE(CFSTR("same"), CFSTR("other"));
    CFRelease(CFSTR("same"));  // NOLINT(clang-analyzer-osx.cocoa.RetainCount): one too many, on purpose
    EXPECT_STREQ(CFStringGetCStringPtr(CFSTR("same"), kCFStringEncodingUTF8), "same");
}

TEST(Numbers, GiveWholeSigned64BitValuesOnly) {
    const auto read = [](const std::string &text) {
        const Owned number = ReadBytes(text);
        SInt64 value = -99;
        return CFNumberGetValue(static_cast<CFNumberRef>(number.get()), kCFNumberSInt64Type, &value)
                   ? std::to_string(value)
                   : "none" + std::string(value == -99 ? "" : ", but written");
    };
    EXPECT_EQ(read("<integer>-5</integer>"), "-5");
    EXPECT_EQ(read("<real>7.0</real>"), "7");
    EXPECT_EQ(read("<real>-9223372036854775808</real>"), "-9223372036854775808");
    EXPECT_EQ(read("<real>9223372036854775808</real>"), "none");
    EXPECT_EQ(read("<real>2.5</real>"), "none");
    EXPECT_EQ(read("<real>nan</real>"), "none");
    EXPECT_EQ(read("<real>inf</real>"), "none");
    EXPECT_EQ(read("<integer>9223372036854775808</integer>"), "none");
}

TEST(Numbers, ConvertToOtherTypes) {
    const SInt64 large = SInt64{1} << 40;
    const Owned number(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &large));
    SInt32 narrow = 0;
    double real = 0;
    EXPECT_FALSE(CFNumberGetValue(static_cast<CFNumberRef>(number.get()), kCFNumberSInt32Type, &narrow));
    EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(number.get()), kCFNumberDoubleType, &real));
    EXPECT_EQ(real, std::ldexp(1, 40));
    EXPECT_FALSE(CFNumberIsFloatType(static_cast<CFNumberRef>(number.get())));
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, 99, &large), nullptr);
}

TEST(Types, AreToldApart) {
    const Owned list = ReadBytes(
        "<array><string/><integer>1</integer><true/><date>2001-01-01T00:00:00Z</date><data/><array/><dict/></"
        "array>");
    const std::vector<CFTypeID> ids = {CFStringGetTypeID(),    CFNumberGetTypeID(), CFBooleanGetTypeID(),
                                       CFDateGetTypeID(),      CFDataGetTypeID(),   CFArrayGetTypeID(),
                                       CFDictionaryGetTypeID()};
    for (size_t i = 0; i < ids.size(); ++i) {
        const auto index = static_cast<CFIndex>(i);
        EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(list.get()), index)), ids[i]);
        for (size_t j = 0; j < i; ++j)
            EXPECT_NE(ids[i], ids[j]);
    }
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
}

TEST(Data, IsReplacedInPlaceAndWritten) {
    const Owned list = ReadBytes("<dict><key>d</key><data>AAECAwQ=</data></dict>");
    const auto data = static_cast<CFDataRef>(CFDictionaryGetValue(AsDictionary(list), CFSTR("d")));
    const auto replace = [&](CFIndex location, CFIndex length, const std::string &bytes) {
        CFDataReplaceBytes(const_cast<CFMutableDataRef>(data), CFRangeMake(location, length),
                           reinterpret_cast<const UInt8 *>(bytes.data()), static_cast<CFIndex>(bytes.size()));
        return Describe(ReadBytes(WriteBytes(list.get(), kCFPropertyListXMLFormat_v1_0)).get());
    };
    EXPECT_EQ(replace(4, 1, "\x01"), "{\"d\":<0001020301>}");
    EXPECT_EQ(replace(5, 1, "x"), "{\"d\":<0001020301>}") << "out of range";
    EXPECT_EQ(replace(1, 3, ""), "{\"d\":<0001>}");
    EXPECT_EQ(replace(1, 0, "abcdefgh"), "{\"d\":<00616263646566676801>}");
    EXPECT_EQ(CFDataGetLength(data), 10);
    std::array<UInt8, 2> bytes = {};
    CFDataGetBytes(data, CFRangeMake(8, 2), bytes.data());
    EXPECT_EQ(bytes[0], 'h');
    CFDataGetBytes(data, CFRangeMake(9, 2), bytes.data());
    EXPECT_EQ(bytes[0], 'h') << "a range beyond the end copies nothing";
}

TEST(Data, OfItsOwnGrows) {
    const Owned owned(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("abc"), 3));
    auto *data = const_cast<CFMutableDataRef>(static_cast<CFDataRef>(owned.get()));
    CFDataReplaceBytes(data, CFRangeMake(1, 1), CFDataGetBytePtr(data), 3);
    EXPECT_EQ(Describe(owned.get()), "<6161626363>") << "its own bytes are a source like any other";
}

TEST(Dictionaries, ListPairsInTheOrderOfTheFile) {
    const Owned list =
        ReadBytes("<dict><key>b</key><integer>1</integer><key>a</key><integer>2</integer></dict>");
    std::array<const void *, 2> keys = {}, values = {};
    CFDictionaryGetKeysAndValues(AsDictionary(list), keys.data(), values.data());
    EXPECT_EQ(Describe(keys[0]) + Describe(values[0]) + Describe(keys[1]) + Describe(values[1]),
              "\"b\"i1\"a\"i2");
    EXPECT_EQ(CFDictionaryGetValue(AsDictionary(list), CFSTR("a")), values[1]);
    CFDictionaryGetKeysAndValues(AsDictionary(list), nullptr, values.data());
    CFDictionaryGetKeysAndValues(AsDictionary(list), keys.data(), nullptr);
}

// Large dictionaries are searched by an index, or by halves where the keys ascend.
TEST(Dictionaries, FindEveryKeyOfAnySizeAndOrder) {
    const auto mixed = [](int i) {
        return std::string(static_cast<size_t>(i % 20), 'k') + std::to_string(i);
    };
    const auto ascending = [](int i) { return std::to_string(2 * i + 1); };
    const auto late_descent = [](int i) { return i == 900 ? "0" : std::to_string(2 * i + 1); };
    for (const std::function<std::string(int)> &key :
         {std::function<std::string(int)>(mixed), std::function<std::string(int)>(ascending),
          std::function<std::string(int)>(late_descent)}) {
        for (const int count : {0, 1, 63, 64, 65, 66, 1000}) {
            std::string text = "<dict>";
            for (int i = 0; i < count; ++i) {
                text += "<key>" + key(i) + "</key><integer>" + std::to_string(i) + "</integer>";
            }
            const Owned list = ReadBytes(text + "</dict>");
            ASSERT_EQ(CFDictionaryGetCount(AsDictionary(list)), count);
            for (int i = 0; i < count; ++i) {
                const void *value = CFDictionaryGetValue(AsDictionary(list), NewString(key(i)).get());
                ASSERT_EQ(Describe(value), "i" + std::to_string(i)) << count;
            }
            for (const char *absent : {"", "2", "absent", "99999999"}) {
                EXPECT_EQ(CFDictionaryGetValue(AsDictionary(list), NewString(absent).get()), nullptr);
            }
        }
    }
}

TEST(MutableDictionaries, AddOnlyWhatIsAbsent) {
    const Owned list =
        ReadBytes("<dict><key>a</key><integer>1</integer><key>b</key><integer>2</integer></dict>");
    CFMutableDictionaryRef copy = CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, AsDictionary(list));
    const Owned owner(copy);
    CFDictionaryAddValue(copy, CFSTR("a"), kCFBooleanTrue);
    CFDictionaryAddValue(copy, CFSTR("c"), kCFBooleanTrue);
    EXPECT_EQ(Describe(copy), "{\"a\":i1,\"b\":i2,\"c\":T}");
    CFDictionaryRemoveValue(copy, CFSTR("a"));
    CFDictionaryRemoveValue(copy, CFSTR("absent"));
    CFDictionaryAddValue(copy, CFSTR("a"), kCFBooleanFalse);
    EXPECT_EQ(Describe(copy), "{\"b\":i2,\"c\":T,\"a\":F}");
    EXPECT_EQ(CFDictionaryGetCount(copy), 3);
    std::array<const void *, 3> keys = {}, values = {};
    CFDictionaryGetKeysAndValues(copy, keys.data(), values.data());
    EXPECT_EQ(Describe(keys[2]) + Describe(values[2]), "\"a\"F");
    CFDictionaryAddValue(const_cast<CFMutableDictionaryRef>(AsDictionary(list)), CFSTR("z"), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetCount(AsDictionary(list)), 2) << "a list that was read does not change";
}

// Under AddressSanitizer a document that dies too early or never is a failure of this test.
TEST(References, KeepTheDocumentOfARetainedValue) {
    Owned list = ReadBytes(
        "<dict><key>books</key><array><dict><key>path</key><string>x</string></dict></array></dict>");
    const void *books = CFDictionaryGetValue(AsDictionary(list), CFSTR("books"));
    CFMutableArrayRef copy = CFArrayCreateMutableCopy(kCFAllocatorDefault, 0, static_cast<CFArrayRef>(books));
    const Owned owner(copy);
    list.reset();
    CFArrayAppendValue(copy, kCFBooleanTrue);
    CFArrayAppendValue(copy, NewString("of a caller").get());
    EXPECT_EQ(Describe(copy), R"([{"path":"x"},T,"of a caller"])");
    const void *entry = CFRetain(CFArrayGetValueAtIndex(copy, 0));
    EXPECT_EQ(Describe(entry), "{\"path\":\"x\"}");
    CFRelease(entry);
    CFRelease(
        nullptr);  // NOLINT(clang-analyzer-osx.coreFoundation.CFRetainRelease): harmless in this library
    EXPECT_EQ(CFRetain(nullptr), nullptr);
}

TEST(References, LetDocumentsMeetInOneList) {
    CFMutableDictionaryRef root = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    const Owned owner(root);
    for (const char *key : {"one", "two", "three"}) {
        const Owned list = ReadBytes("<dict><key>" + std::string(key) + "</key><true/></dict>");
        CFDictionaryAddValue(root, NewString(key).get(), list.get());
    }
    EXPECT_EQ(Describe(root), R"({"one":{"one":T},"two":{"two":T},"three":{"three":T}})");
    EXPECT_EQ(DescribeBytes(WriteBytes(root, kCFPropertyListBinaryFormat_v1_0)), Describe(root));
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
            ReadBytes("<dict><key>k</key><true/></dict>");
            CFSTR("from two threads");
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(Describe(list.get()), "[\"x\"]");
}

TEST(Equality, LooksThroughContainers) {
    const std::string text =
        "<dict><key>a</key><array><real>1</real><data>AA==</data></array><key>b</key><true/></dict>";
    const Owned list = ReadBytes(text);
    EXPECT_TRUE(CFEqual(list.get(), ReadBytes(text).get()));
    EXPECT_TRUE(CFEqual(list.get(), ReadBytes("<dict><key>b</key><true/><key>a</key><array><real>1</real>"
                                              "<data>AA==</data></array></dict>")
                                        .get()));
    for (const char *other :
         {"<dict/>", "<array/>",
          "<dict><key>a</key><array><real>1</real><data>AQ==</data></array><key>b</key><true/></dict>",
          "<dict><key>a</key><array><integer>1</integer><data>AA==</data></array><key>b</key><true/></dict>",
          "<dict><key>a</key><array><real>1</real><data>AA==</data></array><key>c</key><true/></dict>"}) {
        EXPECT_FALSE(CFEqual(list.get(), ReadBytes(other).get())) << other;
    }
    EXPECT_FALSE(CFEqual(list.get(), nullptr));
}

}  // namespace
