#include "content/plist_values.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "content/location_url.h"
#include "platform/windows/windows_api.h"
#include "tests/support/collected_log.h"
#include "tests/support/property_list_xml.h"
#include "tests/support/scoped_zone.h"
#include "tests/support/temp_folder.h"

namespace {

CFOwner Parse(const std::string &value) {
    const TempFolder folder;
    const std::string xml = std::string(kPropertyListHead) + "<dict><key>k</key>" + value + "</dict>" +
                            std::string(kPropertyListTail);
    return ReadPropertyListFile(folder.Write("list.plist", xml).string());
}

std::optional<std::string> TextOf(const std::string &value, int32_t flags = 0) {
    const CFOwner list = Parse(value);
    EXPECT_TRUE(IsDictionary(list.get())) << value;
    return PlistValueText(list.get(), "k", flags);
}

TEST(PlistValueText, GivesEachTypeItsText) {
    EXPECT_EQ(TextOf("<integer>0</integer>"), "0");
    EXPECT_EQ(TextOf("<integer>-9223372036854775808</integer>"), "-9223372036854775808");
    EXPECT_EQ(TextOf("<integer>9223372036854775808</integer>"), std::nullopt) << "beyond signed 64 bits";
    EXPECT_EQ(TextOf("<real>3</real>"), "3");
    EXPECT_EQ(TextOf("<real>3.5</real>"), std::nullopt);
    EXPECT_EQ(TextOf("<string>a &#38; b</string>"), "a & b");
    EXPECT_EQ(TextOf("<string></string>"), std::nullopt);
    EXPECT_EQ(TextOf("<string></string>", kTextIsLocation), std::nullopt);
    EXPECT_EQ(TextOf("<string>file:///a%20b</string>", kTextIsLocation), "a b");
    EXPECT_EQ(TextOf("<integer>7</integer>", kTextIsLocation), "7");
    EXPECT_EQ(TextOf("<true/>"), "true");
    EXPECT_EQ(TextOf("<false/>"), "false");
    EXPECT_EQ(TextOf("<data>AAEC/w==</data>"), "AAEC/w==");
    EXPECT_EQ(TextOf("<data></data>"), "")
        << "data without bytes has a text, unlike a string without letters";
}

TEST(PlistValueText, AnyOtherTypeIsLoggedAndHasNoText) {
    const CollectedLog log;
    EXPECT_EQ(TextOf("<array/>"), std::nullopt);
    EXPECT_EQ(log.Last(), "Ignore data type <" + std::to_string(CFArrayGetTypeID()) + ">\n");
    EXPECT_EQ(TextOf("<dict/>"), std::nullopt);
    EXPECT_EQ(log.Lines().size(), 2u);
    const CFOwner list = Parse("<true/>");
    EXPECT_EQ(PlistValueText(list.get(), "absent", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(list.get(), nullptr, 0), std::nullopt);
    EXPECT_EQ(PlistValueText(nullptr, "k", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(kCFBooleanTrue, "k", 0), std::nullopt);
    EXPECT_EQ(log.Lines().size(), 2u);
}

TEST(DateToSeconds, TakesTheUtcFieldsAsLocalTime) {
    for (const char *zone : {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "PST8PDT,M3.2.0,M11.1.0"}) {
        const ScopedZone environment(zone);
        for (const char *month : {"01", "07"}) {
            std::tm local = {};
            local.tm_year = 113;
            local.tm_mon = std::stoi(month) - 1;
            local.tm_mday = 4;
            local.tm_hour = 10;
            local.tm_min = 20;
            local.tm_sec = 30;
            const std::string date = "<date>2013-" + std::string(month) + "-04T10:20:30Z</date>";
            EXPECT_EQ(TextOf(date), std::to_string(std::mktime(&local))) << zone;
        }
        EXPECT_EQ(TextOf("<date>1960-01-01T00:00:00Z</date>"), "-1") << zone;
    }
}

TEST(LocationUrlToPath, DecodesUrlsByteByByte) {
    EXPECT_EQ(LocationUrlToPath("file://localhost/C:/My%20Music/a.mp3"), "C:/My Music/a.mp3");
    EXPECT_EQ(LocationUrlToPath("file:///C:/My%20Music/a.mp3"), "C:/My Music/a.mp3");
    EXPECT_EQ(LocationUrlToPath("file://server/a"), "file://server/a");
    EXPECT_EQ(LocationUrlToPath("FILE:///a"), "FILE:///a");
    EXPECT_EQ(LocationUrlToPath("file:////volume/a"), "/volume/a");
    EXPECT_EQ(LocationUrlToPath("%C3%A9%c3%A9%FF"), "\xC3\xA9\xC3\xA9\xFF");
    EXPECT_EQ(LocationUrlToPath("100%%25"), "100%25");
    EXPECT_EQ(LocationUrlToPath("a%%"), "a%");
    EXPECT_EQ(LocationUrlToPath("a%"), "a");
    EXPECT_EQ(LocationUrlToPath("a%4"), "a");
    EXPECT_EQ(LocationUrlToPath("a%zzb"), "a") << "a byte 0 ends the text for every reader";
    EXPECT_EQ(LocationUrlToPath("a%00b"), "a");
    EXPECT_EQ(LocationUrlToPath("a%4zb"),
              "a\x04"
              "b");
    EXPECT_EQ(LocationUrlToPath(""), "");
}

TEST(WritePropertyListFile, SaysWhenTheFileCannotBeOpened) {
    const TempFolder folder;
    const CFOwner list = Parse("<string>x</string>");
    EXPECT_EQ(WritePropertyListFile(folder.path() / "no folder" / "list.plist", list.get(), 100), -2);
    const std::string path = folder.path() / "list.plist";
    for (const CFPropertyListFormat format :
         {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0}) {
        ASSERT_EQ(WritePropertyListFile(path, list.get(), format), 0);
        EXPECT_EQ(PlistValueText(ReadPropertyListFile(path).get(), "k", 0), "x");
    }
    EXPECT_EQ(ReadPropertyListFile(folder.path() / "absent"), nullptr);
    EXPECT_EQ(ReadPropertyListFile(folder.Write("text", "<plist><dict>").string()), nullptr);
}

}  // namespace
