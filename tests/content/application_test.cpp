#include "content/application.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "content/app_info.h"
#include "fixtures/property_list_xml.h"
#include "platform/limits.h"
#include "tests/content/media_tree.h"

namespace {

using testing::ElementsAre;
using Texts = std::map<std::string, std::string>;

std::string Plist(const Texts &texts) {
    std::string xml = std::string(kPropertyListHead) + "<dict>";
    for (const auto &[key, text] : texts)
        xml += XmlLine({key, XmlText(text)}, 1);
    return xml + "</dict>" + std::string(kPropertyListTail);
}

const std::string kBundle = Plist(
    {{"CFBundleIdentifier", "com.b"}, {"CFBundleDisplayName", "Bundle"}, {"CFBundleIconFile", "Icon.png"}});
const std::string kMetadata = Plist({{"softwareVersionBundleId", "com.m"},
                                     {"bundleDisplayName", "Metadata"},
                                     {"bundleVersion", "1.2"},
                                     {"genre", "Games"},
                                     {"softwareIcon57x57URL", "http://x/i.png"}});
const std::string kInfoEntry = "Payload/A.app/Info.plist";
const std::string kIconEntry = "Payload/A.app/Icon.png";
const std::string kMetadataEntry = "iTunesMetadata.plist";

struct LocalApp : MediaTree, testing::Test {
    // English, so that no name is taken from a language file.
    ScopedEnvironment english{"LANGUAGE", "en"};
    DriverPath *apps = AddRoot("app", node_category::kApplication, node_subcategory::kApplication);

    DriverPath *Add(const Texts &files) {
        Write("a.ipa", Archive(files));
        EXPECT_EQ(AddLocalApp(apps, Location("a.ipa")), 0);
        return ChildAt(apps, ChildCount(apps) - 1);
    }
    // Name, `icon_image`, `is_artwork` and `st_size` of the icon.
    std::string NameAndIcon(const Texts &files) {
        DriverPath *app = Add(files);
        std::string text(*FindAttribute(app, "name"));
        if (ChildCount(app) == 0) return text;
        for (const char *key : {"icon_image", "is_artwork", "st_size"})
            text.append("|").append(*FindAttribute(FindChild(ChildAt(app, 0), "small"), key));
        return text;
    }
};

TEST_F(LocalApp, TellsWhatTheArchiveTells) {
    const Texts files = {{kInfoEntry, kBundle}, {kMetadataEntry, kMetadata}, {"iTunesArtwork", "picture"}};
    DriverPath *app = Add(files);
    const std::string location = "location=" + Location("a.ipa");
    EXPECT_EQ(TreeText(app, "app"),
              "app 2 6 60 st_size=" + std::to_string(Archive(files).size()) + " " + location +
                  " bundleId=com.m bundleVersion=1.2 media_has_thumb=true name=Metadata genre=Games\n" +
                  "app/thumb 1 4 43 " + location + "\napp/thumb/small 4 4 44 thumb_type=png " + location +
                  " icon_image=iTunesArtwork is_ipa=true is_artwork=true st_size=7\n");
    EXPECT_EQ(app->from_folder_scan, 1);
    // A document that says nothing leaves out what it has no value for.
    EXPECT_THAT(AttributeLines(Add({{kInfoEntry, "a = b;"}})),
                ElementsAre(testing::_, location, "media_has_thumb=false", "name=a.ipa"));
}

TEST_F(LocalApp, TakesEachFieldFromTheFirstThatHasIt) {
    const std::string far(limits::kEntryPathBytes.value + 1 - kIconEntry.size() + 8, 'i');
    const std::pair<Texts, std::string> rows[] = {
        {{{kInfoEntry, kBundle}, {"payload/a.APP/icon.PNG", "12345"}}, "Bundle|" + kIconEntry + "|true|5"},
        {{{kInfoEntry, kBundle}, {kMetadataEntry, kMetadata}, {kIconEntry, "1"}},
         "Metadata|http://x/i.png|false|1"},
        {{{kInfoEntry, kBundle}, {kMetadataEntry, "damaged <"}, {"ITUNESARTWORK@2x", "12"}},
         "Bundle|iTunesArtwork|true|2"},
        {{{kInfoEntry, Plist({{"CFBundleDisplayName", "Without identifier"}})}}, "a.ipa"},
        {{{kInfoEntry, Plist({{"CFBundleIdentifier", "x"}, {"CFBundleIconFile", far}})},
          {"Payload/A.app/" + far, "1"}},
         "a.ipa"}};
    for (const auto &[files, shown] : rows)
        EXPECT_EQ(NameAndIcon(files), shown);
}

TEST_F(LocalApp, TakesTheNameInTheFirstLanguage) {
    Texts files = {{kInfoEntry, kBundle}};
    for (const char *language : {"zh-Hant", "zh-Hans", "en", "de", "de_AT", "x*"})
        files["Payload/A.app/" + std::string(language) + ".lproj/InfoPlist.strings"] =
            "\"CFBundleDisplayName\" = \"" + std::string(language) + "\";";
    files["Payload/A.app/es.lproj/InfoPlist.strings"] = "\"CFBundleName\" = \"other key\";";
    std::string names;
    for (const char *language :
         {"zh_TW.UTF-8", "ZH_hk", "zh_CN", "de_AT.UTF-8@euro", "de:en", "en_US", "es", "x*", "d[e]", "("}) {
        const ScopedEnvironment first("LANGUAGE", language);
        names += NameAndIcon(files) + " ";
    }
    EXPECT_EQ(names, "zh-Hant zh-Hant zh-Hans de_AT de Bundle Bundle x* Bundle Bundle ");
}

TEST_F(LocalApp, IsRefusedWhereItIsNone) {
    AppInfo info;
    info.genre = "untouched";
    const auto read = [&](const std::string &bytes) {
        return ReadAppInfo(folder.Write("a.ipa", bytes).string(), info);
    };
    ZipBuilderEntry encrypted = DeflatedEntry(kInfoEntry, kBundle);
    encrypted.flags = 1;
    const std::string largest = kBundle + std::string(limits::kEntryListBytes.value - kBundle.size(), ' ');
    EXPECT_EQ(ReadAppInfo((folder.path() / "gone.ipa").string(), info), -1);
    EXPECT_EQ(read(Archive({{"Info.plist", kBundle}, {"Payload/A/B/Info.plist", kBundle}})), -3);
    EXPECT_EQ(read(Archive({{kInfoEntry, "<array/>"}})), -4);
    EXPECT_EQ(read(Archive({{kInfoEntry, largest + " "}})), -4);
    EXPECT_EQ(read(BuildZip({encrypted})), -4);
    EXPECT_EQ(info.genre, "untouched");
    EXPECT_EQ(read(Archive({{kInfoEntry, largest}})), 0);
    // An icon that nobody could ever read is none.
    ZipBuilderEntry artwork = StoredEntry("iTunesArtwork", "x");
    artwork.claimed_size = static_cast<uint32_t>(limits::kZipEntryBytes.value) + 1;
    EXPECT_EQ(read(BuildZip({artwork, DeflatedEntry(kInfoEntry, kBundle)})), 0);
    EXPECT_EQ(info.icon, std::nullopt);
}

}  // namespace
