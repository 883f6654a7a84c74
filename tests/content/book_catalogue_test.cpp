// The book catalogue, switched on: this program has a setting of its own, with a folder on a drive that each
// test makes. It also defines the system calls that change files, to make them fail.
#include "content/book_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "content/book_scan.h"
#include "content/file_kinds.h"
#include "content/plist_values.h"
#include "fixtures/property_list_xml.h"
#include "tests/content/epub_files.h"
#include "tests/driver/copy_fixture.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

std::string EntryXml(const XmlEntries &entries) {
    std::string xml = "<dict>";
    for (const XmlEntry &entry : entries)
        xml += XmlLine(entry, 0);
    std::erase(xml, '\n');
    return xml + "</dict>";
}

struct CatalogueFixture : CopyFixture {
    ScopedEnvironment drives{"WINEPREFIX", (folder.path() / "wine").string()};
    const fs::path catalogue = folder.path() / "wine/dosdevices/k:/Books";
    DriverPath *books = AddRoot("book", node_category::kBook, node_subcategory::kBook);

    CatalogueFixture() { WriteCatalogue(""); }
    void WriteRoot(const std::string &root) const {
        folder.Write("wine/dosdevices/k:/Books/Books.plist", "<plist>" + root + "</plist>");
    }
    void WriteCatalogue(const std::string &entries) const {
        WriteRoot("<dict><key>Kept</key><true/><key>Books</key><array>" + entries + "</array></dict>");
    }
    // The path of a file in the form of the driver.
    std::string File(const std::string &name, const std::string &bytes) const {
        return BackslashPath(folder.Write(name, bytes));
    }
    // The entries as XML without white space between the elements.
    std::string Entries() const {
        const CFOwner root = ReadPropertyListFile(GetBookCataloguePath());
        EXPECT_NE(PlistValue(root.get(), "Kept"), nullptr);
        const fs::path copy = folder.path() / "copy";
        WritePropertyListFile(copy, PlistValue(root.get(), "Books"), kCFPropertyListXMLFormat_v1_0);
        std::string xml = ReadWholeFile(copy);
        std::erase_if(xml, [](char letter) { return letter == '\n' || letter == '\t'; });
        const size_t start = xml.find("<array>") + 7;
        return xml.ends_with("<array/></plist>") ? "" : xml.substr(start, xml.rfind("</array>") - start);
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(catalogue))
            names.push_back(entry.path().filename());
        return names;
    }
};

std::string IdEntry(int64_t id) {
    return EntryXml({{"itemId", XmlInteger(id)}});
}

std::string Book(const XmlEntries &metadata = {}) {
    Files files = Epub("p.opf", Package("<dc:title>Found</dc:title>", ""));
    if (!metadata.empty()) files["iTunesMetadata.plist"] = "<plist>" + EntryXml(metadata) + "</plist>";
    return Archive(files);
}

struct BookCatalogue : CatalogueFixture, testing::Test {};

TEST_F(BookCatalogue, GivesABookWithoutIdTheNextOneAndRefusesAnIdTwice) {
    const std::string others = IdEntry(7) + "<string>odd</string>" + IdEntry(3);
    WriteCatalogue(others);
    const std::string path = File("a.epub", Book());
    EXPECT_EQ(AddToBookCatalogue(path, kMediaTypeEpub), 0);
    const std::string size = EntryXml({{"file-size", XmlInteger(static_cast<int64_t>(Book().size()))}});
    const std::string added =
        EntryXml({{"asset-info", size}, {"itemId", XmlInteger(8)}, {"path", XmlText("K:\\Books\\8.epub")}});
    EXPECT_EQ(Entries(), others + added);
    EXPECT_THAT(ReadWholeFile(catalogue / "Books.plist"), testing::StartsWith("bplist"));
    EXPECT_TRUE(fs::exists(catalogue / "8.epub/META-INF/container.xml"));
    // What a book says of itself stays.
    const std::string info = EntryXml({{"file-size", XmlInteger(5)}, {"flavor", XmlText("x")}});
    XmlEntries own = {{"itemId", XmlInteger(900)}, {"asset-info", info}};
    const std::string own_path = File("b.epub", Book(own));
    own.push_back({"path", XmlText("K:\\Books\\900.epub")});
    for (const int32_t result : {0, -5}) {
        EXPECT_EQ(AddToBookCatalogue(own_path, kMediaTypeEpub), result);
        EXPECT_EQ(Entries(), others + added + EntryXml(own));
    }
    // An entry of the number 0 stands in the way of every book without one, and the first number is 1.
    WriteCatalogue(IdEntry(0));
    EXPECT_EQ(AddToBookCatalogue(path, kMediaTypeEpub), -5);
    WriteCatalogue(IdEntry(-3));
    EXPECT_EQ(AddToBookCatalogue(path, kMediaTypeEpub), 0);
    EXPECT_THAT(Names(), UnorderedElementsAre("1.epub", "8.epub", "900.epub", "Books.plist"));
    for (const char *kept : {"a.epub", "b.epub"})
        EXPECT_TRUE(fs::exists(folder.path() / kept));
}

TEST_F(BookCatalogue, KnowsAFileByItsBytes) {
    const std::string first = File("a.pdf", "abc");
    EXPECT_EQ(AddToBookCatalogue(first, kMediaTypePdf), 0);
    const std::string digest = "900150983CD24FB0D6963F7D28E17F72";
    EXPECT_EQ(Entries(), EntryXml({{"path", XmlText(first)}, {"BKGeneratedItemId", XmlText(digest)}}));
    EXPECT_EQ(AddToBookCatalogue(File("b.pdf", "abc"), kMediaTypePdf), -5);
    EXPECT_FALSE(fs::exists(folder.path() / "b.pdf"));
    EXPECT_TRUE(fs::exists(folder.path() / "a.pdf"));
    WriteCatalogue(EntryXml({{"BKGeneratedItemId", XmlText("900150983cd24fb0d6963f7d28e17f72")}}));
    EXPECT_EQ(AddToBookCatalogue(first, kMediaTypePdf), -5);
    EXPECT_FALSE(fs::exists(folder.path() / "a.pdf"));
}

TEST_F(BookCatalogue, TellsWhyABookIsNotEntered) {
    const std::string pdf = File("a.pdf", "abc");
    EXPECT_EQ(AddToBookCatalogue(pdf + "x", kMediaTypePdf), -3);
    EXPECT_EQ(AddToBookCatalogue(pdf, kMediaTypeEpub), -4);
    EXPECT_EQ(Entries(), "");
    const std::pair<const char *, int32_t> rows[] = {
        {"<array/>", -1}, {"<dict/>", -2}, {"<dict><key>Books</key><dict/></dict>", -2}};
    for (const auto &[root, result] : rows) {
        WriteRoot(root);
        EXPECT_EQ(AddToBookCatalogue(pdf, kMediaTypePdf), result);
        EXPECT_EQ(LoadBookCatalogue(books), result == -1 ? -2 : 0);
    }
    fs::remove(catalogue / "Books.plist");
    EXPECT_EQ(AddToBookCatalogue(pdf, kMediaTypePdf), -1);
    EXPECT_TRUE(fs::is_empty(catalogue));
}

TEST_F(BookCatalogue, ListsItsBooksAtAScan) {
    for (const auto &[name, bytes] : Epub("p.opf", Package("<dc:title>Folder</dc:title>", "")))
        folder.Write("wine/dosdevices/k:/Books/4.epub/" + name, bytes);
    const std::string size = EntryXml({{"file-size", XmlInteger(12345678901)}});
    WriteCatalogue(EntryXml({{"path", XmlText("K:\\Books\\4.epub")}, {"asset-info", size}}) +
                   EntryXml({{"path", XmlText(File("a.pdf", "abc"))}}) +
                   EntryXml({{"path", XmlText("K:\\x.mp3")}}) + EntryXml({{"path", XmlInteger(1)}}) +
                   "<string>x.pdf</string>");
    EXPECT_EQ(ScanBooks(&driver), 0);
    ASSERT_EQ(ChildCount(books), 2);
    EXPECT_THAT(AttributeLines(FindChild(books, "4.epub")),
                testing::IsSupersetOf({"is_directory=true", "name=Folder", "location=K:\\Books\\4.epub",
                                       "st_size=12345678901"}));
    EXPECT_EQ(FindAttribute(FindChild(books, "a.pdf"), "st_size"), "3");
}

TEST_F(BookCatalogue, TakesTheCopiesThatAreBooks) {
    const std::string epub = folder.Write("source/b.epub", Book()).string();
    const std::string pdf = folder.Write("source/b.pdf", "abc").string();
    const std::string song = folder.Write("source/b.mp3", "abcd").string();
    const auto copy = [&](const char *place, const std::string &file, int32_t answer = 0) {
        answers = {0, answer};
        TakeFile(file.c_str(), static_cast<int64_t>(fs::file_size(file)));
        return Copy(2, place);
    };
    EXPECT_EQ(copy("library/book", epub, 2), 2);  // stopped
    EXPECT_EQ(Entries(), "");
    EXPECT_EQ(copy("LIBRARY/Books/x", epub), 0);
    EXPECT_EQ(copy("library/book", pdf), 0);
    EXPECT_EQ(copy("library/music", song), 0);
    EXPECT_EQ(copy("library/music", pdf), 0);  // known by now
    EXPECT_THAT(Entries(),
                testing::ContainsRegex("K:.Books.1.epub.*K:.Books.b.pdf</string><key>BKGeneratedItemId"));
    EXPECT_THAT(Names(), UnorderedElementsAre("1.epub", "Books.plist", "b.pdf"));
    EXPECT_EQ(Files(), (std::map<std::string, std::string>{{"b.mp3", "abcd"}}));
    EXPECT_TRUE(fs::exists(folder.path() / "temp/b.epub"));
}

TEST_F(BookCatalogue, IsWholeOrCompleteAfterAFaultAtAnyCall) {
    for (const int32_t type : {kMediaTypePdf, kMediaTypeEpub}) {
        std::string after;
        int kept = 0;
        bool hit = true;
        // Without a fault at first.
        for (int call = 0; hit; ++call) {
            CatalogueFixture fixture;
            const fs::path list = fixture.catalogue / "Books.plist";
            const std::string before = ReadWholeFile(list);
            fixture.folder.Write("wine/dosdevices/k:/Books/b", Book());
            {
                const FaultInjection injection({}, call);
                AddToBookCatalogue("K:\\Books\\b", type);
                hit = call == 0 || injection.WasHit();
            }
            if (call == 0) after = ReadWholeFile(list);
            EXPECT_THAT(ReadWholeFile(list), testing::AnyOf(before, after)) << "call " << call;
            EXPECT_NE(before, after);
            kept += ReadWholeFile(list) == before;
            EXPECT_THAT(fixture.Names(), testing::IsSubsetOf({"1.epub", "Books.plist", "b"}));
        }
        EXPECT_GE(kept, 4) << "the faults do not reach the calls";
    }
}

}  // namespace
