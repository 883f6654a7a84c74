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

TEST(PlistValueText, GivesEachTypeItsText) {
    const CollectedLog log;
    const struct {
        const char *value;
        std::optional<std::string> text;
        int32_t flags = 0;
    } rows[] = {{"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
                {"<integer>9223372036854775808</integer>", std::nullopt},
                {"<integer>7</integer>", "7", kTextIsLocation},
                {"<real>3</real>", "3"},
                {"<real>3.5</real>", std::nullopt},
                {"<string>a%20&#38; b</string>", "a%20& b"},
                {"<string></string>", std::nullopt},
                {"<string></string>", std::nullopt, kTextIsLocation},
                {"<string>file:///a%20b</string>", "a b", kTextIsLocation},
                {"<true/>", "true"},
                {"<false/>", "false"},
                {"<data>AAEC/w==</data>", "AAEC/w=="},
                {"<data></data>", ""},
                {"<array/>", std::nullopt}};
    for (const auto &row : rows)
        EXPECT_EQ(PlistValueText(Parse(row.value).get(), "k", row.flags), row.text) << row.value;
    EXPECT_EQ(log.Last(), "Ignore data type <" + std::to_string(CFArrayGetTypeID()) + ">\n");
    const CFOwner list = Parse("<true/>");
    EXPECT_EQ(PlistValueText(list.get(), "absent", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(list.get(), nullptr, 0), std::nullopt);
    EXPECT_EQ(PlistValueText(nullptr, "k", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(kCFBooleanTrue, "k", 0), std::nullopt);
    EXPECT_EQ(log.Lines().size(), 1u);
}

TEST(PlistValueText, TakesTheUtcFieldsOfADateAsLocalTime) {
    for (const char *zone : {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "PST8PDT,M3.2.0,M11.1.0"}) {
        const ScopedZone environment(zone);
        for (const int month : {1, 7}) {
            std::tm local = {};
            local.tm_year = 113;
            local.tm_mon = month - 1;
            local.tm_mday = 4;
            local.tm_hour = 10;
            local.tm_min = 20;
            local.tm_sec = 30;
            const CFOwner list = Parse("<date>2013-0" + std::to_string(month) + "-04T10:20:30Z</date>");
            EXPECT_EQ(PlistValueText(list.get(), "k", 0), std::to_string(std::mktime(&local))) << zone;
        }
        EXPECT_EQ(PlistValueText(Parse("<date>1960-01-01T00:00:00Z</date>").get(), "k", 0), "-1") << zone;
    }
}

TEST(LocationUrlToPath, DecodesUrlsByteByByte) {
    const std::pair<const char *, const char *> rows[] = {
        {"file://localhost/C:/My%20Music/a.mp3", "C:/My Music/a.mp3"},
        {"file:///C:/My%20Music/a.mp3", "C:/My Music/a.mp3"},
        {"file://server/a", "file://server/a"},
        {"FILE:///a", "FILE:///a"},
        {"file:////volume/a", "/volume/a"},
        {"%C3%A9%c3%A9%FF%0f", "\xC3\xA9\xC3\xA9\xFF\x0F"},
        {"100%%25", "100%25"},
        {"a%%", "a%"},
        {"a%", "a"},
        {"a%4", "a"},
        {"a%zzb", "a"},  // a byte 0 ends the text for every reader
        {"a%00b", "a"},
        {"a%4zc",
         "a\x04"
         "c"},
        {"", ""}};
    for (const auto &[url, path] : rows)
        EXPECT_EQ(LocationUrlToPath(url), path);
}

TEST(WritePropertyListFile, SaysWhenTheFileCannotBeOpened) {
    const TempFolder folder;
    const CFOwner list = Parse("<string>x</string>");
    EXPECT_EQ(
        WritePropertyListFile(folder.path() / "none/l.plist", list.get(), kCFPropertyListXMLFormat_v1_0), -2);
    ASSERT_EQ(WritePropertyListFile(folder.path() / "l.plist", list.get(), kCFPropertyListXMLFormat_v1_0), 0);
    EXPECT_EQ(PlistValueText(ReadPropertyListFile(folder.path() / "l.plist").get(), "k", 0), "x");
    EXPECT_EQ(ReadPropertyListFile(folder.path() / "absent"), nullptr);
    EXPECT_EQ(ReadPropertyListFile(folder.Write("text", "<plist><dict>").string()), nullptr);
}

}  // namespace
