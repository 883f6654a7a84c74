#include "content/book.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "content/book_scan.h"
#include "content/text_file.h"
#include "driver/scanned_entries.h"
#include "platform/limits.h"
#include "tests/content/captured_log.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"
#include "tests/support/scoped_zone.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

struct BookTree : MediaTree {
    DriverPath *books = AddRoot("book", node_category::kBook, node_subcategory::kBook);

    // The same book in both forms.
    void WriteBook(const Files &files) const {
        Write("file.epub", Archive(files));
        for (const auto &[name, content] : files)
            Write("folder.epub/" + name, content);
    }
    // The cover of a book that is added now; "none" without one.
    std::string CoverOf(const std::string &name) {
        DriverPath *book = nullptr;
        if (AddLocalBook(books, Location(name), &book) != 0) return "not added";
        return std::string(FindAttribute(FindChild(book, "thumb"), "cover-image-path").value_or("none"));
    }
};

struct CoverCase {
    std::string what;
    Files files;
    std::string of_file;
    std::string of_folder;  // below the book
    size_t log_lines = 0;
};

// The package document lies in "OEBPS"; `more` are further files.
CoverCase InOebps(const std::string &what, const std::string &manifest, Files more,
                  const std::string &of_file, const std::string &of_folder, size_t log_lines = 0) {
    more.merge(Epub("OEBPS/p.opf", Package("", manifest)));
    return {what, std::move(more), of_file, of_folder, log_lines};
}

const std::string kPageItem = CoverItemXml("t/cover.xhtml", "Application/xhtml+XML");

std::vector<CoverCase> CoverCases() {
    const std::string long_name = std::string(255, 'x');
    return {
        InOebps("image", CoverItemXml("images/c.jpg", "image/jpeg"), {}, "OEBPS\\images/c.jpg",
                "OEBPS\\images\\c.jpg"),
        InOebps("no type", "<item id='cover' href='c'/>", {}, "OEBPS\\c", "OEBPS\\c"),
        {"at the top", Epub("p.opf", Package("", CoverItemXml("c.jpg", "image/jpeg"))), "c.jpg", "c.jpg"},
        InOebps("other items",
                "<item id='Cover' href='1'/><item href='2'/><item id='cover'/>" + CoverItemXml("4", "") +
                    CoverItemXml("5", ""),
                {}, "OEBPS\\4", "OEBPS\\4"),
        InOebps("upwards", CoverItemXml("../c.jpg", ""), {}, "OEBPS\\../c.jpg", "OEBPS\\..\\c.jpg"),
        InOebps("out of the book", CoverItemXml("a/../../../c.jpg", ""), {}, "OEBPS\\a/../../../c.jpg",
                "none"),
        InOebps("long", CoverItemXml(long_name, ""), {}, "none", "OEBPS\\" + long_name),
        InOebps("page", kPageItem, {{"OEBPS/t/cover.xhtml", Page("<p><img src='../i/c.png'/></p>")}},
                "OEBPS\\..\\i\\c.png", "OEBPS\\..\\i\\c.png"),
        InOebps("page with div", kPageItem, {{"OEBPS/t/cover.xhtml", Page("<p/><div><img src='c'/></div>")}},
                "OEBPS\\c", "OEBPS\\c", 1),
        InOebps("page without image", kPageItem, {{"OEBPS/t/cover.xhtml", Page("<p/>")}}, "none", "none", 2),
        InOebps("empty source", kPageItem,
                {{"OEBPS/t/cover.xhtml", Page("<p><img src=''/></p><div><img src='c'/></div>")}}, "none",
                "none"),
        InOebps("page damaged", kPageItem, {{"OEBPS/t/cover.xhtml", "<html>"}}, "none", "none", 1),
        InOebps("page gone", kPageItem, {}, "none", "OEBPS\\t\\cover.xhtml"),
        InOebps("artwork", kPageItem, {{"iTunesArtwork", "x"}}, "iTunesArtwork", "iTunesArtwork"),
        {"prefix", Epub("p.opf", "<o:package><manifest/></o:package>"), "none", "none", 1},
        {"package damaged", Epub("p.opf", "<package>"), "none", "none", 1},
        {"package gone", {{"META-INF/container.xml", Container("p.opf")}}, "none", "none"},
        {"no container", {{"a", "b"}}, "none", "none"},
    };
}

TEST(AddLocalBook, FindsTheCoverOfBothForms) {
    for (const CoverCase &book : CoverCases()) {
        SCOPED_TRACE(book.what);
        const bool is_long = std::string(book.what) == "long";  // for an archive only, and logged as such
        BookTree tree;
        tree.WriteBook(book.files);
        const CapturedLog log;
        EXPECT_EQ(tree.CoverOf("file.epub"), book.of_file);
        EXPECT_EQ(log.lines().size(), book.log_lines + (is_long ? 1 : 0))
            << testing::PrintToString(log.lines());
        const bool has_cover = book.of_folder != "none";
        EXPECT_EQ(tree.CoverOf("folder.epub"),
                  has_cover ? tree.Location("folder.epub") + "\\" + book.of_folder : "none");
        EXPECT_EQ(log.lines().size(), 2 * book.log_lines + (is_long ? 1 : 0));
    }
}

TEST(AddLocalBook, TellsWhatThePackageAndTheFileTell) {
    const ScopedZone zone("UTC");
    BookTree tree;
    const std::string metadata =
        "<dc:title> A &amp; "
        "B\n</dc:title><dc:creator>C</dc:creator><title>no</title><dc:creator>D</dc:creator>"
        "<dc:subject>S</dc:subject><dc:date>April</dc:date><dc:date>1970-01-02</dc:date>"
        "<dc:publisher>P</dc:publisher>";
    Files files = Epub("a/b.opf", Package(metadata, CoverItemXml("c.png", "")));
    files["itunesARTWORK"] = "picture";
    tree.WriteBook(files);
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
}

TEST(AddLocalBook, TakesAnyBookFileAndRefusesTheRest) {
    BookTree tree;
    tree.Write("My.Paper.PDF", "%PDF");
    tree.Write("b.txt", "x");
    DriverPath *book = nullptr;
    ASSERT_EQ(AddLocalBook(tree.books, tree.Location("My.Paper.PDF"), &book), 0);
    EXPECT_EQ(FindChild(tree.books, "My.Paper.PDF"), book);
    EXPECT_THAT(AttributeLines(book), ElementsAre("st_size=4", "location=" + tree.Location("My.Paper.PDF"),
                                                  "media_has_thumb=true", "format=PDF", "name=My.Paper"));
    EXPECT_EQ(AddLocalBook(tree.books, tree.Location("b.txt")), -2);
    EXPECT_EQ(AddLocalBook(tree.books, tree.Location("gone.epub")), -3);
    EXPECT_EQ(ChildCount(tree.books), 1);
}

TEST(ScanBooks, ListsWhatTheLibraryDoesNotAndTheSameAgain) {
    MediaTree tree;
    EXPECT_EQ(ScanBooks(&tree.driver), 0);
    ASSERT_NE(tree.At({"Books"}), nullptr) << "made without any book";
    DriverPath *known = tree.AddTrack("7", "");
    const std::string path = (tree.folder.path() / "media/books/Known.epub").string();
    AddAttribute(known, "location", path.substr(1).c_str());
    BareTree::Hold(tree.At({"Books"}), "7.epub", known);
    tree.Write("Books/Known.epub", Archive(Epub("p.opf", Package("<dc:title>K</dc:title>", ""))));
    tree.Write("Books/sub/deep.epub/B.EPUB", Archive(Epub("p.opf", Package("<dc:title>B</dc:title>", ""))));
    tree.Write("Books/sub/c.pdf", "%PDF");
    tree.Write("Books/song.mp3", "x");
    const CapturedLog log;
    EXPECT_EQ(ScanBooks(&tree.driver), 0);
    const std::string first = TreeText(tree.At({"Books"}), "Books");
    EXPECT_EQ(ChildCount(tree.At({"Books"})), 3) << first;
    EXPECT_EQ(FindAttribute(tree.At({"Books", "B.EPUB"}), "name"), "B");
    RemoveScannedEntries(&tree.driver);
    EXPECT_EQ(ChildCount(tree.At({"Books"})), 1);
    EXPECT_EQ(ScanBooks(&tree.driver), 0);
    EXPECT_EQ(TreeText(tree.At({"Books"}), "Books"), first);
    EXPECT_THAT(log.lines(), testing::Each(testing::HasSubstr("manifest")))
        << "the empty ones have a manifest";
    LibraryDriver without_tree;
    EXPECT_EQ(ScanBooks(&without_tree), -1);
}

TEST(ReadTextFileAsUtf8, GoesByTheByteOrderMark) {
    const TempFolder folder;
    using namespace std::string_literals;
    const struct {
        std::string bytes;
        int32_t result;
        std::string text;
    } rows[] = {
        {"\xFF\xFE\xE9\0x"s, 0, "\xC3\xA9"},
        {"\xFE\xFF\0\xE9\xD8\x3D\xDE\0\0\0\0x"s, 0, "\xC3\xA9\xF0\x9F\x98\x80"},
        {"\xFF\xFE\0\xD8"s, -3, ""},
        {"\xEF\xBB\xBF\xC3", 0, "\xC3"},
        {"\xEF\xBB", -2, ""},
        {"\xEF\xBBx", -2, ""},
        {"\xEF\xBB\xBF", -3, ""},
        {"", -3, ""},
        {"\xC3\xA9", 0, "\xC3\xA9"},
        {"\xE9", 0, "\xE9"},
        {std::string(limits::kTextFileBytes.value + 1, 'x'), -3, ""},
    };
    for (const auto &row : rows) {
        std::string text;
        const std::string path = folder.Write("t", row.bytes).string();
        EXPECT_EQ(ReadTextFileAsUtf8(path, text), row.result) << row.bytes.substr(0, 9);
        EXPECT_EQ(text, row.text);
    }
    std::string text;
    EXPECT_EQ(ReadTextFileAsUtf8((folder.path() / "gone").string(), text), -1);
}

}  // namespace
