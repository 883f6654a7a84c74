#include "content/book.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "content/book_scan.h"
#include "content/text_file.h"
#include "platform/limits.h"
#include "tests/content/captured_log.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"
#include "tests/support/scoped_zone.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

std::string Titled(const std::string &title, const std::string &manifest = "") {
    return Package("<dc:title>" + title + "</dc:title>", manifest);
}

struct BookTree : MediaTree {
    DriverPath *books = AddRoot("Books", node_category::kBook, node_subcategory::kBook);
    CapturedLog log;

    void WriteFolder(const std::string &name, const Files &files) const {
        for (const auto &[file, content] : files)
            Write(name + "/" + file, content);
    }
    void Add(const std::string &name, const Files &files) const { Write("Books/" + name, Archive(files)); }
    // The cover of a book that is added now; "none" without one.
    std::string CoverOf(const std::string &name) {
        DriverPath *book = nullptr;
        if (AddLocalBook(books, Location(name), &book) != 0) return "not added";
        return std::string(FindAttribute(FindChild(book, "thumb"), "cover-image-path").value_or("none"));
    }
    // Every bad book is listed under the name of its file, and a good one with what it says.
    void ScanWithGoodBook() {
        Add("good.epub", Epub("o/p.opf", Titled("Good", CoverItemXml("c.png", ""))));
        ASSERT_EQ(ScanBooks(&driver), 0);
        EXPECT_EQ(FindAttribute(At({"Books", "good.epub"}), "name"), "Good");
        EXPECT_EQ(FindAttribute(At({"Books", "good.epub", "thumb"}), "cover-image-path"), "o\\c.png");
    }
    void ExpectBare(const std::string &name) {
        DriverPath *book = At({"Books", name});
        ASSERT_NE(book, nullptr) << name;
        EXPECT_EQ(FindAttribute(book, "name"), name.substr(0, name.rfind('.')));
        EXPECT_FALSE(FindAttribute(FindChild(book, "thumb"), "cover-image-path")) << name;
    }
};

// A book whose package document lies in "OEBPS", and further files.
Files InOebps(const std::string &manifest, Files more = {}) {
    more.merge(Epub("OEBPS/p.opf", Package("", manifest)));
    return more;
}

// One whose cover is a page.
Files WithPage(const std::string &page) {
    return InOebps(CoverItemXml("t/c.xhtml", "Application/xhtml+XML"), {{"OEBPS/t/c.xhtml", page}});
}

struct CoverCase {
    Files files;
    std::string of_file;
    std::string of_folder;  // below the book
    size_t log_lines = 0;
    size_t more_of_file = 0;  // lines that only the archive gives
};

std::vector<CoverCase> CoverCases() {
    const std::string fits(limits::kEntryPathBytes.value - 6, 'x');
    const std::string page_item = CoverItemXml("t/c.xhtml", "Application/xhtml+XML");
    return {
        {InOebps(CoverItemXml("i/c.jpg", "image/jpeg")), "OEBPS\\i/c.jpg", "OEBPS\\i\\c.jpg"},
        {InOebps("<item id='cover' href='c'/>"), "OEBPS\\c", "OEBPS\\c"},
        {Epub("p.opf", Package("", CoverItemXml("c.jpg", "image/jpeg"))), "c.jpg", "c.jpg"},
        {InOebps("<item id='Cover' href='1'/><item href='2'/><item id='cover'/>" + CoverItemXml("4", "") +
                 CoverItemXml("5", "")),
         "OEBPS\\4", "OEBPS\\4"},
        {InOebps(CoverItemXml("../c.jpg", "")), "OEBPS\\../c.jpg", "OEBPS\\..\\c.jpg"},
        {InOebps(CoverItemXml("a/../../../c.jpg", "")), "OEBPS\\a/../../../c.jpg", "none"},
        {InOebps(CoverItemXml(fits, "")), "OEBPS\\" + fits, "OEBPS\\" + fits},
        {InOebps(CoverItemXml(fits + "x", "")), "none", "OEBPS\\" + fits + "x", 0, 1},
        {WithPage(Page("<p><img src='../i/c.png'/></p>")), "OEBPS\\..\\i\\c.png", "OEBPS\\..\\i\\c.png"},
        {WithPage(Page("<p/><div><img src='c'/></div>")), "OEBPS\\c", "OEBPS\\c", 1},
        {WithPage(Page("<p/>")), "none", "none", 2},
        {WithPage(Page("<p><img src=''/></p><div><img src='c'/></div>")), "none", "none"},
        {WithPage("<html>"), "none", "none", 1},
        {InOebps(page_item), "none", "OEBPS\\t\\c.xhtml"},
        {InOebps(page_item, {{"iTunesArtwork", "x"}}), "iTunesArtwork", "iTunesArtwork"},
        {Epub("p.opf", "<o:package><manifest/></o:package>"), "none", "none", 1},
        {Epub("p.opf", "<package>"), "none", "none", 1},
        {{{"META-INF/container.xml", Container("p.opf")}}, "none", "none"},
        {{{"a", "b"}}, "none", "none"},
    };
}

TEST(AddLocalBook, FindsTheCoverOfBothForms) {
    for (const CoverCase &book : CoverCases()) {
        SCOPED_TRACE(testing::PrintToString(book.files));
        BookTree tree;
        tree.Write("file.epub", Archive(book.files));
        tree.WriteFolder("folder.epub", book.files);
        EXPECT_EQ(tree.CoverOf("file.epub"), book.of_file);
        EXPECT_EQ(tree.log.lines().size(), book.log_lines + book.more_of_file);
        const std::string folder = book.of_folder == "none" ? "" : tree.Location("folder.epub") + "\\";
        EXPECT_EQ(tree.CoverOf("folder.epub"), folder + book.of_folder);
        EXPECT_EQ(tree.log.lines().size(), 2 * book.log_lines + book.more_of_file);
    }
}

TEST(AddLocalBook, TellsWhatThePackageAndTheFileTell) {
    const ScopedZone zone("UTC");
    BookTree tree;
    Files files =
        Epub("a/b.opf", Package("<dc:title> A &amp; B\n</dc:title><dc:creator>C</dc:creator><title>no"
                                "</title><dc:creator>D</dc:creator><dc:subject>S</dc:subject>"
                                "<dc:date>April</dc:date><dc:date>1970-01-02</dc:date>"
                                "<dc:publisher>P</dc:publisher>",
                                CoverItemXml("c.png", "")));
    files["itunesARTWORK"] = "picture";
    tree.Write("file.epub", Archive(files));
    tree.WriteFolder("folder.epub", files);
    DriverPath *book = nullptr;
    ASSERT_EQ(AddLocalBook(tree.books, tree.Location("file.epub"), &book), 0);
    EXPECT_EQ(book->from_folder_scan, 1);
    const std::string location = "location=" + tree.Location("file.epub");
    EXPECT_THAT(AttributeLines(book),
                ElementsAre("st_size=" + std::to_string(Archive(files).size()), location,
                            "media_has_thumb=true", "format=EPUB", "name= A & B\n", "artist=C", "artist=D",
                            "subject=S", "st_mtime=86400", "album=P"));
    EXPECT_THAT(AttributeLines(FindChild(book, "thumb")),
                ElementsAre(location, "cover-image-path=iTunesArtwork"));

    ASSERT_EQ(AddLocalBook(tree.books, tree.Location("folder.epub"), &book), 0);
    EXPECT_EQ(AttributeLines(book)[0], "is_directory=true");
    EXPECT_EQ(FindAttribute(book, "album"), "P");
    EXPECT_EQ(AttributeLines(FindChild(book, "thumb"))[0], "is_directory=true");
    // Of all that was extracted only folders are left.
    for (const auto &entry : fs::recursive_directory_iterator(tree.folder.path() / "temp"))
        EXPECT_TRUE(entry.is_directory()) << entry.path();

    tree.Write("My.Paper.PDF", "%PDF");
    ASSERT_EQ(AddLocalBook(tree.books, tree.Location("My.Paper.PDF"), &book), 0);
    EXPECT_THAT(AttributeLines(book), ElementsAre("st_size=4", "location=" + tree.Location("My.Paper.PDF"),
                                                  "media_has_thumb=true", "format=PDF", "name=My.Paper"));
    tree.Write("b.txt", "x");
    EXPECT_EQ(AddLocalBook(tree.books, tree.Location("b.txt")), -2);
    EXPECT_EQ(AddLocalBook(tree.books, tree.Location("gone.epub")), -3);
    EXPECT_EQ(ChildCount(tree.books), 3);
}

TEST(HostileEpub, DocumentsThatNestOrSwellWithoutEndAreNotRead) {
    BookTree tree;
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<package>";
    const std::string huge(70 << 20, ' ');
    const std::pair<Limit, std::pair<std::string, Files>> books[] = {
        {limits::kXmlDepth, {"1.epub", {{"META-INF/container.xml", deep}}}},
        {limits::kXmlDepth, {"2.epub", Epub("p.opf", deep)}},
        {limits::kZipExpansion, {"3.epub", {{"META-INF/container.xml", huge}}}},
        {limits::kZipExpansion, {"4.epub", Epub("p.opf", Titled("H" + huge))}}};
    std::vector<std::string> lines;
    const auto expect_limit = [&](const Limit &limit, const std::string &name) {
        lines.push_back("[iTunes] More than " + std::to_string(limit.value) + " " + limit.name + ": \"" +
                        tree.Location("Books\\" + name) + "\"");
    };
    for (const auto &[limit, book] : books) {
        tree.Add(book.first, book.second);
        expect_limit(limit, book.first);
    }
    expect_limit(limits::kXmlDepth, "folder.epub");
    tree.WriteFolder("Books/folder.epub", {{"META-INF/container.xml", deep}});
    tree.Write("Books/no archive.epub", "PK\3\4");
    tree.Write("Books/empty.epub", "");
    tree.ScanWithGoodBook();
    EXPECT_EQ(AddLocalBook(tree.books, tree.Location("Books\\folder.epub")), 0);
    for (const char *name :
         {"1.epub", "2.epub", "3.epub", "4.epub", "folder.epub", "no archive.epub", "empty.epub"})
        tree.ExpectBare(name);
    std::vector<std::string> logged = tree.log.lines();
    std::erase_if(logged, [](const std::string &line) { return line.starts_with("Failed to parse xml"); });
    EXPECT_EQ(logged.size() + 1, tree.log.lines().size());
    EXPECT_THAT(logged, testing::UnorderedElementsAreArray(lines));
}

// An archive may hold entries of such names; the temporary copy that the book speaks of lies elsewhere.
TEST(HostileEpub, NoDocumentOutsideOfTheTemporaryFolderIsReadWrittenOrDeleted) {
    BookTree tree;
    const std::string victim = Titled("Victim", CoverItemXml("v", ""));
    const fs::path &top = tree.folder.path();
    tree.folder.Write("temp/victim", victim);
    tree.folder.Write("victim", victim);
    const std::string names[] = {"../victim",
                                 "..\\victim",
                                 "x/../../../victim",
                                 (top / "victim").string(),
                                 "../vict.m",
                                 ".*",
                                 ".",
                                 "..",
                                 "/",
                                 "",
                                 "(a+)+$",
                                 "victim&#0;"};
    std::vector<std::string> books = {"page.epub", "linked.epub"};
    for (const std::string &name : names) {
        Files files = {{"META-INF/container.xml", Container(name)}, {name, Titled("E")}};
        files.emplace(std::string(50, 'a') + "b", "x");
        // As a pattern, "../victim" matches this one, which has its place.
        files.emplace("ab/victim", Titled("E"));
        files.erase("");
        books.push_back("bad" + std::to_string(books.size()) + ".epub");
        tree.Add(books.back(), files);
    }
    tree.Add("page.epub", Epub("p.opf", Package("", CoverItemXml("../victim", "application/xhtml+xml"))));
    // Folders below the temporary one that someone else has put there.
    tree.folder.Write("elsewhere/META-INF/container.xml", "untouched");
    fs::create_directory_symlink(top / "elsewhere", top / "temp/linked.epub");
    tree.Add("linked.epub", Epub("p.opf", Titled("L")));
    tree.ScanWithGoodBook();
    for (const std::string &name : books)
        tree.ExpectBare(name);
    for (const char *name : {"victim", "temp/victim"})
        EXPECT_EQ(ReadWholeFile(top / name), victim);
    EXPECT_EQ(ReadWholeFile(top / "elsewhere/META-INF/container.xml"), "untouched");
    EXPECT_EQ(std::distance(fs::directory_iterator(top), {}), 4);
}

TEST(ReadTextFileAsUtf8, GoesByTheByteOrderMark) {
    const TempFolder folder;
    using namespace std::string_literals;
    const std::string longest(limits::kTextFileBytes.value, 'x');
    const struct {
        std::string bytes;
        int32_t result;
        std::string text;
    } rows[] = {{"\xFF\xFE\xE9\0x"s, 0, "\xC3\xA9"},
                {"\xFE\xFF\0\xE9\xD8\x3D\xDE\0\0\0\0x"s, 0, "\xC3\xA9\xF0\x9F\x98\x80"},
                {"\xFF\xFE\0\xD8"s, -3, ""},
                {"\xEF\xBB\xBF\xC3", 0, "\xC3"},
                {"\xEF\xBB", -2, ""},
                {"\xEF\xBBx", -2, ""},
                {"\xEF\xBB\xBF", -3, ""},
                {"", -3, ""},
                {"\xC3\xA9", 0, "\xC3\xA9"},
                {"\xE9", 0, "\xE9"},
                {longest, 0, longest},
                {longest + "x", -3, ""}};
    for (const auto &row : rows) {
        std::string text;
        const std::string path = folder.Write("t", row.bytes).string();
        EXPECT_EQ(ReadTextFileAsUtf8(path, text), row.result) << row.bytes.substr(0, 9);
        EXPECT_TRUE(text == row.text) << row.bytes.substr(0, 9);
    }
    std::string text;
    EXPECT_EQ(ReadTextFileAsUtf8((folder.path() / "gone").string(), text), -1);
}

}  // namespace
