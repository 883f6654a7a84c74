#include "content/plist_values.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "content/location_url.h"
#include "fixtures/property_list_xml.h"
#include "fixtures/scoped_zone.h"
#include "fixtures/temp_folder.h"
#include "tests/support/collected_log.h"

namespace {

CFOwner Parse(const std::string &value) {
    const TempFolder folder;
    const std::string xml = std::string(kPropertyListHead) + "<dict><key>k</key>" + value + "</dict>" +
                            std::string(kPropertyListTail);
    return ReadPropertyListFile(folder.Write("list.plist", xml).string());
}

TEST(PlistValueText, GivesEachTypeItsText) {
    const CollectedLog log;
    const std::pair<const char *, std::optional<std::string>> rows[] = {
        {"<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"<integer>9223372036854775808</integer>", {}},
        {"<real>3</real>", "3"},
        {"<real>3.5</real>", {}},
        {"<string>file:///a%20&#38;b</string>", "file:///a%20&b"},
        {"<string></string>", {}},
        {"<true/>", "true"},
        {"<false/>", "false"},
        {"<data>AAEC/w==</data>", "AAEC/w=="},
        {"<data></data>", ""},
        {"<array/>", {}}};
    for (const auto &[value, text] : rows)
        EXPECT_EQ(PlistValueText(Parse(value).get(), "k", 0), text) << value;
    const auto location = [](const char *value) {
        return PlistValueText(Parse(value).get(), "k", kTextIsLocation);
    };
    EXPECT_EQ(location("<integer>7</integer>"), "7");
    EXPECT_EQ(location("<string></string>"), std::nullopt);
    EXPECT_EQ(location("<string>file:///a%20&#38;b</string>"), "a &b");
    EXPECT_EQ(log.Last(), "Ignore data type <" + std::to_string(CFArrayGetTypeID()) + ">\n");
    const CFOwner list = Parse("<true/>");
    EXPECT_EQ(PlistValueText(list.get(), "absent", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(list.get(), nullptr, 0), std::nullopt);
    EXPECT_EQ(PlistValueText(nullptr, "k", 0), std::nullopt);
    EXPECT_EQ(PlistValueText(kCFBooleanTrue, "k", 0), std::nullopt);
    EXPECT_EQ(log.Lines().size(), 1u);
}

TEST(PlistValueText, TakesTheUtcFieldsOfADateAsLocalStandardTime) {
    const auto text = [](const char *date) { return PlistValueText(Parse(date).get(), "k", 0); };
    const std::pair<const char *, int> rows[] = {
        {"UTC0", 0}, {"CET-1CEST,M3.5.0,M10.5.0/3", -3600}, {"PST8PDT,M3.2.0,M11.1.0", 8 * 3600}};
    for (const auto &[zone, west] : rows) {
        const ScopedZone environment(zone);
        EXPECT_EQ(text("<date>2013-01-04T10:20:30Z</date>"), std::to_string(1357294830 + west)) << zone;
        EXPECT_EQ(text("<date>2013-07-04T10:20:30Z</date>"), std::to_string(1372933230 + west)) << zone;
        EXPECT_EQ(text("<date>1960-01-01T00:00:00Z</date>"), "-1") << zone;
    }
}

// More of them are compared with a slow reading by the fuzzer of paths.
TEST(LocationUrlToPath, DecodesUrlsByteByByte) {
    EXPECT_EQ(LocationUrlToPath("file://localhost/C:/My%20Music/a"), "C:/My Music/a");
    EXPECT_EQ(LocationUrlToPath("file:///%C3%A9%c3%a9%FF%0f%%25"), "\xC3\xA9\xC3\xA9\xFF\x0F%25");
    for (const char *url : {"file://server/a", "FILE:///a", "/volume/a", ""})
        EXPECT_EQ(LocationUrlToPath(url), url);
    // A byte 0 ends the text for every reader, and so does an escape that is cut off.
    for (const char *url : {"a", "a%", "a%4", "a%zzb", "a%00b"})
        EXPECT_EQ(LocationUrlToPath(url), "a") << url;
    EXPECT_EQ(LocationUrlToPath("a%%"), "a%");
    EXPECT_EQ(LocationUrlToPath("a%4z-"), "a\x04-");
}

TEST(PropertyListFiles, ThatCannotBeOpenedOrReadGiveNothing) {
    const TempFolder folder;
    EXPECT_EQ(WritePropertyListFile(folder.path() / "none/l", kCFBooleanTrue, kCFPropertyListXMLFormat_v1_0),
              -2);
    EXPECT_EQ(ReadPropertyListFile(folder.path() / "absent"), nullptr);
    EXPECT_EQ(ReadPropertyListFile(folder.Write("text", "<plist><dict>").string()), nullptr);
}

}  // namespace
