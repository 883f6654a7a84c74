// The book catalogue, switched on: this program has a setting of its own, with a folder on a drive that each
// test makes. It also defines the system calls that change files, to make them fail.
#include "content/book_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "content/book_scan.h"
#include "content/plist_values.h"
#include "tests/content/epub_files.h"
#include "tests/driver/copy_fixture.h"
#include "tests/support/archive_files.h"
#include "tests/support/property_list_xml.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int32_t kPdf = 6;
constexpr int32_t kEpub = 7;

std::string EntryXml(const XmlEntries &entries) {
    std::string xml = "<dict>";
    for (const XmlEntry &entry : entries)
        xml += XmlLine(entry, 1);
    return xml + "</dict>";
}

std::string IdEntry(int64_t id) {
    return EntryXml({{"itemId", XmlInteger(id)}});
}

// A text for each entry: its keys in their order, with texts and numbers.
std::string Describe(CFTypeRef value) {
    if (!IsDictionary(value)) {
        std::string room;
        return std::string(PlistText(value, 0, room).value_or(""));
    }
    const auto dictionary = static_cast<CFDictionaryRef>(value);
    std::vector<const void *> keys(static_cast<size_t>(CFDictionaryGetCount(dictionary)));
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), nullptr);
    std::map<std::string, std::string> texts;
    for (const void *key : keys)
        texts[Describe(key)] = Describe(CFDictionaryGetValue(dictionary, key));
    std::string text;
    for (const auto &[key, described] : texts)
        text += (text.empty() ? "{" : ", ") + key + " " + described;
    return text + "}";
}

struct CatalogueFixture : CopyFixture {
    ScopedEnvironment drives{"WINEPREFIX", (folder.path() / "wine").string()};
    const fs::path catalogue = folder.path() / "wine/dosdevices/k:/Books";
    DriverPath *books = AddRoot("book", node_category::kBook, node_subcategory::kBook);

    CatalogueFixture() { fs::create_directories(catalogue); }

    void WriteCatalogue(const std::string &entries) const {
        WriteRoot("<dict><key>Kept</key><true/><key>Books</key><array>" + entries + "</array></dict>");
    }
    void WriteRoot(const std::string &root) const {
        std::ofstream(catalogue / "Books.plist") << kPropertyListHead << root << kPropertyListTail;
    }
    // The path of a file in the form of the driver.
    std::string File(const std::string &name, const std::string &bytes) const {
        return BackslashPath(folder.Write(name, bytes));
    }
    std::vector<std::string> Entries() const {
        const CFOwner root = ReadPropertyListFile(GetBookCataloguePath());
        std::vector<std::string> entries;
        const void *list = PlistValue(root.get(), "Books");
        for (CFIndex i = 0; IsArray(list) && i < CFArrayGetCount(static_cast<CFArrayRef>(list)); ++i)
            entries.push_back(Describe(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(list), i)));
        return entries;
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(catalogue))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
};

std::string Book(const XmlEntries &metadata = {}) {
    Files files = Epub("p.opf", Package("<dc:title>Found</dc:title>", ""));
    if (!metadata.empty())
        files["iTunesMetadata.plist"] =
            std::string(kPropertyListHead) + EntryXml(metadata) + std::string(kPropertyListTail);
    return Archive(files);
}

std::string SizeOf(const std::string &bytes) {
    return std::to_string(bytes.size());
}

TEST(BookCatalogue, GivesABookWithoutIdTheNextOne) {
    CatalogueFixture fixture;
    fixture.WriteCatalogue(IdEntry(7) + "<string>odd</string>" + IdEntry(3));
    const std::string book = Book();
    EXPECT_EQ(AddToBookCatalogue(fixture.File("a.epub", book), kEpub), 0);
    EXPECT_EQ(AddToBookCatalogue(fixture.File("b.epub", book), kEpub), 0);
    const std::string size = "{asset-info {file-size " + SizeOf(book) + "}, itemId ";
    EXPECT_THAT(fixture.Entries(),
                ElementsAre("{itemId 7}", "odd", "{itemId 3}", size + "8, path K:\\Books\\8.epub}",
                            size + "9, path K:\\Books\\9.epub}"));
    EXPECT_THAT(fixture.Names(), ElementsAre("8.epub", "9.epub", "Books.plist"));
    EXPECT_TRUE(fs::exists(fixture.catalogue / "9.epub/META-INF/container.xml"));
    EXPECT_TRUE(fs::exists(fixture.folder.path() / "a.epub"));
    EXPECT_THAT(ReadWholeFile(fixture.catalogue / "Books.plist"), testing::StartsWith("bplist"));
    const CFOwner root = ReadPropertyListFile(GetBookCataloguePath());
    EXPECT_EQ(Describe(PlistValue(root.get(), "Kept")), "true");
}

TEST(BookCatalogue, KeepsWhatABookSaysOfItselfAndRefusesItTwice) {
    CatalogueFixture fixture;
    fixture.WriteCatalogue("");
    const XmlEntries metadata = {
        {"itemId", XmlInteger(900)},
        {"itemName", XmlText("Name")},
        {"asset-info", EntryXml({{"file-size", XmlInteger(5)}, {"flavor", XmlText("x")}})}};
    const std::string path = fixture.File("a.epub", Book(metadata));
    EXPECT_EQ(AddToBookCatalogue(path, kEpub), 0);
    const auto before = FolderContents(fixture.catalogue);
    EXPECT_EQ(AddToBookCatalogue(path, kEpub), -5);
    EXPECT_EQ(FolderContents(fixture.catalogue), before);
    EXPECT_THAT(fixture.Entries(),
                ElementsAre("{asset-info {file-size 5, flavor x}, itemId 900, itemName Name, path "
                            "K:\\Books\\900.epub}"));
    EXPECT_TRUE(fs::exists(fixture.folder.path() / "a.epub"));
    // An entry of the number 0 stands in the way of every book without one, and the first number is 1.
    fixture.WriteCatalogue(IdEntry(0));
    EXPECT_EQ(AddToBookCatalogue(fixture.File("b.epub", Book()), kEpub), -5);
    fixture.WriteCatalogue(IdEntry(-3));
    EXPECT_EQ(AddToBookCatalogue(fixture.File("b.epub", Book()), kEpub), 0);
    EXPECT_TRUE(fs::exists(fixture.catalogue / "1.epub"));
}

TEST(BookCatalogue, KnowsAFileByItsBytes) {
    CatalogueFixture fixture;
    fixture.WriteCatalogue("");
    const std::string first = fixture.File("a.pdf", "abc");
    EXPECT_EQ(ComputeBookDigest(first), "900150983CD24FB0D6963F7D28E17F72");
    EXPECT_EQ(AddToBookCatalogue(first, kPdf), 0);
    EXPECT_THAT(fixture.Entries(),
                ElementsAre("{BKGeneratedItemId 900150983CD24FB0D6963F7D28E17F72, path " + first + "}"));
    EXPECT_EQ(AddToBookCatalogue(fixture.File("b.pdf", "abc"), kPdf), -5);
    EXPECT_FALSE(fs::exists(fixture.folder.path() / "b.pdf"));
    EXPECT_TRUE(fs::exists(fixture.folder.path() / "a.pdf"));
    fixture.WriteCatalogue(EntryXml({{"BKGeneratedItemId", XmlText("900150983cd24fb0d6963f7d28e17f72")}}));
    EXPECT_EQ(AddToBookCatalogue(first, kPdf), -5);
    EXPECT_FALSE(fs::exists(fixture.folder.path() / "a.pdf"));
}

TEST(BookCatalogue, TellsWhyABookIsNotEntered) {
    CatalogueFixture fixture;
    const std::string pdf = fixture.File("a.pdf", "abc");
    EXPECT_EQ(AddToBookCatalogue(pdf, kPdf), -1);
    EXPECT_EQ(LoadBookCatalogue(fixture.books), -2);
    EXPECT_THAT(fixture.Names(), IsEmpty());
    fixture.WriteRoot("<array/>");
    EXPECT_EQ(AddToBookCatalogue(pdf, kPdf), -1);
    EXPECT_EQ(LoadBookCatalogue(fixture.books), -2);
    for (const char *root : {"<dict/>", "<dict><key>Books</key><dict/></dict>"}) {
        fixture.WriteRoot(root);
        EXPECT_EQ(AddToBookCatalogue(pdf, kPdf), -2);
        EXPECT_EQ(LoadBookCatalogue(fixture.books), 0);
    }
    fixture.WriteCatalogue("");
    EXPECT_EQ(AddToBookCatalogue(pdf + "x", kPdf), -3);
    EXPECT_EQ(AddToBookCatalogue(pdf, kEpub), -4);
    EXPECT_THAT(fixture.Entries(), IsEmpty());
}

TEST(BookCatalogue, NeverUnpacksOutOfItsFolder) {
    CatalogueFixture fixture;
    fixture.WriteCatalogue("");
    Files files = Epub("p.opf", "");
    files["../../Books.plist"] = "gone";
    EXPECT_EQ(AddToBookCatalogue(fixture.File("a.epub", Archive(files)), kEpub), 0);
    EXPECT_EQ(fixture.Entries().size(), 1u);
    EXPECT_THAT(fixture.Names(), testing::IsSubsetOf({"1.epub", "Books.plist"}));
}

TEST(BookCatalogue, ListsItsBooksAtAScan) {
    CatalogueFixture fixture;
    for (const auto &[name, bytes] : Epub("p.opf", Package("<dc:title>Folder</dc:title>", "")))
        fixture.folder.Write("wine/dosdevices/k:/Books/4.epub/" + name, bytes);
    const std::string pdf = fixture.File("a.pdf", "abc");
    const auto size = EntryXml({{"file-size", XmlInteger(12345678901)}});
    fixture.WriteCatalogue(EntryXml({{"path", XmlText("K:\\Books\\4.epub")}, {"asset-info", size}}) +
                           EntryXml({{"path", XmlText(pdf)}}) + EntryXml({{"path", XmlText("K:\\x.mp3")}}) +
                           EntryXml({{"path", XmlInteger(1)}}) + "<string>x.pdf</string>");
    EXPECT_EQ(ScanBooks(&fixture.driver), 0);
    ASSERT_EQ(ChildCount(fixture.books), 2);
    const DriverPath *folder = FindChild(fixture.books, "4.epub");
    ASSERT_NE(folder, nullptr);
    EXPECT_THAT(AttributeLines(folder),
                testing::IsSupersetOf({"is_directory=true", "name=Folder", "location=K:\\Books\\4.epub",
                                       "st_size=12345678901"}));
    EXPECT_EQ(FindAttribute(FindChild(fixture.books, "a.pdf"), "st_size"), "3");
}

TEST(BookCatalogue, TakesTheCopiesThatAreBooks) {
    CatalogueFixture fixture;
    fixture.WriteCatalogue("");
    const std::string book = Book();
    const std::string epub = fixture.folder.Write("source/b.epub", book).string();
    const std::string pdf = fixture.folder.Write("source/b.pdf", "abc").string();
    const std::string song = fixture.folder.Write("source/b.mp3", "abcd").string();
    const auto copy = [&](const char *place, const std::string &file, int32_t answer = 0) {
        fixture.answers = {0, answer};
        fixture.TakeFile(file.c_str(), static_cast<int64_t>(fs::file_size(file)));
        StartPathCopy(&fixture.driver, 0, CopyFixture::Report, &fixture, 2);
        return CopyDriverPath(&fixture.driver, 0, place, &fixture.source);
    };
    EXPECT_EQ(copy("library/book", epub, 2), 2);  // stopped
    EXPECT_THAT(fixture.Entries(), IsEmpty());
    EXPECT_EQ(copy("LIBRARY/Books/x", epub), 0);
    EXPECT_EQ(copy("library/book", pdf), 0);
    EXPECT_EQ(copy("library/music", song), 0);
    EXPECT_EQ(copy("library/music", pdf), 0);  // known by now
    EXPECT_THAT(fixture.Entries(), ElementsAre(testing::HasSubstr("path K:\\Books\\1.epub"),
                                               testing::HasSubstr("path K:\\Books\\b.pdf")));
    EXPECT_THAT(fixture.Names(), ElementsAre("1.epub", "Books.plist", "b.pdf"));
    EXPECT_EQ(fixture.Files(), (std::map<std::string, std::string>{{"b.mp3", "abcd"}}));
    EXPECT_TRUE(fs::exists(fixture.folder.path() / "temp/b.epub"));
}

TEST(BookCatalogue, IsWholeOrCompleteAfterAFaultAtAnyCall) {
    for (const int32_t type : {kPdf, kEpub}) {
        std::string before;
        std::string after;
        int kept = 0;
        bool hit = true;
        // Without a fault at first.
        for (int call = 0; hit; ++call) {
            CatalogueFixture fixture;
            fixture.WriteCatalogue(IdEntry(7));
            fixture.folder.Write("wine/dosdevices/k:/Books/kept", "");
            before = ReadWholeFile(fixture.catalogue / "Books.plist");
            const std::string path = fixture.folder.Write("wine/dosdevices/k:/Books/b", Book()).string();
            {
                const FaultInjection injection({}, call);
                AddToBookCatalogue("K:\\Books\\b", type);
                hit = call == 0 || injection.WasHit();
            }
            const std::string bytes = ReadWholeFile(fixture.catalogue / "Books.plist");
            if (call == 0) after = bytes;
            EXPECT_TRUE(bytes == before || bytes == after) << "type " << type << ", call " << call;
            kept += bytes == before;
            EXPECT_THAT(fixture.Names(), testing::IsSubsetOf({"8.epub", "Books.plist", "b", "kept"}));
        }
        EXPECT_NE(before, after);
        EXPECT_GE(kept, 4) << "the faults do not reach the calls";
    }
}

}  // namespace
