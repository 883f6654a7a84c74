#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fixtures/temp_folder.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

constexpr CFPropertyListFormat kFormats[] = {kCFPropertyListOpenStepFormat, kCFPropertyListXMLFormat_v1_0,
                                             kCFPropertyListBinaryFormat_v1_0};

void ExpectKept(const Owned &list, CFPropertyListFormat format) {
    CFPropertyListFormat read_as = 0;
    const Owned copy = ReadBytes(WriteBytes(list.get(), format), &read_as);
    EXPECT_EQ(read_as, format);
    EXPECT_TRUE(CFEqual(copy.get(), list.get())) << format;
    EXPECT_EQ(Describe(copy.get()), Describe(list.get())) << format;
}

TEST(Writers, KeepTextsDataAndContainersInEveryFormat) {
    std::string all_bytes;
    for (int byte = 1; byte < 0x80; ++byte)
        all_bytes += static_cast<char>(byte);
    for (const CFPropertyListFormat format : kFormats) {
        ExpectKept(NewString(all_bytes), format);
        ExpectKept(
            ReadBytes(R"(({}, "", <>, (), { "" = "\U00e9 日本 \Ud835\Udd62"; "a b&<" = (<000102ff>); }))"),
            format);
    }
}

TEST(Writers, KeepNumbersAndDates) {
    std::string text = "<array><true/><false/>";
    for (const char *integer :
         {"0", "-1", "255", "256", "65536", "4294967296", "9223372036854775807", "-9223372036854775808",
          "18446744073709551615", "-170141183460469231731687303715884105727"})
        text += "<integer>" + std::string(integer) + "</integer>";
    for (const char *real : {"0.1", "-0", "1e300", "2", "5e-324", "inf", "-inf"})
        text += "<real>" + std::string(real) + "</real>";
    for (const char *day : {"2010-08-30", "0001-01-01", "12345-12-31", "-0044-03-15"})
        text += "<date>" + std::string(day) + "T17:46:37Z</date>";
    const Owned list = ReadBytes(text + "</array>");
    ASSERT_NE(list, nullptr);
    ExpectKept(list, kCFPropertyListXMLFormat_v1_0);
    ExpectKept(list, kCFPropertyListBinaryFormat_v1_0);
    const Owned date(CFDateCreate(kCFAllocatorDefault, -1.25));
    ExpectKept(date, kCFPropertyListBinaryFormat_v1_0);
    EXPECT_EQ(DescribeBytes(WriteBytes(date.get(), kCFPropertyListXMLFormat_v1_0)), "d-2000")
        << "the text form has whole seconds";
}

TEST(Writers, KeepLargeListsAndShareEqualStrings) {
    std::string text = "<dict>";
    for (int i = 0; i < 70'000; ++i) {
        text += "<key>k" + std::to_string(i) + "</key><string>v" + std::to_string(i % 300) + "</string>";
        if (i == 20'000) ExpectKept(ReadBytes(text + "</dict>"), kCFPropertyListOpenStepFormat);
    }
    const Owned list = ReadBytes(text + "</dict>");
    ExpectKept(list, kCFPropertyListXMLFormat_v1_0);
    ExpectKept(list, kCFPropertyListBinaryFormat_v1_0);
    EXPECT_LT(WriteBytes(list.get(), kCFPropertyListBinaryFormat_v1_0).size(), 1'600'000U);
}

TEST(Writers, LayOutTextAsTheVendorDoes) {
    const Owned list = ReadBytes("{ A = (<*I1>, ()); B = <" + Repeat("000102030405060708", 6) + ">; }");
    EXPECT_EQ(WriteBytes(list.get(), kCFPropertyListXMLFormat_v1_0),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n<dict>\n\t<key>A</key>\n\t<array>\n\t\t<integer>1</integer>\n"
              "\t\t<array/>\n\t</array>\n\t<key>B</key>\n\t<data>\n"
              "\tAAECAwQFBgcIAAECAwQFBgcIAAECAwQFBgcIAAECAwQFBgcIAAECAwQFBgcIAAECAwQF\n"
              "\tBgcI\n\t</data>\n</dict>\n</plist>\n");
    EXPECT_EQ(WriteBytes(ReadBytes("{a = (b, \"c d\"); e = <0102>;}").get(), kCFPropertyListOpenStepFormat),
              "{\n    a = (\n        b,\n        \"c d\",\n    );\n    e = <0102>;\n}\n");
}

TEST(Writers, LeaveTheTargetWhenAListCannotBeWritten) {
    const TempFolder folder;
    const std::string path = folder.Write("target.plist", "old");
    for (const char *text : {"<integer>1</integer>", "<real>1</real>", "<true/>",
                             "<date>2001-01-01T00:00:00Z</date>", "<array><string>x</string><true/></array>"})
        EXPECT_FALSE(WriteFile(path, ReadBytes(text).get(), kCFPropertyListOpenStepFormat)) << text;
    // Static, since nothing can release a cycle.
    static CFMutableArrayRef holds_itself = CFArrayCreateMutable(kCFAllocatorDefault, 0, nullptr);
    CFArrayAppendValue(holds_itself, holds_itself);
    for (const CFPropertyListFormat format : kFormats)
        EXPECT_FALSE(WriteFile(path, holds_itself, format));
    EXPECT_FALSE(WriteFile(path, ReadBytes("<true/>").get(), 17) || WriteFile(path, nullptr, kFormats[1]));
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_FALSE(WriteFile(folder.path() / "missing" / "x.plist", NewString("x").get(), kFormats[0]));
}

TEST(Streams, ReadAsMuchAsTheyAreTold) {
    const TempFolder folder;
    EXPECT_TRUE(ReadFile(folder.path() / "missing.plist") == nullptr && ReadFile(folder.path()) == nullptr);
    EXPECT_EQ(Describe(ReadFile(folder.Write("one.plist", "<true/>")).get()), "T");
    const Owned owned_stream = NewReadStream(folder.Write("two.plist", "<true/><array/>"));
    auto *stream = static_cast<CFReadStreamRef>(const_cast<void *>(owned_stream.get()));
    EXPECT_EQ(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, 0, nullptr, nullptr), nullptr);
    ASSERT_TRUE(CFReadStreamOpen(stream));
    const Owned first(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 7, 0, nullptr, nullptr));
    const Owned second(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, 0, nullptr, nullptr));
    EXPECT_EQ(Describe(first.get()) + Describe(second.get()), "T[]");
}

}  // namespace
