#include "content/application.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "content/app_info.h"
#include "content/application_scan.h"
#include "content/plist_values.h"
#include "driver/scanned_entries.h"
#include "tests/content/media_tree.h"
#include "tests/support/property_list_xml.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Files = std::map<std::string, std::string>;
using Texts = std::map<std::string, std::string>;

std::string XmlPlist(const Texts &texts) {
    std::string xml = std::string(kPropertyListHead) + "<dict>";
    for (const auto &[key, text] : texts)
        xml += XmlLine({key, XmlText(text)}, 1);
    return xml + "</dict>" + std::string(kPropertyListTail);
}

std::string BinaryPlist(const Texts &texts) {
    const TempFolder folder;
    const std::string path = folder.Write("p", XmlPlist(texts)).string();
    const CFOwner plist = ReadPropertyListFile(path);
    EXPECT_EQ(WritePropertyListFile(path, plist.get(), kCFPropertyListBinaryFormat_v1_0), 0);
    return ReadWholeFile(path);
}

std::string OldPlist(const Texts &texts) {
    std::string text = "/* names */\n";
    for (const auto &[key, value] : texts)
        text += "\"" + key + "\" = \"" + value + "\";\n";
    return text;
}

const Texts kBundle = {
    {"CFBundleIdentifier", "com.b"}, {"CFBundleDisplayName", "Bundle"}, {"CFBundleIconFile", "Icon.png"}};
const Texts kMetadata = {{"softwareVersionBundleId", "com.m"},
                         {"bundleDisplayName", "Metadata"},
                         {"bundleVersion", "1.2"},
                         {"genre", "Games"},
                         {"softwareIcon57x57URL", "http://x/i.png"}};
const std::string kInfoEntry = "Payload/A.app/Info.plist";

struct AppTree : MediaTree {
    // English, so that no name is taken from a language file.
    ScopedEnvironment language{"LANGUAGE", "en"};
    DriverPath *apps = AddRoot("app", node_category::kApplication, node_subcategory::kApplication);

    DriverPath *Add(const Files &files) {
        Write("a.ipa", Archive(files));
        const int32_t count = ChildCount(apps);
        EXPECT_EQ(AddLocalApp(apps, Location("a.ipa")), 0);
        return ChildAt(apps, count);
    }
    // Name, `icon_image`, `is_artwork` and `st_size` of the icon.
    std::vector<std::string> NameAndIcon(const Files &files) {
        DriverPath *app = Add(files);
        if (app == nullptr) return {};
        std::vector<std::string> texts = {std::string(FindAttribute(app, "name").value_or("none"))};
        DriverPath *thumb = FindChild(app, "thumb");
        EXPECT_EQ(FindAttribute(app, "media_has_thumb"), thumb == nullptr ? "false" : "true");
        for (const char *key : {"icon_image", "is_artwork", "st_size"}) {
            if (thumb != nullptr) texts.emplace_back(*FindAttribute(FindChild(thumb, "small"), key));
        }
        return texts;
    }
};

TEST(AddLocalApp, TellsWhatTheArchiveTells) {
    AppTree tree;
    const Files files = {{kInfoEntry, XmlPlist(kBundle)},
                         {"iTunesMetadata.plist", BinaryPlist(kMetadata)},
                         {"iTunesArtwork", "picture"}};
    DriverPath *app = tree.Add(files);
    ASSERT_NE(app, nullptr);
    const std::string location = "location=" + tree.Location("a.ipa");
    EXPECT_THAT(AttributeLines(app),
                ElementsAre("st_size=" + std::to_string(Archive(files).size()), location, "bundleId=com.m",
                            "bundleVersion=1.2", "media_has_thumb=true", "name=Metadata", "genre=Games"));
    DriverPath *thumb = FindChild(app, "thumb");
    EXPECT_THAT(AttributeLines(thumb), ElementsAre(location));
    EXPECT_THAT(AttributeLines(FindChild(thumb, "small")),
                ElementsAre("thumb_type=png", location, "icon_image=iTunesArtwork", "is_ipa=true",
                            "is_artwork=true", "st_size=7"));
    EXPECT_EQ(app->kind, 2);
    EXPECT_EQ(app->subcategory, 60);
    EXPECT_EQ(thumb->subcategory, 43);
    EXPECT_EQ(app->from_folder_scan, 1);
    // A document that says nothing leaves out what it has no value for.
    EXPECT_THAT(AttributeLines(tree.Add({{kInfoEntry, OldPlist({{"a", "b"}})}})),
                ElementsAre(testing::_, location, "media_has_thumb=false", "name=a.ipa"));
}

TEST(AddLocalApp, TakesEachFieldFromTheFirstThatHasIt) {
    AppTree tree;
    const std::string bundle = XmlPlist(kBundle);
    const std::string metadata = XmlPlist(kMetadata);
    const std::string icon = "Payload/A.app/Icon.png";
    EXPECT_THAT(tree.NameAndIcon({{kInfoEntry, bundle}, {"payload/a.APP/icon.PNG", "12345"}}),
                ElementsAre("Bundle", icon, "true", "5"));
    EXPECT_THAT(tree.NameAndIcon({{kInfoEntry, bundle}, {"iTunesMetadata.plist", metadata}, {icon, "1"}}),
                ElementsAre("Metadata", "http://x/i.png", "false", "1"));
    EXPECT_THAT(
        tree.NameAndIcon(
            {{kInfoEntry, bundle}, {"iTunesMetadata.plist", "damaged <"}, {"ITUNESARTWORK@2x", "12"}}),
        ElementsAre("Bundle", "iTunesArtwork", "true", "2"));
    EXPECT_THAT(tree.NameAndIcon({{kInfoEntry, bundle}}), ElementsAre("Bundle"));
    EXPECT_THAT(tree.NameAndIcon({{kInfoEntry, XmlPlist({{"CFBundleDisplayName", "Unnamed"}})}}),
                ElementsAre("a.ipa"));
    const std::string far_icon = std::string(260, 'i');
    EXPECT_THAT(tree.NameAndIcon(
                    {{kInfoEntry, XmlPlist({{"CFBundleIdentifier", "x"}, {"CFBundleIconFile", far_icon}})},
                     {"Payload/A.app/" + far_icon, "1"}}),
                ElementsAre("a.ipa"));
    const std::string numbers = std::string(kPropertyListHead) +
                                "<dict><key>CFBundleIdentifier</key><integer>1</integer></dict></plist>";
    EXPECT_THAT(tree.NameAndIcon({{kInfoEntry, numbers}}), ElementsAre("a.ipa"));
}

TEST(AddLocalApp, TakesTheNameInTheFirstLanguage) {
    AppTree tree;
    Files files = {{kInfoEntry, XmlPlist(kBundle)}, {"iTunesMetadata.plist", XmlPlist(kMetadata)}};
    for (const char *folder : {"zh-Hant", "zh-Hans", "en", "de", "de_AT", "x*"}) {
        files["Payload/A.app/" + std::string(folder) + ".lproj/InfoPlist.strings"] =
            OldPlist({{"CFBundleDisplayName", folder}});
    }
    // UTF-16, as the programs of the vendor write it.
    const std::string utf16 = "\xFF\xFE" + Utf16Bytes(OldPlist({{"CFBundleDisplayName", "fran\u00e7ais"}}));
    files["Payload/A.app/fr.lproj/InfoPlist.strings"] = utf16;
    files["Payload/A.app/it.lproj/InfoPlist.strings"] = BinaryPlist({{"CFBundleDisplayName", "italiano"}});
    files["Payload/A.app/es.lproj/InfoPlist.strings"] = OldPlist({{"CFBundleName", "other key"}});
    const std::vector<std::pair<std::string, std::string>> rows = {{"zh_TW.UTF-8", "zh-Hant"},
                                                                   {"ZH_hk", "zh-Hant"},
                                                                   {"zh_CN", "zh-Hans"},
                                                                   {"de_AT.UTF-8@euro", "de_AT"},
                                                                   {"de:en", "de"},
                                                                   {"en_US", "Metadata"},
                                                                   {"fr", "fran\u00e7ais"},
                                                                   {"it", "italiano"},
                                                                   {"es", "Metadata"},
                                                                   {"x*", "x*"},
                                                                   {"d[e]", "Metadata"},
                                                                   {"(", "Metadata"}};
    for (const auto &[language, name] : rows) {
        const ScopedEnvironment first("LANGUAGE", language);
        EXPECT_EQ(tree.NameAndIcon(files).at(0), name) << language;
    }
}

TEST(ReadAppInfo, RefusesWhatIsNoApplication) {
    const TempFolder folder;
    AppInfo info;
    info.genre = "untouched";
    const auto read = [&](const std::string &bytes) {
        return ReadAppInfo(folder.Write("a.ipa", bytes).string(), info);
    };
    const std::string bundle = XmlPlist(kBundle);
    EXPECT_EQ(ReadAppInfo((folder.path() / "gone.ipa").string(), info), -1);
    EXPECT_EQ(read("no archive"), -1);
    EXPECT_EQ(read(Archive({{"Info.plist", bundle}, {"Payload/A/B/Info.plist", bundle}})), -3);
    EXPECT_EQ(read(Archive({{kInfoEntry, "<array/>"}})), -4);
    EXPECT_EQ(read(Archive({{kInfoEntry, ""}})), -4);
    // Larger than any real one once it is unpacked.
    EXPECT_EQ(read(Archive({{kInfoEntry, bundle + std::string(5 << 20, ' ')}})), -4);
    ZipBuilderEntry encrypted = DeflatedEntry(kInfoEntry, bundle);
    encrypted.flags = 1;
    EXPECT_EQ(read(BuildZip({encrypted})), -4);
    EXPECT_EQ(info.genre, "untouched");
    // An icon that nobody could ever read is none.
    ZipBuilderEntry artwork = StoredEntry("iTunesArtwork", "x");
    artwork.claimed_size = 0xFFFFFFF0;
    EXPECT_EQ(read(BuildZip({artwork, DeflatedEntry(kInfoEntry, bundle)})), 0);
    EXPECT_EQ(info.icon, std::nullopt);
}

TEST(ScanApps, TriesEveryFileOfTheFolderAndListsTheSameAgain) {
    MediaTree tree;
    EXPECT_EQ(ScanApps(&tree.driver), 0);
    DriverPath *apps = tree.At({"app"});
    ASSERT_NE(apps, nullptr);
    DriverPath *known = tree.AddTrack("7", "");
    AddAttribute(known, "location",
                 (tree.folder.path() / "media/Mobile Applications/Known.IPA").string().c_str());
    BareTree::Hold(apps, "7.ipa", known);
    const std::string archive = Archive({{kInfoEntry, XmlPlist(kBundle)}});
    for (const char *name : {"known.ipa", "one.ipa", "two.zip", "sub/three.ipa"})
        tree.Write(std::string("Mobile Applications/") + name, archive);
    tree.Write("Mobile Applications/four.ipa", "no archive");
    EXPECT_EQ(ScanApps(&tree.driver), 0);
    const std::string first = TreeText(apps, "app");
    EXPECT_EQ(ChildCount(apps), 3) << first;
    EXPECT_NE(tree.At({"app", "one.ipa"}), nullptr);
    ASSERT_NE(tree.At({"app", "two.zip"}), nullptr);
    EXPECT_EQ(tree.At({"app", "two.zip"})->subcategory, 0);
    RemoveScannedEntries(&tree.driver);
    EXPECT_EQ(ScanApps(&tree.driver), 0);
    EXPECT_EQ(TreeText(apps, "app"), first);
}

}  // namespace
